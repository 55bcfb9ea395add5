// The fast Base64 core shared by clsBase64 and the XML bag's "bin.base64" values: whole-buffer
// encoding and the decoding of runs of clean groups, vectorised with a scalar fallback.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brix::base64 {

/// The 64 characters of the standard alphabet in value order.
inline constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr std::uint8_t kPadChar = '=';
/// Decode table values: 0..63 for the alphabet, `kPadValue` for "=", `kNoValue` otherwise.
inline constexpr std::uint8_t kPadValue = 64;
inline constexpr std::uint8_t kNoValue = 255;

constexpr std::array<std::uint8_t, 256> MakeDecodeTable() {
  std::array<std::uint8_t, 256> table{};
  for (std::uint8_t& entry : table) entry = kNoValue;
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  table[kPadChar] = kPadValue;
  return table;
}
inline constexpr std::array<std::uint8_t, 256> kDecodeTable = MakeDecodeTable();

/// The code paths. Every path gives the same bytes; the vectorised ones only run where the CPU
/// has the instructions.
enum class Kernel { kScalar, kAvx2 };

/// True when the running CPU can execute `kernel`.
bool KernelSupported(Kernel kernel);
/// The fastest kernel the running CPU supports, decided once.
Kernel BestKernel();

/// 4 characters per started group of 3 bytes.
constexpr std::size_t EncodedSize(std::size_t byte_count) { return (byte_count + 2) / 3 * 4; }

/// Writes the padded Base64 text of `in[0, n)` to `out[0, EncodedSize(n))`, without line breaks.
void Encode(const std::uint8_t* in, std::size_t n, std::uint8_t* out, Kernel kernel = BestKernel());

/// Decodes the leading groups of `in` (up to `groups` groups of 4 characters) while all four
/// characters of a group belong to the alphabet, 3 bytes per group to `out`; stops before the
/// first group holding "=", a line break or any other byte. Returns the number of groups
/// decoded. `out` must have room for `3 * groups` bytes; bytes past the returned groups' output
/// may be overwritten within that room.
std::size_t DecodeCleanGroups(const std::uint8_t* in, std::size_t groups, std::uint8_t* out,
                              Kernel kernel = BestKernel());

}  // namespace brix::base64
