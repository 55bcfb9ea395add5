// Base64 encode and decode of 1 MiB beside memcpy of the same size, and the scalar fallback of
// the shared core for comparison.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

#include "persistence/base64_core.h"
#include "persistence/cls_base64.h"

namespace brix {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

ByteArray RandomBytes(std::size_t size) {
  std::mt19937 random(1);
  ByteArray bytes(size);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

// 1 MiB of Base64 text: the encoding of 768 KiB.
ByteArray EncodedMiB() {
  ByteArray text;
  clsBase64::Create()->EncodeB64(RandomBytes(kMiB / 4 * 3), text);
  return text;
}

void BM_Memcpy(benchmark::State& state) {
  const ByteArray in = RandomBytes(kMiB);
  ByteArray out(kMiB);
  for (auto _ : state) {
    std::memcpy(out.data(), in.data(), in.size());
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kMiB));
}

// The output array is reused between calls, as a host encoding one document after another does.
void BM_EncodeB64(benchmark::State& state) {
  const ByteArray in = RandomBytes(kMiB);
  auto codec = clsBase64::Create();
  ByteArray out;
  for (auto _ : state) {
    codec->EncodeB64(in, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kMiB));
}

void BM_DecodeB64(benchmark::State& state) {
  const ByteArray in = EncodedMiB();
  auto codec = clsBase64::Create();
  ByteArray out;
  for (auto _ : state) {
    codec->DecodeB64(in, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kMiB));
}

void BM_EncodeScalarCore(benchmark::State& state) {
  const ByteArray in = RandomBytes(kMiB);
  ByteArray out(base64::EncodedSize(kMiB));
  for (auto _ : state) {
    base64::Encode(in.data(), in.size(), out.data(), base64::Kernel::kScalar);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kMiB));
}

void BM_DecodeScalarCore(benchmark::State& state) {
  const ByteArray in = EncodedMiB();
  ByteArray out(kMiB / 4 * 3);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        base64::DecodeCleanGroups(in.data(), kMiB / 4, out.data(), base64::Kernel::kScalar));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kMiB));
}

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_EncodeB64);
BENCHMARK(BM_DecodeB64);
BENCHMARK(BM_EncodeScalarCore);
BENCHMARK(BM_DecodeScalarCore);

}  // namespace
}  // namespace brix
