// The lexer's loops run over every character of a document, so bytes are classed by one table
// lookup and the position is kept in a local where a loop is hot.
#include "persistence/xml_lexer.h"

#include <cstring>

#include "runtime/text.h"

namespace brix {
namespace {

[[noreturn]] void Irregular() { throw IrregularXml{}; }

enum CharacterClass : std::uint8_t {
  kSpace = 1,
  kNameStart = 2,
  kNameChar = 4,
  kDecoded = 8,   // changed by the parser in character data: "&" and CR
  kBracket = 16,  // "]", which may begin a "]]>" that text must not hold
  kInValue = 32,  // changed or refused in an attribute value: "<", "&" and white space but blanks
};

constexpr std::array<std::uint8_t, 256> kClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (const char c : {' ', '\t', '\n', '\r'}) classes[static_cast<unsigned char>(c)] |= kSpace;
  for (int c = 0; c < 256; ++c) {
    const bool start = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':';
    if (start) classes[c] |= kNameStart | kNameChar;
    if ((c >= '0' && c <= '9') || c == '-' || c == '.') classes[c] |= kNameChar;
  }
  for (const char c : {'&', '\r'}) classes[static_cast<unsigned char>(c)] |= kDecoded;
  for (const char c : {'<', '&', '\t', '\n', '\r'}) {
    classes[static_cast<unsigned char>(c)] |= kInValue;
  }
  classes[']'] |= kBracket;
  return classes;
}();

constexpr bool Is(char c, CharacterClass character_class) {
  return kClasses[static_cast<unsigned char>(c)] & character_class;
}

/// Whether the `size` bytes at `a` and `b` are the same, compared eight at a time in place (the
/// names compared are short, and a call to memcmp costs more than they do).
inline bool SameBytes(const char* a, const char* b, std::size_t size) {
  for (; size >= 8; a += 8, b += 8, size -= 8) {
    std::uint64_t x, y;
    std::memcpy(&x, a, 8);
    std::memcpy(&y, b, 8);
    if (x != y) return false;
  }
  for (; size > 0; --size) {
    if (*a++ != *b++) return false;
  }
  return true;
}

/// The character a reference stands for ("lt", "#38", "#x26" between "&" and ";"). References
/// the parser would keep as they stand, or read otherwise, end the lexing.
std::uint32_t ReferencedCharacter(std::string_view reference) {
  if (reference == "lt") return '<';
  if (reference == "gt") return '>';
  if (reference == "amp") return '&';
  if (reference == "apos") return '\'';
  if (reference == "quot") return '"';
  if (reference.size() < 2 || reference[0] != '#') Irregular();
  const bool hex = reference[1] == 'x';
  const std::string_view digits = reference.substr(hex ? 2 : 1);
  if (digits.empty() || digits.size() > 7) Irregular();
  std::uint32_t value = 0;
  for (const char c : digits) {
    std::uint32_t digit;
    if (c >= '0' && c <= '9') {
      digit = static_cast<std::uint32_t>(c - '0');
    } else if (hex && c >= 'a' && c <= 'f') {
      digit = static_cast<std::uint32_t>(c - 'a' + 10);
    } else if (hex && c >= 'A' && c <= 'F') {
      digit = static_cast<std::uint32_t>(c - 'A' + 10);
    } else {
      Irregular();
    }
    value = value * (hex ? 16 : 10) + digit;
  }
  // Characters XML forbids were refused before the lexing began; these never reach it.
  if (value == 0 || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) Irregular();
  return value;
}

/// Appends the reference at `raw[i]` ("&...;") decoded, and returns the index of its ";".
std::size_t AppendReference(std::string_view raw, std::size_t i, std::string& out) {
  const std::size_t semicolon = raw.find(';', i + 1);
  if (semicolon == std::string_view::npos) Irregular();
  EncodeUtf8(ReferencedCharacter(raw.substr(i + 1, semicolon - i - 1)), out);
  return semicolon;
}

/// Appends `raw` as the parser reads text: CR LF and lone CRs become LF, and in character data
/// (not in CDATA sections) references are expanded.
void AppendText(std::string_view raw, bool character_data, std::string& out) {
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c == '\r') {
      out += '\n';
      if (i + 1 < raw.size() && raw[i + 1] == '\n') ++i;
    } else if (c == '&' && character_data) {
      i = AppendReference(raw, i, out);
    } else {
      out += c;
    }
  }
}

/// `raw` as the parser reads an attribute value: references expanded, each white space
/// character (CR LF together) a blank.
void AppendAttributeValue(std::string_view raw, std::string& out) {
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c == '<') Irregular();  // not XML: the general reading refuses it
    if (c == '&') {
      i = AppendReference(raw, i, out);
    } else if (Is(c, kSpace)) {
      out += ' ';
      if (c == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n') ++i;
    } else {
      out += c;
    }
  }
}

}  // namespace

XmlLexer::XmlLexer(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {
  Take("\xEF\xBB\xBF");
  if (Take("<?xml")) SkipDeclaration();  // the parser drops it
  open_.reserve(8);
}

void XmlLexer::Next(XmlEvent& event, std::string_view expected) {
  if (open_.empty()) {
    SkipMarkupOutsideText();
    if (started_) {
      if (at_ != end_) Irregular();  // a second element or text: the general reading refuses it
      event.kind = XmlEvent::kEnd;
      return;
    }
  } else if (!AtTag()) {
    event.text = ReadText();
    if (!event.text.empty()) {
      event.kind = XmlEvent::kText;
      return;
    }
  }
  // At the "<" of a tag.
  if (at_ == end_ || *at_ != '<') Irregular();
  ++at_;
  if (Take('/')) {
    event.kind = XmlEvent::kEndTag;
    event.name = ReadEndTag();
    return;
  }
  ReadStartTag(event, expected);
}

std::string_view XmlLexer::TextThroughEnd() {
  if (open_.empty()) Irregular();
  const std::string_view text = AtTag() ? std::string_view() : ReadText();
  if (!AtTag() || at_[1] != '/') Irregular();  // an element inside
  at_ += 2;
  ReadEndTag();
  return text;
}

// --- characters ---

/// Whether a tag begins at the position: no text, CDATA, comment or instruction comes first.
inline bool XmlLexer::AtTag() const {
  return end_ - at_ >= 2 && at_[0] == '<' && at_[1] != '!' && at_[1] != '?';
}

inline void XmlLexer::SkipSpace() {
  const char* at = at_;
  while (at < end_ && Is(*at, kSpace)) ++at;
  at_ = at;
}

inline bool XmlLexer::Take(std::string_view text) {
  if (static_cast<std::size_t>(end_ - at_) < text.size() ||
      !SameBytes(at_, text.data(), text.size())) {
    return false;
  }
  at_ += text.size();
  return true;
}

inline bool XmlLexer::Take(char c) {
  if (at_ == end_ || *at_ != c) return false;
  ++at_;
  return true;
}

inline const char* XmlLexer::Find(char c) const {
  const void* found = std::memchr(at_, c, static_cast<std::size_t>(end_ - at_));
  if (!found) Irregular();
  return static_cast<const char*>(found);
}

inline const char* XmlLexer::Find(std::string_view text) const {
  const std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
  const std::size_t found = rest.find(text);
  if (found == std::string_view::npos) Irregular();
  return at_ + found;
}

/// An ASCII name; any other name ends the lexing.
inline std::string_view XmlLexer::Name() {
  const char* start = at_;
  if (start == end_ || !Is(*start, kNameStart)) Irregular();
  const char* at = start + 1;
  while (at < end_ && Is(*at, kNameChar)) ++at;
  at_ = at;
  return {start, static_cast<std::size_t>(at - start)};
}

// --- markup that yields nothing ---

/// The XML declaration after its "<?xml": only at the very start, beginning with the version.
void XmlLexer::SkipDeclaration() {
  if (at_ == end_ || !Is(*at_, kSpace)) Irregular();
  SkipSpace();
  if (!Take("version")) Irregular();
  at_ = Find("?>") + 2;
}

/// White space, comments and processing instructions before or after the document's element,
/// up to its "<" or the end of the text.
void XmlLexer::SkipMarkupOutsideText() {
  do {
    SkipSpace();
  } while (SkipCommentOrInstruction());
}

/// Skips the comment or processing instruction at the position; false when there is none.
bool XmlLexer::SkipCommentOrInstruction() {
  if (end_ - at_ < 2 || at_[0] != '<') return false;
  if (at_[1] == '?') {
    SkipInstruction();
  } else if (Take("<!--")) {
    SkipComment();
  } else {
    return false;
  }
  return true;
}

/// The rest of a comment after its "<!--": it may not hold "--" before its end.
void XmlLexer::SkipComment() {
  const char* close = Find("-->");
  const std::string_view body(at_, static_cast<std::size_t>(close - at_));
  if (body.find("--") != std::string_view::npos || body.ends_with('-')) Irregular();
  at_ = close + 3;
}

/// A processing instruction at its "<?": a name (none that could be read as a declaration)
/// and, after white space, anything up to "?>".
void XmlLexer::SkipInstruction() {
  at_ += 2;
  const std::string_view name = Name();
  if (name.size() >= 3 && (name[0] | 0x20) == 'x' && (name[1] | 0x20) == 'm' &&
      (name[2] | 0x20) == 'l') {
    Irregular();
  }
  if (Take("?>")) return;
  if (at_ == end_ || !Is(*at_, kSpace)) Irregular();
  at_ = Find("?>") + 2;
}

// --- text ---

/// Reads the text up to the next tag (empty when there is none), leaving the position at the
/// tag's "<".
std::string_view XmlLexer::ReadText() {
  std::string_view single;  // the one plain piece, while there is only one
  bool in_scratch = false;
  auto add = [&](std::string_view raw, bool character_data, bool plain) {
    if (!in_scratch && single.empty() && plain) {
      single = raw;
      return;
    }
    if (!in_scratch) text_scratch_.assign(single);
    in_scratch = true;
    if (plain) {
      text_scratch_.append(raw);
    } else {
      AppendText(raw, character_data, text_scratch_);
    }
  };
  for (;;) {
    // One pass finds the next markup and what the parser would change on the way.
    const char* start = at_;
    const char* at = start;
    std::uint8_t all_classes = kSpace;  // kSpace stays while every character is white space
    std::uint8_t any_classes = 0;
    while (at < end_ && *at != '<') {
      const std::uint8_t classes = kClasses[static_cast<unsigned char>(*at++)];
      all_classes &= classes;
      any_classes |= classes;
    }
    if (at == end_) Irregular();
    const std::string_view raw(start, static_cast<std::size_t>(at - start));
    if ((any_classes & kBracket) && raw.find("]]>") != std::string_view::npos) {
      Irregular();  // not XML: the general reading refuses it
    }
    if (!(all_classes & kSpace)) add(raw, true, !(any_classes & kDecoded));
    at_ = at;
    if (AtTag()) break;
    if (Take("<![CDATA[")) {
      const std::string_view section(at_, static_cast<std::size_t>(Find("]]>") - at_));
      add(section, false, section.find('\r') == std::string_view::npos);
      at_ += section.size() + 3;
    } else if (!SkipCommentOrInstruction()) {
      break;
    }
  }
  return in_scratch ? std::string_view(text_scratch_) : single;
}

// --- tags ---

/// The tag after its "<": a name and at most two attributes (more are left to the general
/// reading, which checks that names do not repeat).
void XmlLexer::ReadStartTag(XmlEvent& event, std::string_view expected) {
  event.kind = XmlEvent::kStartTag;
  // A saved document names its elements in a known order: trying the expected name first
  // spares scanning the name.
  const std::size_t size = expected.size();
  event.expected = size != 0 && static_cast<std::size_t>(end_ - at_) > size &&
                   SameBytes(at_, expected.data(), size) && !Is(at_[size], kNameChar);
  std::string_view name;
  if (event.expected) {
    name = {at_, size};
    at_ += size;
  } else {
    name = Name();
  }
  event.name = name;
  event.attribute_count = 0;
  event.closed = false;
  started_ = true;
  // The name is pushed from here, where it is at hand, not read back from the event.
  if (Take('>')) {
    open_.push_back(name);
    return;
  }
  for (;;) {
    const char* before = at_;
    SkipSpace();
    if (Take("/>")) {
      event.closed = true;
      return;
    }
    if (Take('>')) {
      open_.push_back(name);
      return;
    }
    if (at_ == before || event.attribute_count == event.attributes.size()) Irregular();
    const std::size_t index = event.attribute_count++;
    XmlAttribute& attribute = event.attributes[index];
    ReadAttribute(attribute, value_scratch_[index]);
    // A repeated name makes the document malformed: the general reading refuses it.
    if (index == 1 && event.attributes[0].name == attribute.name) Irregular();
  }
}

/// An attribute: its name, "=" and its quoted value, decoded into `scratch` when it has to be.
void XmlLexer::ReadAttribute(XmlAttribute& attribute, std::string& scratch) {
  attribute.name = Name();
  SkipSpace();
  if (!Take('=')) Irregular();
  SkipSpace();
  if (at_ == end_ || (*at_ != '"' && *at_ != '\'')) Irregular();
  const char quote = *at_++;
  const char* close = Find(quote);
  const std::string_view raw(at_, static_cast<std::size_t>(close - at_));
  at_ = close + 1;
  std::uint8_t any_classes = 0;  // one pass over the short value
  for (const char c : raw) any_classes |= kClasses[static_cast<unsigned char>(c)];
  if (!(any_classes & kInValue)) {
    attribute.value = raw;
    return;
  }
  scratch.clear();
  AppendAttributeValue(raw, scratch);
  attribute.value = scratch;
}

/// The end tag after its "</": it must close the element open innermost. Returns its name.
inline std::string_view XmlLexer::ReadEndTag() {
  if (open_.empty()) Irregular();
  const std::string_view name = open_.back();
  if (static_cast<std::size_t>(end_ - at_) < name.size() ||
      !SameBytes(at_, name.data(), name.size())) {
    Irregular();
  }
  at_ += name.size();
  SkipSpace();
  if (!Take('>')) Irregular();
  open_.pop_back();
  return name;
}

}  // namespace brix
