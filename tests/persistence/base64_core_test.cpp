// The vectorised Base64 paths give the bytes of the scalar reference, on random input with every
// byte value placed at every position of a block, and stop at the same group.
#include "persistence/base64_core.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace brix {
namespace {

using base64::Kernel;

std::vector<std::uint8_t> RandomText(std::mt19937& random, std::size_t size) {
  std::vector<std::uint8_t> text(size);
  for (auto& c : text) c = static_cast<std::uint8_t>(base64::kAlphabet[random() % 64]);
  return text;
}

// Encodes with `kernel` into an array of exactly the encoded size, so that any write past it is
// caught by the address sanitizer.
std::vector<std::uint8_t> Encoded(const std::vector<std::uint8_t>& in, Kernel kernel) {
  std::vector<std::uint8_t> out(base64::EncodedSize(in.size()));
  base64::Encode(in.data(), in.size(), out.data(), kernel);
  return out;
}

// The groups decoded and their bytes, into an array of exactly 3 bytes per group.
std::pair<std::size_t, std::vector<std::uint8_t>> Decoded(const std::vector<std::uint8_t>& text,
                                                          Kernel kernel) {
  const std::size_t groups = text.size() / 4;
  std::vector<std::uint8_t> out(3 * groups);
  const std::size_t done = base64::DecodeCleanGroups(text.data(), groups, out.data(), kernel);
  out.resize(3 * done);
  return {done, out};
}

class Base64Kernels : public testing::Test {
 protected:
  void SetUp() override {
    if (!base64::KernelSupported(Kernel::kAvx2)) GTEST_SKIP() << "no AVX2 on this CPU";
  }
  std::mt19937 random_{4648};
};

TEST_F(Base64Kernels, EncodeMatchesTheScalarPathAtEverySize) {
  for (std::size_t size = 0; size < 700; ++size) {
    std::vector<std::uint8_t> in(size);
    for (auto& byte : in) byte = static_cast<std::uint8_t>(random_());
    ASSERT_EQ(Encoded(in, Kernel::kAvx2), Encoded(in, Kernel::kScalar)) << size;
  }
  // Every byte value in every position of a 24-byte block.
  std::vector<std::uint8_t> all(256 * 3);
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  EXPECT_EQ(Encoded(all, Kernel::kAvx2), Encoded(all, Kernel::kScalar));
}

TEST_F(Base64Kernels, DecodeMatchesTheScalarPathOnCleanText) {
  for (std::size_t size = 0; size < 700; size += 4) {
    const auto text = RandomText(random_, size);
    const auto avx2 = Decoded(text, Kernel::kAvx2);
    ASSERT_EQ(avx2, Decoded(text, Kernel::kScalar)) << size;
    ASSERT_EQ(avx2.first, size / 4);
  }
}

TEST_F(Base64Kernels, DecodeStopsAtTheSameGroupForEveryOtherByte) {
  // 64 groups: enough for several vector steps before and after the planted byte.
  for (int c = 0; c < 256; ++c) {
    if (base64::kDecodeTable[c] < 64) continue;
    for (std::size_t at = 0; at < 96; ++at) {
      auto text = RandomText(random_, 256);
      text[at] = static_cast<std::uint8_t>(c);
      const auto avx2 = Decoded(text, Kernel::kAvx2);
      ASSERT_EQ(avx2, Decoded(text, Kernel::kScalar)) << c << " at " << at;
      ASSERT_EQ(avx2.first, at / 4) << c << " at " << at;
    }
  }
}

}  // namespace
}  // namespace brix
