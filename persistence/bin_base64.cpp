// The text form of the DOM's "bin.base64" typed value.
#include "persistence/bin_base64.h"

#include <array>
#include <cstdio>

#include "persistence/xml_prop_bag_errors.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kLineLength = 72;
constexpr int kSkip = -1;
constexpr int kInvalid = -2;
constexpr int kPad = -3;

constexpr std::array<int, 256> MakeDecodeTable() {
  std::array<int, 256> table{};
  for (int& entry : table) entry = kInvalid;
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<int>(i);
  }
  for (unsigned char blank : {' ', '\t', '\r', '\n'}) table[blank] = kSkip;
  table['='] = kPad;
  return table;
}
constexpr std::array<int, 256> kDecodeTable = MakeDecodeTable();

[[noreturn]] void RaiseBadBase64(std::string reason) {
  RaiseXMLPropBagError(kErrXMLDomFailure, "Invalid Base64 text: " + std::move(reason));
}

}  // namespace

std::string EncodeBinBase64(const ByteArray& bytes) {
  std::string plain;
  plain.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3) {
    const std::uint32_t group = bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2];
    for (int shift = 18; shift >= 0; shift -= 6) plain += kAlphabet[group >> shift & 0x3F];
  }
  if (const std::size_t rest = bytes.size() - i; rest > 0) {
    const std::uint32_t group = bytes[i] << 16 | (rest == 2 ? bytes[i + 1] << 8 : 0);
    plain += kAlphabet[group >> 18 & 0x3F];
    plain += kAlphabet[group >> 12 & 0x3F];
    plain += rest == 2 ? kAlphabet[group >> 6 & 0x3F] : '=';
    plain += '=';
  }
  std::string text;
  text.reserve(plain.size() + plain.size() / kLineLength);
  for (std::size_t line = 0; line < plain.size(); line += kLineLength) {
    if (line > 0) text += '\n';
    text.append(plain, line, kLineLength);
  }
  return text;
}

ByteArray DecodeBinBase64(std::string_view text) {
  ByteArray bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;
  std::size_t data_chars = 0;
  std::size_t pads = 0;
  for (std::size_t pos = 0; pos < text.size(); ++pos) {
    const unsigned char c = static_cast<unsigned char>(text[pos]);
    const int value = kDecodeTable[c];
    if (value == kSkip) continue;
    if (value == kInvalid) {
      char code[8];
      std::snprintf(code, sizeof code, "0x%02X", c);
      RaiseBadBase64("the character " + std::string(code) + " at position " +
                     std::to_string(pos + 1) + " is not allowed.");
    }
    if (value == kPad) {
      ++pads;
      continue;
    }
    if (pads > 0)
      RaiseBadBase64("data follows the padding at position " + std::to_string(pos + 1) + ".");
    group = group << 6 | static_cast<std::uint32_t>(value);
    if (++data_chars % 4 == 0) {
      bytes.push_back(static_cast<std::uint8_t>(group >> 16));
      bytes.push_back(static_cast<std::uint8_t>(group >> 8));
      bytes.push_back(static_cast<std::uint8_t>(group));
      group = 0;
    }
  }
  const std::size_t tail = data_chars % 4;
  if (tail == 1) RaiseBadBase64("the last group has a single character.");
  if (pads > 0 && (pads > 2 || (data_chars + pads) % 4 != 0)) {
    RaiseBadBase64("the padding does not complete the last group.");
  }
  if (tail == 2) bytes.push_back(static_cast<std::uint8_t>(group >> 4));
  if (tail == 3) {
    bytes.push_back(static_cast<std::uint8_t>(group >> 10));
    bytes.push_back(static_cast<std::uint8_t>(group >> 2));
  }
  return bytes;
}

}  // namespace brix
