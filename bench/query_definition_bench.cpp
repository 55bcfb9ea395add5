// Cost of saving and loading whole query definitions, per condition, next to a plain DOM parse
// and print of the same text.
#include <benchmark/benchmark.h>

#include <pugixml.hpp>
#include <sstream>
#include <string>

#include "querybuilder/xqb_query.h"

namespace brix {
namespace {

constexpr int kConditionsPerField = 100;
constexpr int kFieldsPerTable = 10;

// A query of `conditions` conditions: 100 per field, 10 fields per table, values of several
// kinds, as a host's saved definitions hold them.
std::shared_ptr<xqb_Query> BuildQuery(int conditions) {
  auto query = xqb_Query::Create();
  query->SetQueryName("Bench");
  std::shared_ptr<xqb_Table> table;
  std::shared_ptr<xqb_Field> field;
  for (int n = 0; n < conditions; ++n) {
    int field_number = n / kConditionsPerField;
    if (n % (kConditionsPerField * kFieldsPerTable) == 0) {
      table = query->Tables()->Add("Table " + std::to_string(field_number / kFieldsPerTable));
    }
    if (n % kConditionsPerField == 0) {
      field = table->Fields()->Add("Field " + std::to_string(field_number));
      field->SetShowAsType(qbe_DataString);
    }
    auto condition = xqb_Condition::Create();
    condition->SetConditionID(n % kConditionsPerField);
    condition->SetClause(static_cast<qbe_ClauseOperator>(1 + n % 20));
    condition->SetValue(n % 3 == 0 ? Variant(n) : Variant("value " + std::to_string(n)));
    condition->SetSecondaryValue(n % 5 == 0 ? Variant("a<b") : Variant(""));
    field->Conditions()->AddObjectCondition(condition);
  }
  return query;
}

void SetPerCondition(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  // Seconds per condition, printed with an SI prefix (e.g. "1.2u").
  state.counters["per_condition"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
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
  std::string text = BuildQuery(static_cast<int>(state.range(0)))->SaveXMLDef();
  for (auto _ : state) {
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer(text.data(), text.size()));
  }
  SetPerCondition(state);
}

void BM_RawPugixmlSave(benchmark::State& state) {
  std::string text = BuildQuery(static_cast<int>(state.range(0)))->SaveXMLDef();
  pugi::xml_document document;
  document.load_buffer(text.data(), text.size());
  for (auto _ : state) {
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    benchmark::DoNotOptimize(out.str());
  }
  SetPerCondition(state);
}

BENCHMARK(BM_SaveXMLDef)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawPugixmlSave)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadXMLDef)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawPugixmlParse)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brix
