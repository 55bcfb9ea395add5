// The C++ side of the Python binding's benchmark: one ReturnSQL and one parameterized statement
// on the orders sample, which the Python benchmark times through the module.
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <string>

#include "querybuilder/xqb_query.h"

namespace brix {
namespace {

std::shared_ptr<xqb_Query> OrdersSample() {
  std::ifstream file(BRIX_ORDERS_SAMPLE, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  auto query = xqb_Query::Create();
  query->LoadXMLDef(text.str());
  return query;
}

void BM_OrdersSql(benchmark::State& state) {
  auto query = OrdersSample();
  for (auto _ : state) benchmark::DoNotOptimize(query->ReturnSQL(0));
}
BENCHMARK(BM_OrdersSql);

void BM_OrdersParameterized(benchmark::State& state) {
  auto query = OrdersSample();
  StatementOptions options;
  options.dialect = SqlDialect::kPostgreSQL;
  for (auto _ : state) benchmark::DoNotOptimize(query->ReturnParameterizedSQL(options));
}
BENCHMARK(BM_OrdersParameterized);

}  // namespace
}  // namespace brix
