// One pass over a document's markup, refusing what XML does not allow but the parser accepts.
#include "persistence/xml_markup_check.h"

#include <array>
#include <cstdint>
#include <optional>

#include "persistence/xml_text_decoder.h"

namespace brix {
namespace {

// Bytes that need a look in character data.
constexpr std::array<bool, 256> kTextSpecial = [] {
  std::array<bool, 256> special{};
  special['<'] = special['&'] = special[']'] = true;
  return special;
}();

constexpr bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }

bool IsHexDigit(char c) {
  return IsAsciiDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool IsNameStartCode(std::uint32_t c) {
  if (c < 0x80) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':';
  }
  return (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) ||
         (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) || c == 0x200C || c == 0x200D ||
         (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) ||
         (c >= 0x3001 && c <= 0xD7FF) || (c >= 0xF900 && c <= 0xFDCF) ||
         (c >= 0xFDF0 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0xEFFFF);
}

bool IsNameCode(std::uint32_t c) {
  return IsNameStartCode(c) || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 0xB7 ||
         (c >= 0x300 && c <= 0x36F) || c == 0x203F || c == 0x2040;
}

/// The code point of the UTF-8 sequence at `text[at]` (checked before) and its length.
std::uint32_t CodeAt(std::string_view text, std::size_t at, std::size_t& length) {
  const auto lead = static_cast<std::uint8_t>(text[at]);
  length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (at + length > text.size()) length = text.size() - at;
  std::uint32_t code = length == 1 ? lead : lead & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    code = (code << 6) | (static_cast<std::uint8_t>(text[at + i]) & 0x3F);
  }
  return code;
}

class MarkupScanner {
 public:
  explicit MarkupScanner(std::string_view text) : text_(text) {}

  std::string Scan() {
    if (text_.starts_with("\xEF\xBB\xBF")) at_ = start_ = 3;
    while (at_ < text_.size() && reason_.empty()) {
      const char c = text_[at_];
      if (!kTextSpecial[static_cast<unsigned char>(c)]) {
        ++at_;
      } else if (c == '&') {
        Reference();
      } else if (c == ']') {
        if (text_.substr(at_, 3) == "]]>") Fail(at_, "\"]]>\" is not allowed in text");
        ++at_;
      } else if (!Markup()) {
        break;  // markup cut short: the parser says so
      }
    }
    return reason_;
  }

 private:
  void Fail(std::size_t at, const std::string& reason) {
    if (reason_.empty()) reason_ = reason + Location(text_, at);
  }

  /// Checks the reference at `at_` ("&") and moves past it.
  void Reference() {
    const std::size_t semicolon = text_.find(';', at_ + 1);
    const std::size_t end = semicolon == std::string_view::npos ? text_.size() : semicolon;
    if (semicolon == std::string_view::npos ||
        !IsDefinedReference(text_.substr(at_ + 1, end - at_ - 1))) {
      // Shown up to its ";", or to where a reference could not go on.
      const std::size_t stop = text_.find_first_of(" \t\r\n<>&\"';", at_ + 1);
      const std::size_t shown = std::min<std::size_t>(
          (stop == std::string_view::npos ? text_.size() : stop + (text_[stop] == ';')) - at_, 16);
      Fail(at_, "\"" + std::string(text_.substr(at_, shown)) +
                    "\" is not a reference XML defines (write \"&amp;\" for \"&\")");
      return;
    }
    at_ = semicolon + 1;
  }

  /// The name at `at_`, moved past; empty when none starts there.
  std::string_view Name() {
    const std::size_t start = at_;
    while (at_ < text_.size()) {
      std::size_t length = 1;
      const std::uint32_t code = CodeAt(text_, at_, length);
      if (!(at_ == start ? IsNameStartCode(code) : IsNameCode(code))) break;
      at_ += length;
    }
    return text_.substr(start, at_ - start);
  }

  /// A name that must stand at `at_`: anything else up to a delimiter is refused.
  bool RequireName(const char* what) {
    const std::size_t start = at_;
    Name();
    if (at_ < text_.size() && !IsSpace(text_[at_]) &&
        std::string_view("=/>?").find(text_[at_]) == std::string_view::npos) {
      std::size_t end = at_;
      while (end < text_.size() && !IsSpace(text_[end]) &&
             std::string_view("=/>?\"'<").find(text_[end]) == std::string_view::npos) {
        ++end;
      }
      Fail(at_, std::string("The ") + what + " \"" + std::string(text_.substr(start, end - start)) +
                    "\" holds a character that XML names may not hold");
      return false;
    }
    if (at_ == start) {
      Fail(at_, std::string("A ") + what + " is missing or does not begin as XML names begin");
      return false;
    }
    return true;
  }

  void SkipSpace() {
    while (at_ < text_.size() && IsSpace(text_[at_])) ++at_;
  }

  /// Checks the markup at `at_` ("<") and moves past it; false when it does not end.
  bool Markup() {
    const std::string_view rest = text_.substr(at_);
    if (rest.starts_with("<?")) return ProcessingInstruction();
    if (rest.starts_with("<!--")) return Comment();
    if (rest.starts_with("<![CDATA[")) return SkipTo("]]>", at_ + 9);
    if (rest.starts_with("<!DOCTYPE")) return Doctype();
    if (rest.starts_with("<!")) {
      Fail(at_, "Markup declarations are allowed only inside a DOCTYPE");
      return false;
    }
    if (rest.starts_with("</")) {
      at_ += 2;
      if (!RequireName("element name")) return false;
      return SkipTo(">", at_);
    }
    return StartTag();
  }

  bool SkipTo(std::string_view end, std::size_t from) {
    const std::size_t found = text_.find(end, from);
    if (found == std::string_view::npos) return false;
    at_ = found + end.size();
    return true;
  }

  bool ProcessingInstruction() {
    const std::size_t start = at_;
    at_ += 2;
    const std::size_t name_start = at_;
    if (!RequireName("processing instruction name")) return false;
    const std::string_view target = text_.substr(name_start, at_ - name_start);
    const bool reserved = target.size() == 3 && (target[0] | 0x20) == 'x' &&
                          (target[1] | 0x20) == 'm' && (target[2] | 0x20) == 'l';
    if (reserved) {
      if (target != "xml" || start != start_) {
        Fail(start, "The XML declaration is allowed only once, at the very start of the document");
        return false;
      }
      SkipSpace();
      if (!text_.substr(at_).starts_with("version")) {
        Fail(at_, "The XML declaration must begin with its version");
        return false;
      }
    }
    return SkipTo("?>", at_);
  }

  bool Comment() {
    const std::size_t dashes = text_.find("--", at_ + 4);
    if (dashes == std::string_view::npos) return false;
    if (dashes + 2 >= text_.size() || text_[dashes + 2] != '>') {
      Fail(dashes, "\"--\" is not allowed inside a comment");
      return false;
    }
    at_ = dashes + 3;
    return true;
  }

  bool Doctype() {
    if (seen_element_ || seen_doctype_) {
      Fail(at_, "A DOCTYPE is allowed only once, before the document element");
      return false;
    }
    seen_doctype_ = true;
    // Up to the ">" that ends it, past an internal subset in brackets and quoted literals.
    char quote = 0;
    int brackets = 0;
    for (at_ += 9; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (quote) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == '[') {
        ++brackets;
      } else if (c == ']') {
        --brackets;
      } else if (c == '>' && brackets <= 0) {
        ++at_;
        return true;
      }
    }
    return false;
  }

  bool StartTag() {
    seen_element_ = true;
    ++at_;
    if (!RequireName("element name")) return false;
    for (;;) {
      const std::size_t before = at_;
      SkipSpace();
      if (at_ >= text_.size()) return false;
      if (text_[at_] == '>') return ++at_, true;
      if (text_.substr(at_).starts_with("/>")) return at_ += 2, true;
      if (at_ == before) return false;  // attributes run together: the parser says so
      if (!RequireName("attribute name")) return false;
      SkipSpace();
      if (at_ >= text_.size() || text_[at_] != '=') return false;
      ++at_;
      SkipSpace();
      if (at_ >= text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) return false;
      if (!AttributeValue()) return false;
    }
  }

  /// The quoted value at `at_`, moved past.
  bool AttributeValue() {
    const char quote = text_[at_++];
    while (at_ < text_.size() && text_[at_] != quote) {
      if (text_[at_] == '<') {
        Fail(at_, "\"<\" is not allowed in an attribute value");
        return false;
      }
      if (text_[at_] == '&') {
        Reference();
        if (!reason_.empty()) return false;
      } else {
        ++at_;
      }
    }
    if (at_ >= text_.size()) return false;
    ++at_;
    return true;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t start_ = 0;  // after a byte-order mark
  bool seen_element_ = false;
  bool seen_doctype_ = false;
  std::string reason_;
};

}  // namespace

bool IsDefinedReference(std::string_view reference) {
  if (reference == "lt" || reference == "gt" || reference == "amp" || reference == "apos" ||
      reference == "quot") {
    return true;
  }
  if (reference.size() < 2 || reference[0] != '#') return false;
  const bool hex = reference[1] == 'x';
  const std::string_view digits = reference.substr(hex ? 2 : 1);
  if (digits.empty()) return false;
  for (const char c : digits) {
    if (!(hex ? IsHexDigit(c) : IsAsciiDigit(c))) return false;
  }
  return true;
}

std::string MalformedMarkup(std::string_view text) { return MarkupScanner(text).Scan(); }

}  // namespace brix
