// Windows-1250 encoding of UTF-8 text.
#include "runtime/ansi_code_page.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "runtime/text.h"

namespace brix {
namespace {

// The characters of bytes 0x80..0xFF.
// clang-format off
constexpr std::array<char16_t, 128> kHighHalf = {
    0x20AC, 0x0081, 0x201A, 0x0083, 0x201E, 0x2026, 0x2020, 0x2021,  // 0x80
    0x0088, 0x2030, 0x0160, 0x2039, 0x015A, 0x0164, 0x017D, 0x0179,  // 0x88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 0x90
    0x0098, 0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A,  // 0x98
    0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6, 0x00A7,  // 0xA0
    0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B,  // 0xA8
    0x00B0, 0x00B1, 0x02DB, 0x0142, 0x00B4, 0x00B5, 0x00B6, 0x00B7,  // 0xB0
    0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C,  // 0xB8
    0x0154, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7,  // 0xC0
    0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,  // 0xC8
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7,  // 0xD0
    0x0158, 0x016E, 0x00DA, 0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF,  // 0xD8
    0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,  // 0xE0
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F,  // 0xE8
    0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4, 0x0151, 0x00F6, 0x00F7,  // 0xF0
    0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,  // 0xF8
};
// clang-format on

// (character, byte) pairs of the high half, sorted by character for lookup.
using CharByte = std::pair<char16_t, std::uint8_t>;
const std::array<CharByte, 128>& HighHalfByChar() {
  static const std::array<CharByte, 128> sorted = [] {
    std::array<CharByte, 128> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      pairs[i] = {kHighHalf[i], static_cast<std::uint8_t>(0x80 + i)};
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
  }();
  return sorted;
}

constexpr std::uint8_t kUnmapped = '?';

std::uint8_t ByteOf(char16_t unit) {
  if (unit < 0x80) return static_cast<std::uint8_t>(unit);
  const auto& pairs = HighHalfByChar();
  auto found = std::lower_bound(pairs.begin(), pairs.end(), CharByte{unit, 0});
  return found != pairs.end() && found->first == unit ? found->second : kUnmapped;
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace

std::string FromAnsiBytes(std::string_view bytes) {
  std::u16string units;
  units.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto code = static_cast<std::uint8_t>(byte);
    units.push_back(code < 0x80 ? char16_t{code} : kHighHalf[code - 0x80]);
  }
  return ToUtf8(units);
}

ByteArray ToAnsiBytes(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  ByteArray bytes;
  bytes.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    // A surrogate pair is one character, and one "?".
    if (IsHighSurrogate(units[i]) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) ++i;
    bytes.push_back(IsHighSurrogate(units[i]) || IsLowSurrogate(units[i]) ? kUnmapped
                                                                          : ByteOf(units[i]));
  }
  return bytes;
}

}  // namespace brix
