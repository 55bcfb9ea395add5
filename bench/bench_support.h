// What the benchmark files share: the per-condition counter and the plain DOM baselines.
#pragma once

#include <benchmark/benchmark.h>

#include <memory>
#include <pugixml.hpp>
#include <sstream>
#include <string>

#include "querybuilder/xqb_query.h"

namespace brix::bench {

/// Reports items per second and the seconds per condition, where `state.range(0)` counts the
/// conditions (printed with an SI prefix, e.g. "250n").
inline void SetPerCondition(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["per_condition"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// A query of `conditions` conditions, 100 per field, in tables of `fields_per_table` fields
/// named "Table t" and "Field f". `shape_field(field, f)` sets up each new field and
/// `fill(condition, field, n)` each condition before it is added; its ConditionID is n % 100.
template <class ShapeField, class Fill>
std::shared_ptr<xqb_Query> BuildBenchQuery(int conditions, int fields_per_table,
                                           ShapeField shape_field, Fill fill) {
  constexpr int kConditionsPerField = 100;
  auto query = xqb_Query::Create();
  std::shared_ptr<xqb_Table> table;
  std::shared_ptr<xqb_Field> field;
  for (int n = 0; n < conditions; ++n) {
    const int field_number = n / kConditionsPerField;
    if (n % (kConditionsPerField * fields_per_table) == 0) {
      table = query->Tables()->Add("Table " + std::to_string(field_number / fields_per_table));
    }
    if (n % kConditionsPerField == 0) {
      field = table->Fields()->Add("Field " + std::to_string(field_number));
      shape_field(*field, field_number);
    }
    auto condition = xqb_Condition::Create();
    condition->SetConditionID(n % kConditionsPerField);
    fill(*condition, *field, n);
    field->Conditions()->AddObjectCondition(condition);
  }
  return query;
}

/// A query of `conditions` conditions: 100 per field, 10 fields per table, values of several
/// kinds, as a host's saved definitions hold them.
inline std::shared_ptr<xqb_Query> BuildDefinitionQuery(int conditions) {
  auto query = BuildBenchQuery(
      conditions, 10, [](xqb_Field& field, int) { field.SetShowAsType(qbe_DataString); },
      [](xqb_Condition& condition, const xqb_Field&, int n) {
        condition.SetClause(static_cast<qbe_ClauseOperator>(1 + n % 20));
        condition.SetValue(n % 3 == 0 ? Variant(n) : Variant("value " + std::to_string(n)));
        condition.SetSecondaryValue(n % 5 == 0 ? Variant("a<b") : Variant(""));
      });
  query->SetQueryName("Bench");
  return query;
}

/// Times a plain DOM parse of `text`, a new document each time.
inline void TimeDomParse(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer(text.data(), text.size()));
  }
}

/// Times a plain DOM print of `text` once parsed, without declaration or indentation.
inline void TimeDomSave(benchmark::State& state, const std::string& text) {
  pugi::xml_document document;
  document.load_buffer(text.data(), text.size());
  for (auto _ : state) {
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    benchmark::DoNotOptimize(out.str());
  }
}

}  // namespace brix::bench
