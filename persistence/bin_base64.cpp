// The text form of the DOM's "bin.base64" typed value.
#include "persistence/bin_base64.h"

#include <cstdio>

#include "persistence/base64_core.h"
#include "persistence/xml_prop_bag_errors.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::size_t kLineLength = 72;

bool IsBlank(unsigned char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

[[noreturn]] void RaiseBadBase64(std::string reason) {
  RaiseXMLPropBagError(kErrXMLDomFailure, "Invalid Base64 text: " + std::move(reason));
}

}  // namespace

std::string EncodeBinBase64(const ByteArray& bytes) {
  std::string plain(base64::EncodedSize(bytes.size()), '\0');
  if (!bytes.empty()) {
    base64::Encode(bytes.data(), bytes.size(), reinterpret_cast<std::uint8_t*>(plain.data()));
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
  const auto* chars = reinterpret_cast<const std::uint8_t*>(text.data());
  // No more than 3 bytes per 4 characters, whatever the blanks.
  ByteArray bytes(text.size() / 4 * 3 + 3);
  std::size_t written = 0;
  std::uint32_t group = 0;
  std::size_t data_chars = 0;
  std::size_t pads = 0;
  for (std::size_t pos = 0; pos < text.size(); ++pos) {
    if (data_chars % 4 == 0 && pads == 0) {
      // Whole lines of clean groups go through the fast core; it stops at a blank or "=".
      const std::size_t done =
          base64::DecodeCleanGroups(chars + pos, (text.size() - pos) / 4, bytes.data() + written);
      written += 3 * done;
      data_chars += 4 * done;
      pos += 4 * done;
      if (pos == text.size()) break;
    }
    const unsigned char c = chars[pos];
    if (IsBlank(c)) continue;
    const std::uint8_t value = base64::kDecodeTable[c];
    if (value == base64::kNoValue) {
      char code[8];
      std::snprintf(code, sizeof code, "0x%02X", c);
      RaiseBadBase64("the character " + std::string(code) + " at position " +
                     std::to_string(pos + 1) + " is not allowed.");
    }
    if (value == base64::kPadValue) {
      ++pads;
      continue;
    }
    if (pads > 0)
      RaiseBadBase64("data follows the padding at position " + std::to_string(pos + 1) + ".");
    group = group << 6 | value;
    if (++data_chars % 4 == 0) {
      bytes[written++] = static_cast<std::uint8_t>(group >> 16);
      bytes[written++] = static_cast<std::uint8_t>(group >> 8);
      bytes[written++] = static_cast<std::uint8_t>(group);
      group = 0;
    }
  }
  const std::size_t tail = data_chars % 4;
  if (tail == 1) RaiseBadBase64("the last group has a single character.");
  if (pads > 0 && (pads > 2 || (data_chars + pads) % 4 != 0)) {
    RaiseBadBase64("the padding does not complete the last group.");
  }
  if (tail == 2) bytes[written++] = static_cast<std::uint8_t>(group >> 4);
  if (tail == 3) {
    bytes[written++] = static_cast<std::uint8_t>(group >> 10);
    bytes[written++] = static_cast<std::uint8_t>(group >> 2);
  }
  bytes.resize(written);
  return bytes;
}

}  // namespace brix
