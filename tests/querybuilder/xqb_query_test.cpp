// The query root: creation values, walks over the tree, field lists and vocabulary lists.
#include "querybuilder/xqb_query.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::AddCondition;
using test_support::AddField;
using test_support::AddTable;
using test_support::RaisesRuntimeError;

// Orders(ID, [Order Date]) and Items(ID, Price), with conditions 11 and 12 on [Order Date] and
// 21 on Price.
std::shared_ptr<xqb_Query> SampleQuery() {
  auto query = xqb_Query::Create();
  auto orders = AddTable(*query, "Orders");
  AddField(*orders, "ID", qbe_DataNumeric);
  auto date = AddField(*orders, "Order Date", qbe_DataDate);
  AddCondition(*date, 11, qbe_ClauseToday);
  AddCondition(*date, 12, qbe_ClauseBetween, Variant(1), Variant(9));
  auto items = AddTable(*query, "Items");
  AddField(*items, "ID", qbe_DataNumeric);
  auto price = AddField(*items, "Price", qbe_DataNumeric);
  AddCondition(*price, 21, qbe_ClauseGreaterThan, Variant(100.5));
  return query;
}

std::vector<std::string> Names(const xqb_Fields& fields) {
  std::vector<std::string> names;
  for (const auto& field : fields) names.push_back(field->DBName());
  return names;
}

TEST(XqbQuery, NewQueryValues) {
  ScopedClock clock(45123.75);
  auto query = xqb_Query::Create();
  EXPECT_EQ(query->Today(), 45123);
  EXPECT_EQ(query->StatementType(), qbe_StatementAccess);
  EXPECT_EQ(query->QueryType(), qbe_LinksNone);
  EXPECT_FALSE(query->bSYN() || query->bUsePhonicSearching() || query->bUseStemming() ||
               query->bUseNaturalLanguage() || query->bUseWordNetSynonyms() ||
               query->ShadeGroupHeadings() || query->DistinctRows() || query->GroupsCollapsed());
  EXPECT_EQ(query->GridLines(), qbe_GridLinesNone);
  EXPECT_EQ(query->Tables()->Count(), 0);
  EXPECT_FALSE(query->FieldExists(""));
  EXPECT_EQ(query->GetVersion(), "4.0.12");
  query->SetTables(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { query->Tables(); }, kErrObjectVariableNotSet));
}

TEST(XqbQuery, TableFieldFromCondition) {
  auto query = SampleQuery();
  std::string table = "kept";
  std::string field = "kept too";
  query->TableFieldFromCondition(99, table, field);
  EXPECT_EQ(table, "kept");
  EXPECT_EQ(field, "kept too");
  query->TableFieldFromCondition(21, table, field);
  EXPECT_EQ(table, "Items");
  EXPECT_EQ(field, "Price");
  query->TableFieldFromCondition(12, table, field);
  EXPECT_EQ(table, "Orders");
  EXPECT_EQ(field, "[Order Date]");
}

TEST(XqbQuery, CountsAndDeletesConditions) {
  auto query = SampleQuery();
  EXPECT_EQ(query->ReturnConditionsCount(), 3);
  EXPECT_TRUE(query->FieldExists("[Order Date]"));
  EXPECT_FALSE(query->FieldExists("Order Date"));
  EXPECT_FALSE(query->FieldExists("price"));
  query->DeleteAllConditions();
  EXPECT_EQ(query->ReturnConditionsCount(), 0);
}

TEST(XqbQuery, ReturnAllClausesOneRowPerConditionInTreeOrder) {
  auto query = SampleQuery();
  Variant all = query->ReturnAllClauses();
  const VariantArray& rows = all.AsVariantArray();
  ASSERT_EQ(rows.items.size(), 3u);
  EXPECT_EQ(rows.lower_bound, 0);
  const VariantArray& second = rows.items[1].AsVariantArray();
  ASSERT_EQ(second.items.size(), 9u);
  EXPECT_EQ(second.items[0].AsString(), "Orders");
  EXPECT_EQ(second.items[1].AsString(), "[Order Date]");
  EXPECT_EQ(second.items[2].AsLong(), 12);
  EXPECT_EQ(second.items[3].AsLong(), qbe_ClauseBetween);
  EXPECT_EQ(second.items[4].AsString(), "intre ___ si ___");
  EXPECT_EQ(second.items[5].AsLong(), 1);
  EXPECT_EQ(second.items[6].AsLong(), 9);
  EXPECT_EQ(second.items[7].AsLong(), qbe_LogicAnd);
  EXPECT_EQ(second.items[8].AsString(), "");
  EXPECT_EQ(rows.items[2].AsVariantArray().items[2].AsLong(), 21);
  EXPECT_TRUE(xqb_Query::Create()->ReturnAllClauses().AsVariantArray().items.empty());
}

TEST(XqbQuery, FieldsPlacedByUIOrder) {
  struct Case {
    std::vector<std::int16_t> ui_orders;  // Orders.ID, [Order Date], Items.ID, Price
    qbe_OrderType order_type;
    std::vector<std::string> expected;
  } const cases[] = {
      {{0, 0, 0, 0}, qbe_OrderUI, {"ID", "[Order Date]", "ID", "Price"}},
      {{4, 3, 2, 1}, qbe_OrderUI, {"Price", "ID", "[Order Date]", "ID"}},
      {{2, 0, 1, 0}, qbe_OrderUI, {"ID", "ID", "[Order Date]", "Price"}},
      {{1, 1, 0, 3}, qbe_OrderUI, {"ID", "Price", "[Order Date]", "ID"}},
      {{5, -1, 4, 0}, qbe_OrderUI, {"ID", "ID", "[Order Date]", "Price"}},
      {{4, 3, 2, 1}, qbe_Unordered, {"ID", "[Order Date]", "ID", "Price"}},
  };
  for (const auto& c : cases) {
    auto query = SampleQuery();
    std::size_t i = 0;
    for (const auto& table : *query->Tables()) {
      for (const auto& field : *table->Fields()) field->SetUIOrder(c.ui_orders[i++]);
    }
    auto fields = query->Fields(c.order_type);
    EXPECT_EQ(Names(*fields), c.expected) << c.ui_orders[0] << c.ui_orders[1] << c.ui_orders[2];
  }
}

TEST(XqbQuery, FieldsHoldsTheFieldObjectsEvenWithSharedNames) {
  auto query = SampleQuery();
  auto fields = query->Fields(qbe_Unordered);
  ASSERT_EQ(fields->Count(), 4);
  auto items_id = query->Tables()->Item(Variant("Items"))->Fields()->Item(Variant("ID"));
  auto orders_id = query->Tables()->Item(Variant("Orders"))->Fields()->Item(Variant("ID"));
  EXPECT_EQ(fields->Item(Variant(3)), items_id);
  EXPECT_EQ(fields->Item(Variant("id")), orders_id);
  EXPECT_EQ(fields->Item(Variant("[order date]"))->Conditions()->Count(), 2);
}

TEST(XqbQuery, VocabularyListsInPublishedOrder) {
  using Rows = std::vector<std::pair<std::int32_t, std::string>>;
  auto query = xqb_Query::Create();
  struct Case {
    Variant list;
    Rows expected;
  } const cases[] = {
      {query->GetDataTypes(),
       {{1, "BLOB"},
        {2, "Boolean"},
        {3, "Date"},
        {12, "Decimal"},
        {4, "Memo"},
        {5, "Numeric"},
        {6, "String"},
        {11, "Time"},
        {8, "User defined data type 1"},
        {9, "User defined data type 2"},
        {10, "Large Text"},
        {7, "User defined date"}}},
      {query->GetControlTypes(), {{1, "Combo box"}, {2, "Date"}, {0, "Text box"}, {3, "Time"}}},
      {query->GetSortTypes(), {{1, "Ascending"}, {-1, "Descending"}, {0, "None"}}},
      {query->GetAggregateFunctions(),
       {{3, "Average"},
        {1, "Count"},
        {5, "Max"},
        {4, "Min"},
        {0, "None"},
        {6, "Standard deviation"},
        {2, "Sum"},
        {7, "Value count"}}},
  };
  for (const auto& c : cases) {
    const VariantArray& rows = c.list.AsVariantArray();
    EXPECT_EQ(rows.lower_bound, 0);
    Rows actual;
    for (const Variant& row : rows.items) {
      const VariantArray& pair = row.AsVariantArray();
      EXPECT_EQ(pair.lower_bound, 0);
      ASSERT_EQ(pair.items.size(), 2u);
      actual.emplace_back(pair.items[0].AsLong(), pair.items[1].AsString());
    }
    EXPECT_EQ(actual, c.expected);
  }
}

TEST(XqbQuery, ModelClassesReportTheirTypeNames) {
  auto query = SampleQuery();
  auto table = query->Tables()->Item(Variant(1));
  auto field = table->Fields()->Item(Variant(2));
  const std::pair<const Object*, std::string> cases[] = {
      {query.get(), "xqb_Query"},
      {query->Tables().get(), "xqb_Tables"},
      {table.get(), "xqb_Table"},
      {table->Fields().get(), "xqb_Fields"},
      {field.get(), "xqb_Field"},
      {field->Conditions().get(), "xqb_Conditions"},
      {field->Conditions()->Item(Variant(1)).get(), "xqb_Condition"},
  };
  for (const auto& [object, name] : cases) EXPECT_EQ(object->TypeName(), name);
}

}  // namespace
}  // namespace brix
