// The fast Base64 core: a scalar reference and an AVX2 path chosen at run time.
#include "persistence/base64_core.h"

#include <immintrin.h>

namespace brix::base64 {
namespace {

// --- Scalar reference -------------------------------------------------------------------------

void EncodeGroupsScalar(const std::uint8_t* in, std::size_t n, std::uint8_t* out) {
  std::size_t i = 0;
  for (; i + 3 <= n; i += 3, out += 4) {
    const std::uint32_t group =
        std::uint32_t{in[i]} << 16 | std::uint32_t{in[i + 1]} << 8 | in[i + 2];
    out[0] = static_cast<std::uint8_t>(kAlphabet[group >> 18]);
    out[1] = static_cast<std::uint8_t>(kAlphabet[group >> 12 & 63]);
    out[2] = static_cast<std::uint8_t>(kAlphabet[group >> 6 & 63]);
    out[3] = static_cast<std::uint8_t>(kAlphabet[group & 63]);
  }
  if (const std::size_t rest = n - i; rest > 0) {
    // The missing input bytes count as 0; their characters become "=".
    const std::uint32_t group =
        std::uint32_t{in[i]} << 16 | (rest == 2 ? std::uint32_t{in[i + 1]} << 8 : 0);
    out[0] = static_cast<std::uint8_t>(kAlphabet[group >> 18]);
    out[1] = static_cast<std::uint8_t>(kAlphabet[group >> 12 & 63]);
    out[2] = rest == 2 ? static_cast<std::uint8_t>(kAlphabet[group >> 6 & 63]) : kPadChar;
    out[3] = kPadChar;
  }
}

std::size_t DecodeCleanGroupsScalar(const std::uint8_t* in, std::size_t groups, std::uint8_t* out) {
  std::size_t g = 0;
  for (; g < groups; ++g, in += 4, out += 3) {
    const std::uint32_t a = kDecodeTable[in[0]], b = kDecodeTable[in[1]];
    const std::uint32_t c = kDecodeTable[in[2]], d = kDecodeTable[in[3]];
    if ((a | b | c | d) >= kPadValue) break;
    const std::uint32_t group = a << 18 | b << 12 | c << 6 | d;
    out[0] = static_cast<std::uint8_t>(group >> 16);
    out[1] = static_cast<std::uint8_t>(group >> 8);
    out[2] = static_cast<std::uint8_t>(group);
  }
  return g;
}

// --- AVX2 -------------------------------------------------------------------------------------

// Nibble tables of the vectorised decoder. A character is in the alphabet when the bits its low
// nibble selects and the bits its high nibble selects have nothing in common: each high nibble
// 2..7 owns one bit, set in the low-nibble entry of every invalid character of its row; every
// other high nibble owns bit 7, which every low-nibble entry carries.
struct NibbleTables {
  std::array<std::int8_t, 16> by_low{};
  std::array<std::int8_t, 16> by_high{};
};

constexpr NibbleTables MakeNibbleTables() {
  NibbleTables tables;
  for (int high = 0; high < 16; ++high) {
    tables.by_high[high] =
        static_cast<std::int8_t>(high >= 2 && high <= 7 ? 1 << (high - 2) : 0x80);
  }
  for (int low = 0; low < 16; ++low) {
    int bits = 0x80;
    for (int high = 2; high <= 7; ++high) {
      if (kDecodeTable[high << 4 | low] >= kPadValue) bits |= 1 << (high - 2);
    }
    tables.by_low[low] = static_cast<std::int8_t>(bits);
  }
  return tables;
}
constexpr NibbleTables kNibbles = MakeNibbleTables();

// What to add to a valid character to get its value, by high nibble; "/" is moved to entry 1.
constexpr std::array<std::int8_t, 16> kRollByHigh = {0,    63 - '/', 62 - '+', 52 - '0',
                                                     -'A', -'A',     26 - 'a', 26 - 'a'};

__attribute__((target("avx2"))) __m256i Broadcast16(const std::array<std::int8_t, 16>& bytes) {
  return _mm256_broadcastsi128_si256(
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data())));
}

// 24 input bytes (two lanes of 12) to 32 characters.
__attribute__((target("avx2"))) std::size_t EncodeBlocksAvx2(const std::uint8_t* in, std::size_t n,
                                                             std::uint8_t* out) {
  // Each 32-bit lane gets b1 b0 b2 b1, so that both 16-bit halves hold two 6-bit fields.
  const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, 1, 0,
                                          2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
  const __m256i offsets =
      _mm256_setr_epi8(71, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 65, 0, 0, 71, -4, -4,
                       -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 65, 0, 0);
  std::size_t i = 0;
  // Each step loads 16 bytes at i and at i + 12.
  for (; i + 28 <= n; i += 24, out += 32) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i + 12));
    const __m256i bytes =
        _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1), spread);
    // Fields a and c by a high multiply, b and d by a low multiply, into bytes a b c d.
    const __m256i ac = _mm256_mulhi_epu16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x0FC0FC00)),
                                          _mm256_set1_epi32(0x04000040));
    const __m256i bd = _mm256_mullo_epi16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x003F03F0)),
                                          _mm256_set1_epi32(0x01000010));
    const __m256i values = _mm256_or_si256(ac, bd);
    // Class of each value: 13 for A-Z, 0 for a-z, 1..10 for digits, 11 "+", 12 "/".
    __m256i cls = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
    const __m256i upper = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
    cls = _mm256_or_si256(cls, _mm256_and_si256(upper, _mm256_set1_epi8(13)));
    const __m256i chars = _mm256_add_epi8(_mm256_shuffle_epi8(offsets, cls), values);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), chars);
  }
  return i;
}

__attribute__((target("avx2"))) std::size_t DecodeCleanGroupsAvx2(const std::uint8_t* in,
                                                                  std::size_t groups,
                                                                  std::uint8_t* out) {
  const __m256i by_low = Broadcast16(kNibbles.by_low);
  const __m256i by_high = Broadcast16(kNibbles.by_high);
  const __m256i roll = Broadcast16(kRollByHigh);
  const __m256i nibble = _mm256_set1_epi8(0x0F);
  const __m256i gather = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1, 2,
                                          1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
  std::size_t g = 0;
  // 8 groups per step; the 32-byte store writes 8 bytes past their 24, so 3 more groups of room
  // must follow.
  for (; g + 11 <= groups; g += 8, in += 32, out += 24) {
    const __m256i chars = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
    const __m256i high = _mm256_and_si256(_mm256_srli_epi32(chars, 4), nibble);
    const __m256i low_bits = _mm256_shuffle_epi8(by_low, _mm256_and_si256(chars, nibble));
    const __m256i high_bits = _mm256_shuffle_epi8(by_high, high);
    if (!_mm256_testz_si256(low_bits, high_bits)) break;
    const __m256i slash = _mm256_cmpeq_epi8(chars, _mm256_set1_epi8('/'));
    const __m256i values =
        _mm256_add_epi8(chars, _mm256_shuffle_epi8(roll, _mm256_add_epi8(slash, high)));
    // a*64+b and c*64+d per 16 bits, then (a*64+b)*4096 + c*64+d per 32 bits.
    const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i words = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    const __m256i packed = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(words, gather),
                                                       _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), packed);
  }
  return g + DecodeCleanGroupsScalar(in, groups - g, out);
}

}  // namespace

bool KernelSupported(Kernel kernel) {
  if (kernel == Kernel::kScalar) return true;
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2");
}

Kernel BestKernel() {
  static const Kernel best = KernelSupported(Kernel::kAvx2) ? Kernel::kAvx2 : Kernel::kScalar;
  return best;
}

void Encode(const std::uint8_t* in, std::size_t n, std::uint8_t* out, Kernel kernel) {
  std::size_t done = kernel == Kernel::kAvx2 ? EncodeBlocksAvx2(in, n, out) : 0;
  EncodeGroupsScalar(in + done, n - done, out + done / 3 * 4);
}

std::size_t DecodeCleanGroups(const std::uint8_t* in, std::size_t groups, std::uint8_t* out,
                              Kernel kernel) {
  return kernel == Kernel::kAvx2 ? DecodeCleanGroupsAvx2(in, groups, out)
                                 : DecodeCleanGroupsScalar(in, groups, out);
}

}  // namespace brix::base64
