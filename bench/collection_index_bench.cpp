// Cost per item of the collections' lookup indexes under edits: a rename between lookups, a value
// set after each addition, and many conditions under one duplicate key. A collection holds at
// most 32,000 items (its searches count in 16 bits), so larger sizes fill several collections.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "querybuilder/xqb_conditions.h"
#include "querybuilder/xqb_fields.h"
#include "querybuilder/xqb_query.h"

namespace brix {
namespace {

using bench::SetPerCondition;

constexpr int kMostPerCollection = 32000;

// Sizes of the collections that together hold `items`.
std::vector<int> CollectionSizes(int items) {
  std::vector<int> sizes;
  for (int left = items; left > 0; left -= kMostPerCollection) {
    sizes.push_back(std::min(left, kMostPerCollection));
  }
  return sizes;
}

// Each step renames a field of an unrelated query and one of the searched collections, then asks
// whether a name exists there: every lookup follows a key change. The renames go round the first
// 64 fields of each collection, so that the figure is the work of a step and not the time a table
// larger than the caches takes to answer from memory.
void BM_RenameBetweenLookups(benchmark::State& state) {
  constexpr int kRenamed = 64;
  auto other = xqb_Query::Create()->Tables()->Add("Other")->Fields()->Add("Renamed");
  std::vector<std::shared_ptr<xqb_Fields>> collections;
  for (int size : CollectionSizes(static_cast<int>(state.range(0)))) {
    collections.push_back(xqb_Fields::Create());
    for (int n = 0; n < size; ++n) collections.back()->Add("F" + std::to_string(n));
  }
  int round = 0;
  for (auto _ : state) {
    for (const auto& fields : collections) {
      for (int n = 0; n < fields->Count(); ++n) {
        const int renamed = n % kRenamed;
        const std::string name = (++round % 2 ? "R" : "F") + std::to_string(renamed);
        other->SetDBName(name);
        fields->Item(Variant(renamed + 1))->SetDBName(name);
        benchmark::DoNotOptimize(fields->FieldExists(name));
      }
    }
  }
  SetPerCondition(state);
}

// Adds `state.range(0)` new conditions to new collections, each with ConditionID n, passing it to
// `before` before it is added and to `after` once it is held.
template <class Before, class After>
void TimeAdding(benchmark::State& state, Before before, After after) {
  const std::vector<int> sizes = CollectionSizes(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    for (int size : sizes) {
      auto conditions = xqb_Conditions::Create();
      for (int n = 0; n < size; ++n) {
        auto condition = xqb_Condition::Create();
        condition->SetConditionID(n);
        before(*condition);
        conditions->AddObjectCondition(condition);
        after(*condition, n);
      }
      benchmark::DoNotOptimize(conditions);
    }
  }
  SetPerCondition(state);
}

// A screen's way of adding conditions: a new condition is added, then given its clause and value.
void BM_AddThenSetValue(benchmark::State& state) {
  TimeAdding(
      state, [](xqb_Condition&) {},
      [](xqb_Condition& condition, int n) {
        condition.SetClause(qbe_ClauseEqualTo);
        condition.SetValue(Variant(n));
      });
}

// Equal-to 5 may be added any number of times (the stored secondary value, "", differs from 5),
// so every condition here has the same duplicate key.
void BM_EqualDuplicateKeys(benchmark::State& state) {
  TimeAdding(
      state,
      [](xqb_Condition& condition) {
        condition.SetClause(qbe_ClauseEqualTo);
        condition.SetValue(Variant(5));
        condition.SetSecondaryValue(Variant(""));
      },
      [](xqb_Condition&, int) {});
}

BENCHMARK(BM_RenameBetweenLookups)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddThenSetValue)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EqualDuplicateKeys)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(32000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brix
