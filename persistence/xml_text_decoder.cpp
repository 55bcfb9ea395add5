// Decodes the encodings a host saves XML in, and finds the characters XML does not allow before the
// parser sees them (the parser would cut a text at U+0000 and pass the others on).
#include "persistence/xml_text_decoder.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>

#include "persistence/xml_prop_bag_errors.h"
#include "runtime/ansi_code_page.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

[[noreturn]] void RaiseUnreadable(std::string reason) {
  RaiseXMLPropBagError(kErrInvalidXMLFile, std::move(reason));
}

bool StartsWith(std::string_view bytes, std::string_view prefix) {
  return bytes.substr(0, prefix.size()) == prefix;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

/// The encoding the XML declaration at the start of `bytes` names, or "" when there is none.
std::string DeclaredEncoding(std::string_view bytes) {
  if (!StartsWith(bytes, "<?xml")) return {};
  const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
  std::size_t at = declaration.find("encoding");
  if (at == std::string_view::npos) return {};
  at = declaration.find_first_of("\"'", at);
  if (at == std::string_view::npos) return {};
  const std::size_t end = declaration.find(declaration[at], at + 1);
  if (end == std::string_view::npos) return {};
  return std::string(declaration.substr(at + 1, end - at - 1));
}

std::string FromUtf16(std::string_view bytes, bool little_endian) {
  if (bytes.size() % 2 != 0) RaiseUnreadable("The UTF-16 document is cut short.");
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto first = static_cast<std::uint8_t>(bytes[2 * i]);
    const auto second = static_cast<std::uint8_t>(bytes[2 * i + 1]);
    units[i] = static_cast<char16_t>(little_endian ? first | second << 8 : first << 8 | second);
  }
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool high = unit >= 0xD800 && unit <= 0xDBFF;
    const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
    if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      ++i;
    } else if (high || low) {
      RaiseUnreadable("The UTF-16 document holds an unpaired surrogate at code unit " +
                      std::to_string(i + 1) + ".");
    }
  }
  return ToUtf8(units);
}

std::string FromLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto code = static_cast<std::uint8_t>(byte);
    if (code < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | code >> 6);
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

/// A character that may stand in the text as it is.
bool IsAllowedCodePoint(std::uint32_t code) {
  if (code < 0x20) return code == 0x9 || code == 0xA || code == 0xD;
  return (code < 0xD800 || code > 0xDFFF) && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

/// A character a reference may stand for: any but U+0000, surrogates, U+FFFE, U+FFFF and values
/// past U+10FFFF. The other control characters are accepted (as XML 1.1 accepts them): the bag
/// writes them as references so that every text reads back as it was.
bool IsReferable(std::int64_t code) {
  return code > 0 && (code < 0xD800 || code > 0xDFFF) && code != 0xFFFE && code != 0xFFFF &&
         code <= 0x10FFFF;
}

/// Length of the UTF-8 sequence at `text[at]` when it is well formed and its character allowed;
/// 0 otherwise (`*bad_byte` says whether the bytes were not UTF-8 at all).
std::size_t SequenceLength(std::string_view text, std::size_t at, bool* bad_byte) {
  const auto lead = static_cast<std::uint8_t>(text[at]);
  std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  *bad_byte = true;
  if (length == 0 || at + length > text.size()) return 0;
  std::uint32_t code = lead & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<std::uint8_t>(text[at + i]);
    if ((next & 0xC0) != 0x80) return 0;
    code = code << 6 | (next & 0x3F);
  }
  static constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < kLeast[length]) return 0;  // an overlong form
  *bad_byte = false;
  return IsAllowedCodePoint(code) ? length : 0;
}

/// Whether the eight bytes at `p` are ASCII and none below 0x20.
bool PlainAsciiWord(const char* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  constexpr std::uint64_t kHigh = 0x8080808080808080u, kSpaces = 0x2020202020202020u;
  // No high bit set, and no byte below 0x20 (a byte below it borrows into its own high bit).
  return (word & kHigh) == 0 && ((word - kSpaces) & ~word & kHigh) == 0;
}

/// The reason and place of the first byte that is not UTF-8 or not an allowed character.
std::string ForbiddenRawCharacter(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (at + 8 <= text.size() && PlainAsciiWord(text.data() + at)) {
      at += 8;
      continue;
    }
    const auto byte = static_cast<std::uint8_t>(text[at]);
    if (byte < 0x80) {
      if (!IsAllowedCodePoint(byte)) {
        return "An Invalid character was found in text content" + Location(text, at);
      }
      ++at;
      continue;
    }
    bool bad_byte = false;
    const std::size_t length = SequenceLength(text, at, &bad_byte);
    if (length == 0) {
      return (bad_byte ? "The text is not valid UTF-8"
                       : "A character XML does not allow was found") +
             Location(text, at);
    }
    at += length;
  }
  return {};
}

/// The code point a well-formed character reference at `text[at]` ("&#N;" or "&#xH;") stands for,
/// or -1 when it is not one (the parser then judges it); values past U+10FFFF give 0x110000.
std::int64_t ReferencedCodePoint(std::string_view text, std::size_t at) {
  std::size_t i = at + 2;
  const bool hex = i < text.size() && text[i] == 'x';
  if (hex) ++i;
  std::int64_t code = 0;
  const std::size_t first_digit = i;
  for (; i < text.size() && std::isxdigit(static_cast<unsigned char>(text[i])); ++i) {
    const char c = text[i];
    if (!hex && !std::isdigit(static_cast<unsigned char>(c))) return -1;
    const int digit = std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (c | 0x20) - 'a' + 10;
    code = std::min<std::int64_t>(code * (hex ? 16 : 10) + digit, 0x110000);
  }
  if (i == first_digit || i >= text.size() || text[i] != ';') return -1;
  return code;
}

/// The first reference to a character XML does not allow, outside comments, CDATA sections and
/// processing instructions, where "&#" is only text.
std::string ForbiddenReference(std::string_view text) {
  static constexpr std::pair<std::string_view, std::string_view> kLiteralSections[] = {
      {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
  std::size_t at = 0;
  while ((at = text.find_first_of("&<", at)) != std::string_view::npos) {
    if (text[at] == '<') {
      std::size_t skip_to = at + 1;
      for (const auto& [open, close] : kLiteralSections) {
        if (text.substr(at, open.size()) != open) continue;
        const std::size_t end = text.find(close, at + open.size());
        if (end == std::string_view::npos) return {};  // unterminated: the parser says so
        skip_to = end + close.size();
        break;
      }
      at = skip_to;
      continue;
    }
    const std::int64_t code = text.substr(at, 2) == "&#" ? ReferencedCodePoint(text, at) : -1;
    if (code >= 0 && !IsReferable(code)) {
      const std::size_t end = text.find(';', at);
      return "The character reference " + std::string(text.substr(at, end - at + 1)) +
             " stands for a character XML does not allow" + Location(text, at);
    }
    ++at;
  }
  return {};
}

}  // namespace

std::string_view DecodeXmlText(std::string_view bytes, std::string& storage) {
  if (StartsWith(bytes, "\xEF\xBB\xBF")) return bytes;
  if (StartsWith(bytes, "\xFF\xFE")) return storage = FromUtf16(bytes.substr(2), true);
  if (StartsWith(bytes, "\xFE\xFF")) return storage = FromUtf16(bytes.substr(2), false);
  if (StartsWith(bytes, std::string_view("<\0", 2))) return storage = FromUtf16(bytes, true);
  if (StartsWith(bytes, std::string_view("\0<", 2))) return storage = FromUtf16(bytes, false);
  const std::string declared = DeclaredEncoding(bytes);
  const std::string encoding = Lower(declared);
  if (encoding.empty() || encoding == "utf-8" || encoding == "utf8" || encoding == "us-ascii" ||
      encoding == "ascii") {
    return bytes;
  }
  if (encoding == "iso-8859-1" || encoding == "latin1" || encoding == "iso_8859-1" ||
      encoding == "latin-1") {
    return storage = FromLatin1(bytes);
  }
  if (encoding == "windows-1250" || encoding == "cp1250") return storage = FromAnsiBytes(bytes);
  RaiseUnreadable("The document's encoding \"" + declared +
                  "\" is not supported: save it as UTF-8, UTF-16, ISO-8859-1 or Windows-1250.");
}

std::string ForbiddenCharacters(std::string_view text) {
  if (std::string reason = ForbiddenRawCharacter(text); !reason.empty()) return reason;
  if (text.find("&#") == std::string_view::npos) return {};
  return ForbiddenReference(text);
}

std::string Location(std::string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  const std::string_view before = text.substr(0, offset);
  const std::size_t line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t last_break = before.rfind('\n');
  const std::size_t line_start = last_break == std::string_view::npos ? 0 : last_break + 1;
  return " at line " + std::to_string(line) + ", column " +
         std::to_string(offset - line_start + 1) + ".";
}

}  // namespace brix
