// Appending many short strings: the string builder beside a reserved std::u16string.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <string>

#include "diagnostics/string_builder.h"

namespace brix {
namespace {

// Short pieces of 1 to 16 characters, as a trace or a report is made of.
const std::array<std::u16string, 6> kPieces = {u"<",         u"errortrace", u">\r\n\t",
                                               u"Gravitate", u":       ",   u"Invalid procedure"};

std::int64_t TotalUnits(std::int64_t appends) {
  std::int64_t units = 0;
  for (std::int64_t i = 0; i < appends; ++i) units += kPieces[i % kPieces.size()].size();
  return units;
}

void BM_StringBuilderAppend(benchmark::State& state) {
  const std::int64_t appends = state.range(0);
  for (auto _ : state) {
    auto builder = StringBuilder::Create();
    for (std::int64_t i = 0; i < appends; ++i) builder->Append(kPieces[i % kPieces.size()]);
    benchmark::DoNotOptimize(builder->length());
  }
  state.SetItemsProcessed(state.iterations() * appends);
}

void BM_StringBuilderAppendPresized(benchmark::State& state) {
  const std::int64_t appends = state.range(0);
  const auto bytes = static_cast<std::int32_t>(2 * TotalUnits(appends));
  for (auto _ : state) {
    auto builder = StringBuilder::Create();
    builder->EnsureCapacity(bytes);
    for (std::int64_t i = 0; i < appends; ++i) builder->Append(kPieces[i % kPieces.size()]);
    benchmark::DoNotOptimize(builder->length());
  }
  state.SetItemsProcessed(state.iterations() * appends);
}

void BM_U16StringAppendReserved(benchmark::State& state) {
  const std::int64_t appends = state.range(0);
  const auto units = static_cast<std::size_t>(TotalUnits(appends));
  for (auto _ : state) {
    std::u16string text;
    text.reserve(units);
    for (std::int64_t i = 0; i < appends; ++i) text += kPieces[i % kPieces.size()];
    benchmark::DoNotOptimize(text.size());
  }
  state.SetItemsProcessed(state.iterations() * appends);
}

BENCHMARK(BM_StringBuilderAppend)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_StringBuilderAppendPresized)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_U16StringAppendReserved)->Arg(1000)->Arg(10000)->Arg(100000);

}  // namespace
}  // namespace brix
