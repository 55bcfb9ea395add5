// The query root and its collections: name normalisation, keys against the case-sensitive
// existence tests, the name index, tree walks, field lists and vocabulary lists.
#include "querybuilder/xqb_query.h"

#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <set>
#include <tuple>
#include <utility>

#include "querybuilder/db_name.h"
#include "querybuilder/tree_walk.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"
#include "tests/support/random_query.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::RaisesError;
using test_support::RaisesRuntimeError;
using V = Variant;

TEST(NameIndex, FollowsRenamesRemovalsAndClear) {
  auto fields = xqb_Fields::Create();
  auto name = fields->Add("Name");
  fields->Add("City");
  name->SetDBName("Other");
  EXPECT_TRUE(fields->FieldExists("Other") && !fields->FieldExists("Name"));
  EXPECT_EQ(fields->Item(V("name")), name);  // the key stays the one it was added under
  fields->Remove(V("Name"));
  EXPECT_FALSE(fields->FieldExists("Other"));
  name->SetDBName("City");  // not held any more: its rename must not matter
  fields->Remove(V(1));
  EXPECT_FALSE(fields->FieldExists("City"));
  auto tables = xqb_Tables::Create();
  auto table = tables->Add("A");
  tables->Clear();
  table->SetDBName("B");
  EXPECT_FALSE(tables->TableExists("B") || tables->TableExists("A"));
  tables->AddObjectTable(table);
  EXPECT_TRUE(tables->TableExists("B"));
}

// Orders(ID, [Order Date]) and Items(ID, Price); conditions 1 and 2 on [Order Date], 3 on Price.
std::shared_ptr<xqb_Query> SampleQuery() {
  // clang-format off
  return BuildQuery({
      {"Orders", {{"ID", qbe_DataNumeric}, {"Order Date", qbe_DataDate, {{qbe_ClauseToday}, {qbe_ClauseBetween, V(1), V(9)}}}}},
      {"Items", {{"ID", qbe_DataNumeric}, {"Price", qbe_DataNumeric, {{qbe_ClauseGreaterThan, V(100.5)}}}}}});
  // clang-format on
}

// The elements of a variant array as texts, each followed by `separator`.
std::string Joined(const V& array, const char* separator) {
  std::string text;
  for (const V& item : array.AsVariantArray().items) text += ConcatText(item) + separator;
  return text;
}

TEST(XqbQuery, CreationValuesAndConditionWalks) {
  ScopedClock clock(45123.75);
  EXPECT_EQ(xqb_Query::Create()->Today(), 45123);
  auto query = SampleQuery();
  // The library's own version, whatever the release: three numbers.
  EXPECT_TRUE(std::regex_match(query->GetVersion(), std::regex(R"(\d+\.\d+\.\d+)")));
  std::string table_name = "kept", field_name = "kept too";
  query->TableFieldFromCondition(99, table_name, field_name);
  EXPECT_EQ(table_name + "|" + field_name, "kept|kept too");
  query->TableFieldFromCondition(2, table_name, field_name);
  EXPECT_EQ(table_name + "|" + field_name, "Orders|[Order Date]");

  const V all = query->ReturnAllClauses();
  const VariantArray& rows = all.AsVariantArray();
  ASSERT_EQ(rows.items.size(), 3u);
  EXPECT_EQ(rows.lower_bound, 0);
  EXPECT_EQ(Joined(rows.items[1], "|"), "Orders|[Order Date]|2|1|intre ___ si ___|1|9|1||");
  EXPECT_EQ(Joined(rows.items[2], "|"), "Items|Price|3|5|este mai mare ca|100.5||1||");
  EXPECT_TRUE(xqb_Query::Create()->ReturnAllClauses().AsVariantArray().items.empty());

  EXPECT_EQ(query->ReturnConditionsCount(), 3);
  EXPECT_TRUE(query->FieldExists("[Order Date]"));
  EXPECT_FALSE(query->FieldExists("Order Date") || query->FieldExists("price"));
  query->DeleteAllConditions();
  EXPECT_EQ(query->ReturnConditionsCount(), 0);
  // Children set to nothing raise 91 when read.
  auto table = query->Tables()->Item(V(1));
  auto date = table->Fields()->Item(V(2));
  date->SetConditions(nullptr);
  table->SetFields(nullptr);
  query->SetTables(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { date->Conditions(); }, kErrObjectVariableNotSet));
  EXPECT_TRUE(RaisesRuntimeError([&] { table->Fields(); }, kErrObjectVariableNotSet));
  EXPECT_TRUE(RaisesRuntimeError([&] { query->Tables(); }, kErrObjectVariableNotSet));
}

TEST(XqbQuery, FieldsPlacedByUIOrder) {
  // clang-format off
  const std::vector<std::tuple<std::vector<std::int16_t>, qbe_OrderType, std::string>> cases = {
      // UIOrder of Orders.ID, [Order Date], Items.ID, Price
      {{0, 0, 0, 0},  qbe_OrderUI,   "ID [Order Date] ID Price "},
      {{4, 3, 2, 1},  qbe_OrderUI,   "Price ID [Order Date] ID "},
      {{1, 1, 0, 3},  qbe_OrderUI,   "ID Price [Order Date] ID "},
      {{5, -1, 4, 0}, qbe_OrderUI,   "ID ID [Order Date] Price "},
      {{4, 3, 2, 1},  qbe_Unordered, "ID [Order Date] ID Price "},
  };
  // clang-format on
  for (const auto& [ui_orders, order_type, expected] : cases) {
    auto query = SampleQuery();
    std::size_t i = 0;
    for (const auto& table : *query->Tables()) {
      for (const auto& field : *table->Fields()) field->SetUIOrder(ui_orders[i++]);
    }
    auto fields = query->Fields(order_type);
    std::string names;
    for (const auto& field : *fields) names += field->DBName() + " ";
    EXPECT_EQ(names, expected) << ui_orders[0] << ui_orders[1] << ui_orders[2];
  }
  // The list holds the field objects themselves, keyed by name: the first of a name wins.
  auto query = SampleQuery();
  auto fields = query->Fields(qbe_Unordered);
  EXPECT_EQ(fields->Item(V(3)), query->Tables()->Item(V("Items"))->Fields()->Item(V("ID")));
  EXPECT_EQ(fields->Item(V("id")), query->Tables()->Item(V("Orders"))->Fields()->Item(V("ID")));
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
    EXPECT_EQ(text, expected);
  }
}

}  // namespace
}  // namespace brix

namespace brix {
namespace {

// Describing a condition as an object gives what the lookup by ID gives for the first condition
// with that ID, in trees with one table and with several.
TEST(XqbQuery, DescribesAConditionAsItsLookupByIdDoes) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    auto query = test_support::RandomQueryMaker(seed).Make();
    std::set<std::int32_t> seen;
    ForEachCondition(*query, [&](const xqb_Table& table, const xqb_Field& field,
                                 const xqb_Condition& condition) {
      if (!seen.insert(condition.ConditionID()).second) return;
      try {
        EXPECT_EQ(query->DescribeCondition(table, field, condition),
                  query->ReturnConditionDescription(condition.ConditionID()))
            << "seed " << seed;
      } catch (const Error&) {
        // operands that do not convert raise the same way through both
        EXPECT_ANY_THROW(query->ReturnConditionDescription(condition.ConditionID()));
      }
    });
  }
}

}  // namespace
}  // namespace brix
