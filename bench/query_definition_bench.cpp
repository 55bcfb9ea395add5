// Cost of saving and loading whole query definitions, per condition, next to a plain DOM parse
// and print of the same text.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/bench_support.h"
#include "querybuilder/xqb_query.h"

namespace brix {
namespace {

using bench::SetPerCondition;

std::shared_ptr<xqb_Query> BuildQuery(int conditions) {
  return bench::BuildDefinitionQuery(conditions);
}

void BM_SaveXMLDef(benchmark::State& state) {
  auto query = BuildQuery(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(query->SaveXMLDef());
  SetPerCondition(state);
}

void BM_LoadXMLDef(benchmark::State& state) {
  std::string text = BuildQuery(static_cast<int>(state.range(0)))->SaveXMLDef();
  for (auto _ : state) {
    auto query = xqb_Query::Create();
    query->LoadXMLDef(text);
    benchmark::DoNotOptimize(query);
  }
  SetPerCondition(state);
}

void BM_RawPugixmlParse(benchmark::State& state) {
  bench::TimeDomParse(state, BuildQuery(static_cast<int>(state.range(0)))->SaveXMLDef());
  SetPerCondition(state);
}

void BM_RawPugixmlSave(benchmark::State& state) {
  bench::TimeDomSave(state, BuildQuery(static_cast<int>(state.range(0)))->SaveXMLDef());
  SetPerCondition(state);
}

BENCHMARK(BM_SaveXMLDef)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawPugixmlSave)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadXMLDef)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawPugixmlParse)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brix
