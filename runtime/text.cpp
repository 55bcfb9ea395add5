// Text helpers: trimming, case folding, replacement and UTF-8/UTF-16 conversion.
#include "runtime/text.h"

#include <algorithm>
#include <cstdint>

namespace brix {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Decodes one code point at `pos` and advances it; malformed input yields U+FFFD.
char32_t DecodeUtf8(std::string_view text, std::size_t& pos) {
  auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  std::uint8_t lead = byte(pos++);
  if (lead < 0x80) return lead;
  int extra = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : -1;
  if (extra < 0 || lead >= 0xF5) return kReplacement;
  char32_t cp = lead & (0x3F >> extra);
  for (int i = 0; i < extra; ++i) {
    if (pos >= text.size() || (byte(pos) & 0xC0) != 0x80) return kReplacement;
    cp = (cp << 6) | (byte(pos++) & 0x3F);
  }
  bool overlong = (extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000);
  if (overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return kReplacement;
  return cp;
}

char32_t FoldCodePoint(char32_t cp) {
  if (cp >= 'A' && cp <= 'Z') return cp + 32;
  if (cp >= 0xC0 && cp <= 0xDE && cp != 0xD7) return cp + 32;  // Latin-1
  // Latin Extended-A pairs (even upper, odd lower), skipping the odd-based runs.
  if ((cp >= 0x100 && cp <= 0x137) || (cp >= 0x14A && cp <= 0x177)) return cp | 1;
  if ((cp >= 0x139 && cp <= 0x148) || (cp >= 0x179 && cp <= 0x17E)) return cp + (cp & 1);
  if (cp == 0x178) return 0xFF;
  if (cp >= 0x218 && cp <= 0x21B) return cp | 1;  // Romanian S and T with comma below
  if (cp >= 0x391 && cp <= 0x3AB && cp != 0x3A2) return cp + 32;  // Greek
  if (cp >= 0x410 && cp <= 0x42F) return cp + 32;                 // Cyrillic
  if (cp >= 0x400 && cp <= 0x40F) return cp + 80;
  return cp;
}

// The first UTF-16 code unit of a code point: its order key among code points.
std::uint32_t Utf16Key(char32_t cp) { return cp < 0x10000 ? cp : 0xD800 + ((cp - 0x10000) >> 10); }

}  // namespace

void EncodeUtf8(char32_t cp, std::string& out) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string_view TrimBlanks(std::string_view text) {
  std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  std::size_t last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

std::string UpperAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return out;
}

std::string FoldCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    auto c = static_cast<unsigned char>(text[pos]);
    if (c < 0x80) {
      out += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
      ++pos;
    } else {
      EncodeUtf8(FoldCodePoint(DecodeUtf8(text, pos)), out);
    }
  }
  return out;
}

std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with) {
  if (what.empty()) return std::string(text);
  std::string out;
  out.reserve(text.size());
  std::size_t start = 0;
  for (std::size_t at; (at = text.find(what, start)) != std::string_view::npos;
       start = at + what.size()) {
    out.append(text.substr(start, at - start));
    out.append(with);
  }
  out.append(text.substr(start));
  return out;
}

std::u16string ToUtf16(std::string_view text) {
  if (IsAscii(text)) return std::u16string(text.begin(), text.end());
  std::u16string out;
  out.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    char32_t cp = DecodeUtf8(text, pos);
    if (cp < 0x10000) {
      out += static_cast<char16_t>(cp);
    } else {
      cp -= 0x10000;
      out += static_cast<char16_t>(0xD800 + (cp >> 10));
      out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    }
  }
  return out;
}

std::string ToUtf8(std::u16string_view text) {
  if (std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; })) {
    return std::string(text.begin(), text.end());
  }
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t unit = text[i];
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      EncodeUtf8(0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00), out);
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      EncodeUtf8(kReplacement, out);
    } else {
      EncodeUtf8(unit, out);
    }
  }
  return out;
}

int CompareUtf16Order(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    char32_t x = DecodeUtf8(a, i);
    char32_t y = DecodeUtf8(b, j);
    if (x == y) continue;
    std::uint32_t kx = Utf16Key(x);
    std::uint32_t ky = Utf16Key(y);
    if (kx == ky) return x < y ? -1 : 1;  // both supplementary with the same lead surrogate
    return kx < ky ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

}  // namespace brix
