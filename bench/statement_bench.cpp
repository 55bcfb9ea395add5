// Cost of the SELECT statement and of the WHERE text, per condition, for large definitions.
#include <benchmark/benchmark.h>

#include <array>
#include <string>

#include "bench/bench_support.h"
#include "querybuilder/xqb_query.h"

namespace brix {
namespace {

using bench::SetPerCondition;

// Clause kinds that write SQL on a text or number field, and those of a date field.
constexpr std::array kTextKinds = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 17, 19, 20};
constexpr std::array kDateKinds = {1, 3, 14, 15, 16, 18, 21, 22, 23, 24, 28, 29};

// A year for the year kind, a small count for the relative kinds, a day number otherwise.
int DateOperand(qbe_ClauseOperator kind, int index) {
  switch (kind) {
    case qbe_ClauseYear:
      return 2000 + index % 20;
    case qbe_ClauseLastXDays:
    case qbe_ClauseLastXMonths:
    case qbe_ClauseLastXYears:
    case qbe_ClauseNextXDays:
    case qbe_ClauseOverXDays:
      return index % 12;
    default:
      return 40000 + index;
  }
}

void ShapeField(xqb_Field& field, int field_number) {
  constexpr std::array kTypes = {qbe_DataString, qbe_DataNumeric, qbe_DataDate};
  field.SetDBType(kTypes[field_number % kTypes.size()]);
  field.SetAppearanceOrder(static_cast<std::int16_t>(field_number % 7));
  if (field_number % 10 == 0) {
    field.SetOrderByOrder(qbe_SortAscending);
    field.SetOrderByLevel(static_cast<std::int16_t>(field_number % 5));
    field.SetGroupByLevel(static_cast<std::int16_t>(field_number % 3));
    field.SetLinksWithField("Other.Key");
  }
}

void FillCondition(xqb_Condition& condition, const xqb_Field& field, int n) {
  const int index = n % 100;
  if (field.DBType() == qbe_DataDate) {
    condition.SetClause(static_cast<qbe_ClauseOperator>(kDateKinds[n % kDateKinds.size()]));
    condition.SetValue(Variant(DateOperand(condition.Clause(), index)));
    condition.SetSecondaryValue(Variant(40200));
  } else {
    condition.SetClause(static_cast<qbe_ClauseOperator>(kTextKinds[n % kTextKinds.size()]));
    condition.SetValue(Variant("O'Brien " + std::to_string(index)));
    condition.SetSecondaryValue(Variant("z"));
  }
}

// A query of `conditions` conditions, 100 per field and 100 fields per table, on String, Numeric
// and Date fields in turn; every tenth field is sorted, grouped and linked to another table.
std::shared_ptr<xqb_Query> BuildQuery(int conditions) {
  return bench::BuildBenchQuery(conditions, 100, ShapeField, FillCondition);
}

void BM_ReturnSQL(benchmark::State& state) {
  auto query = BuildQuery(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(query->ReturnSQL(100));
  SetPerCondition(state);
}

void BM_ReturnWHEREConditions(benchmark::State& state) {
  auto query = BuildQuery(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(query->ReturnWHEREConditions(false, nullptr, true));
  SetPerCondition(state);
}

// The mix the peer is timed on (bench/peer): equality, range, starts-with, contains, in-list and
// null tests in turn, on String fields of 100 conditions each.
constexpr std::array kPeerMixKinds = {qbe_ClauseEqualTo,  qbe_ClauseBetween, qbe_ClauseStartingWith,
                                      qbe_ClauseContains, qbe_ClauseInList,  qbe_ClauseIsNull};

void BM_ReturnWHEREConditionsPeerMix(benchmark::State& state) {
  auto query = bench::BuildBenchQuery(
      static_cast<int>(state.range(0)), 100,
      [](xqb_Field& field, int) { field.SetDBType(qbe_DataString); },
      [](xqb_Condition& condition, const xqb_Field&, int n) {
        condition.SetClause(kPeerMixKinds[n % kPeerMixKinds.size()]);
        condition.SetValue(Variant(condition.Clause() == qbe_ClauseInList
                                       ? "'a" + std::to_string(n) + "', 'b', 'c'"
                                       : "O'Brien " + std::to_string(n)));
        condition.SetSecondaryValue(Variant("z" + std::to_string(n)));
      });
  for (auto _ : state) benchmark::DoNotOptimize(query->ReturnWHEREConditions());
  SetPerCondition(state);
}

BENCHMARK(BM_ReturnSQL)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReturnWHEREConditions)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReturnWHEREConditionsPeerMix)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brix
