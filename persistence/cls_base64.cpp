// clsBase64 over the shared Base64 core: sizing, tail rules, line breaking and joining.
#include "persistence/cls_base64.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "persistence/base64_core.h"
#include "runtime/ansi_code_page.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::uint8_t kCR = 13;
constexpr std::uint8_t kLF = 10;

// Gives `target` `size` bytes that `fill` writes (all of them: old content may remain), through
// a fresh array when `target` is also the input, else reusing `target`'s storage.
template <class Fill>
void Produce(const ByteArray& input, ByteArray& target, std::size_t size, Fill fill) {
  if (&input == &target) {
    ByteArray fresh(size);
    fill(fresh.data());
    target = std::move(fresh);
    return;
  }
  target.resize(size);
  fill(target.data());
}

// The number of "=" that the text ends with, at most 2.
std::size_t TrailingPads(const ByteArray& text) {
  const std::size_t n = text.size();
  if (n == 0 || text[n - 1] != base64::kPadChar) return 0;
  return n >= 2 && text[n - 2] == base64::kPadChar ? 2 : 1;
}

// Decodes one group of `chars` (1 to 4) characters the tolerant way, writing its bytes at
// `out[at]` up to `size`; returns the index after them.
std::size_t DecodeGroupTolerant(const std::uint8_t* in, std::size_t chars, std::uint8_t* out,
                                std::size_t at, std::size_t size) {
  std::uint32_t v[4] = {0, 0, 0, 0};
  for (std::size_t k = 0; k < chars; ++k) v[k] = base64::kDecodeTable[in[k]];
  std::size_t count = v[2] == base64::kPadValue ? 1 : v[3] == base64::kPadValue ? 2 : 3;
  // A short last group gives only the bytes its characters fill completely.
  count = std::min(count, chars * 3 / 4);
  const std::uint32_t bytes[3] = {v[0] << 2 | v[1] >> 4, (v[1] & 15) << 4 | v[2] >> 2,
                                  (v[2] & 3) << 6 | v[3]};
  for (std::size_t k = 0; k < count && at < size; ++k) {
    out[at++] = static_cast<std::uint8_t>(bytes[k]);
  }
  return at;
}

// Decodes `in[0, n)` into `out[0, size)`: runs of clean groups through the fast core, every other
// group one by one. Returns the number of bytes written.
std::size_t DecodeTolerant(const std::uint8_t* in, std::size_t n, std::uint8_t* out,
                           std::size_t size) {
  const std::size_t whole_groups = n / 4;
  // Groups whose 3 bytes fit whatever the groups before them gave.
  const std::size_t fitting_groups = std::min(whole_groups, size / 3);
  std::size_t group = 0, at = 0;
  while (group < whole_groups) {
    if (group < fitting_groups) {
      const std::size_t done =
          base64::DecodeCleanGroups(in + 4 * group, fitting_groups - group, out + at);
      group += done;
      at += 3 * done;
      if (group == whole_groups) break;
    }
    at = DecodeGroupTolerant(in + 4 * group, 4, out, at, size);
    ++group;
  }
  if (n % 4 != 0) at = DecodeGroupTolerant(in + 4 * group, n % 4, out, at, size);
  return at;
}

}  // namespace

std::shared_ptr<clsBase64> clsBase64::Create() { return std::shared_ptr<clsBase64>(new clsBase64); }

void clsBase64::Class_Initialize() {}

void clsBase64::EncodeB64(const ByteArray& DataIn, ByteArray& DataOut) {
  Produce(DataIn, DataOut, base64::EncodedSize(DataIn.size()), [&](std::uint8_t* out) {
    if (!DataIn.empty()) base64::Encode(DataIn.data(), DataIn.size(), out);
  });
}

void clsBase64::Str2ByteArray(const std::string& StringIn, brix::ByteArray& ByteArray) {
  ByteArray = ToAnsiBytes(StringIn);
}

void clsBase64::Span(std::int32_t CharsPerLine, const ByteArray& InArray, ByteArray& OutArray) {
  if (CharsPerLine < 1) RaiseRuntimeError(kErrInvalidProcedureCall);
  const std::size_t n = InArray.size();
  const std::size_t line = static_cast<std::size_t>(CharsPerLine);
  // The line count is worked out in single precision, as hosts size their buffers the same way.
  const float quotient = static_cast<float>(n) / static_cast<float>(CharsPerLine);
  const std::size_t lines = static_cast<std::size_t>(std::ceil(quotient));
  const std::size_t size = n + 2 * lines;
  Produce(InArray, OutArray, size, [&](std::uint8_t* out) {
    std::size_t in = 0, at = 0;
    while (in < n && at < size) {
      const std::size_t take = std::min({line, n - in, size - at});
      std::memcpy(out + at, InArray.data() + in, take);
      in += take;
      at += take;
      if (at < size) out[at++] = kCR;
      if (at < size) out[at++] = kLF;
    }
    std::fill(out + at, out + size, std::uint8_t{0});
  });
}

void clsBase64::DecodeB64(const ByteArray& DataIn, ByteArray& DataOut) {
  const std::size_t n = DataIn.size();
  const std::size_t counted = n / 4 * 3 + n % 4 * 3 / 4;
  const std::size_t size = counted - std::min(counted, TrailingPads(DataIn));
  Produce(DataIn, DataOut, size, [&](std::uint8_t* out) {
    const std::size_t written = n == 0 ? 0 : DecodeTolerant(DataIn.data(), n, out, size);
    std::fill(out + written, out + size, std::uint8_t{0});
  });
}

void clsBase64::Unspan(const ByteArray& ArrayIn, ByteArray& ArrayOut) {
  std::size_t written = 0;
  Produce(ArrayIn, ArrayOut, ArrayIn.size(), [&](std::uint8_t* out) {
    const std::uint8_t* from = ArrayIn.data();
    const std::uint8_t* const end = from + ArrayIn.size();
    while (from < end) {
      const auto* cr = static_cast<const std::uint8_t*>(std::memchr(from, kCR, end - from));
      const std::uint8_t* keep_end = cr == nullptr ? end : cr + 1;
      const bool pair = cr != nullptr && cr + 1 < end && cr[1] == kLF;
      if (pair) keep_end = cr;
      std::memcpy(out + written, from, keep_end - from);
      written += keep_end - from;
      from = pair ? cr + 2 : keep_end;
    }
  });
  ArrayOut.resize(written);
}

}  // namespace brix
