// The query root: creation values, walks over the tree, field lists and vocabulary lists.
#include "querybuilder/xqb_query.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::RaisesRuntimeError;
using V = Variant;

// Orders(ID, [Order Date]) and Items(ID, Price); conditions 1 and 2 on [Order Date], 3 on Price.
std::shared_ptr<xqb_Query> SampleQuery() {
  return BuildQuery(
      {{"Orders", {{"ID", qbe_DataNumeric}, {"Order Date", qbe_DataDate, {{qbe_ClauseToday}, {qbe_ClauseBetween, V(1), V(9)}}}}},
       {"Items", {{"ID", qbe_DataNumeric}, {"Price", qbe_DataNumeric, {{qbe_ClauseGreaterThan, V(100.5)}}}}}});
}

// The elements of a variant array as texts joined by `separator`.
std::string Joined(const V& array, const char* separator) {
  std::string text;
  for (const V& item : array.AsVariantArray().items) text += ConcatText(item) + separator;
  return text;
}

TEST(XqbQuery, NewQueryValues) {
  ScopedClock clock(45123.75);
  auto query = xqb_Query::Create();
  EXPECT_EQ(query->Today(), 45123);
  EXPECT_EQ(query->GetVersion(), "4.0.12");
  query->SetTables(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { query->Tables(); }, kErrObjectVariableNotSet));
}

TEST(XqbQuery, ConditionWalks) {
  auto query = SampleQuery();
  std::string table = "kept", field = "kept too";
  query->TableFieldFromCondition(99, table, field);
  EXPECT_EQ(table + "|" + field, "kept|kept too");
  query->TableFieldFromCondition(3, table, field);
  EXPECT_EQ(table + "|" + field, "Items|Price");
  query->TableFieldFromCondition(2, table, field);
  EXPECT_EQ(table + "|" + field, "Orders|[Order Date]");

  const V all = query->ReturnAllClauses();
  EXPECT_EQ(all.AsVariantArray().lower_bound, 0);
  ASSERT_EQ(all.AsVariantArray().items.size(), 3u);
  EXPECT_EQ(Joined(all.AsVariantArray().items[1], "|"), "Orders|[Order Date]|2|1|intre ___ si ___|1|9|1||");
  EXPECT_EQ(all.AsVariantArray().items[2].AsVariantArray().items[2].AsLong(), 3);
  EXPECT_TRUE(xqb_Query::Create()->ReturnAllClauses().AsVariantArray().items.empty());

  EXPECT_EQ(query->ReturnConditionsCount(), 3);
  EXPECT_TRUE(query->FieldExists("[Order Date]"));
  EXPECT_FALSE(query->FieldExists("Order Date"));
  EXPECT_FALSE(query->FieldExists("price"));
  query->DeleteAllConditions();
  EXPECT_EQ(query->ReturnConditionsCount(), 0);
}

TEST(XqbQuery, FieldsPlacedByUIOrder) {
  struct Case {
    std::vector<std::int16_t> ui_orders;  // Orders.ID, [Order Date], Items.ID, Price
    qbe_OrderType order_type;
    std::string expected;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {{0, 0, 0, 0},  qbe_OrderUI,   "ID [Order Date] ID Price "},
      {{4, 3, 2, 1},  qbe_OrderUI,   "Price ID [Order Date] ID "},
      {{2, 0, 1, 0},  qbe_OrderUI,   "ID ID [Order Date] Price "},
      {{1, 1, 0, 3},  qbe_OrderUI,   "ID Price [Order Date] ID "},
      {{5, -1, 4, 0}, qbe_OrderUI,   "ID ID [Order Date] Price "},
      {{4, 3, 2, 1},  qbe_Unordered, "ID [Order Date] ID Price "},
  };
  // clang-format on
  for (const auto& c : cases) {
    auto query = SampleQuery();
    std::size_t i = 0;
    for (const auto& table : *query->Tables()) {
      for (const auto& field : *table->Fields()) field->SetUIOrder(c.ui_orders[i++]);
    }
    auto fields = query->Fields(c.order_type);
    std::string names;
    for (const auto& field : *fields) names += field->DBName() + " ";
    EXPECT_EQ(names, c.expected) << c.ui_orders[0] << c.ui_orders[1] << c.ui_orders[2];
  }
  // The list holds the field objects themselves, keyed by name: the first of a name wins.
  auto query = SampleQuery();
  auto fields = query->Fields(qbe_Unordered);
  EXPECT_EQ(fields->Item(V(3)), query->Tables()->Item(V("Items"))->Fields()->Item(V("ID")));
  EXPECT_EQ(fields->Item(V("id")), query->Tables()->Item(V("Orders"))->Fields()->Item(V("ID")));
  EXPECT_EQ(fields->Item(V("[order date]"))->Conditions()->Count(), 2);
}

TEST(XqbQuery, VocabularyListsInPublishedOrder) {
  auto query = xqb_Query::Create();
  // clang-format off
  const std::vector<std::pair<V, std::string>> cases = {
      {query->GetDataTypes(), "1 BLOB|2 Boolean|3 Date|12 Decimal|4 Memo|5 Numeric|6 String|11 Time|"
                              "8 User defined data type 1|9 User defined data type 2|10 Large Text|7 User defined date|"},
      {query->GetControlTypes(), "1 Combo box|2 Date|0 Text box|3 Time|"},
      {query->GetSortTypes(), "1 Ascending|-1 Descending|0 None|"},
      {query->GetAggregateFunctions(), "3 Average|1 Count|5 Max|4 Min|0 None|6 Standard deviation|2 Sum|7 Value count|"},
  };
  // clang-format on
  for (const auto& [list, expected] : cases) {
    std::string text;
    for (const V& row : list.AsVariantArray().items) {
      EXPECT_EQ(row.AsVariantArray().lower_bound, 0);
      text += Joined(row, " ");
      text.back() = '|';
    }
    EXPECT_EQ(list.AsVariantArray().lower_bound, 0);
    EXPECT_EQ(text, expected);
  }
}

}  // namespace
}  // namespace brix
