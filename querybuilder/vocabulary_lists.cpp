// Value/caption lists of data types, control types, sort types and aggregate functions.
#include "querybuilder/vocabulary_lists.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "querybuilder/xqb_definitions.h"

namespace brix {
namespace {

using Row = std::pair<std::int32_t, std::string_view>;

Variant PairList(std::initializer_list<Row> rows) {
  VariantArray list;
  for (const auto& [value, caption] : rows) {
    list.items.emplace_back(VariantArray{{Variant(value), Variant(caption)}});
  }
  return Variant(std::move(list));
}

}  // namespace

Variant DataTypeList() {
  return PairList({{qbe_DataBLOB, "BLOB"},
                   {qbe_DataBoolean, "Boolean"},
                   {qbe_DataDate, "Date"},
                   {qbe_DataDecimal, "Decimal"},
                   {qbe_DataMemo, "Memo"},
                   {qbe_DataNumeric, "Numeric"},
                   {qbe_DataString, "String"},
                   {qbe_DataTime, "Time"},
                   {qbe_DataUserDefined1, "User defined data type 1"},
                   {qbe_DataUserDefined2, "User defined data type 2"},
                   {qbe_DataUserDefined3, "Large Text"},
                   {qbe_DataUTCDate, "User defined date"}});
}

Variant ControlTypeList() {
  return PairList({{qbe_ControlCombo, "Combo box"},
                   {qbe_ControlDate, "Date"},
                   {qbe_ControlText, "Text box"},
                   {qbe_ControlTime, "Time"}});
}

Variant SortTypeList() {
  return PairList({{qbe_SortAscending, "Ascending"},
                   {qbe_SortDescending, "Descending"},
                   {qbe_SortNone, "None"}});
}

Variant AggregateFunctionList() {
  return PairList({{qbe_AggregateAvg, "Average"},
                   {qbe_AggregateCount, "Count"},
                   {qbe_AggregateMax, "Max"},
                   {qbe_AggregateMin, "Min"},
                   {qbe_AggregateNone, "None"},
                   {qbe_AggregateStdDev, "Standard deviation"},
                   {qbe_AggregateSum, "Sum"},
                   {qbe_AggregateValueCount, "Value count"}});
}

}  // namespace brix
