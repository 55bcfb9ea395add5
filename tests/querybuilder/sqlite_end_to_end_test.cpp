// Statements and filters run against a real SQLite database: the rows they select.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::AddCondition;
using test_support::AddField;
using test_support::AddTable;

constexpr const char* kSchema = R"sql(
  CREATE TABLE Customers (ID INTEGER, Name TEXT, [Credit Limit] REAL, Active BOOLEAN,
                          Notes TEXT, [Last Visit] TEXT);
  INSERT INTO Customers VALUES (1, 'Ana', 100, 1, 'likes tea', '09:00'),
                               (2, 'O''Brien', 250.5, 0, NULL, '14:30'),
                               (3, 'Bogdan', NULL, 1, '', '18:00'),
                               (4, 'Anca', 80, 0, 'coffee', '14:30');
  CREATE TABLE [Order Items] (CustomerID INTEGER, [Unit Price] REAL, Product TEXT);
  INSERT INTO [Order Items] VALUES (1, 5, 'tea'), (1, 12.5, 'cup'), (2, 30, 'pot'),
                                   (4, 11, 'mug'), (4, 50, 'kettle');
  CREATE VIEW Orders AS SELECT * FROM [Order Items];
)sql";

class SqliteEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    db_.reset(db);
    ASSERT_EQ(sqlite3_exec(db, kSchema, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(db);
  }

  // Every row of `sql`, its columns as text joined by "|".
  std::vector<std::string> Rows(const std::string& sql) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_.get(), sql.c_str(), -1, &raw, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sqlite3_errmsg(db_.get()) << " in: " << sql;
      return {};
    }
    std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(raw, sqlite3_finalize);
    std::vector<std::string> rows;
    while (sqlite3_step(raw) == SQLITE_ROW) {
      std::string row;
      for (int i = 0; i < sqlite3_column_count(raw); ++i) {
        if (i > 0) row += "|";
        const unsigned char* text = sqlite3_column_text(raw, i);
        row += text ? reinterpret_cast<const char*>(text) : "NULL";
      }
      rows.push_back(row);
    }
    return rows;
  }

  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> db_{nullptr, sqlite3_close};
};

struct Case {
  const char* field;
  qbe_DataType type;
  qbe_ClauseOperator kind;
  Variant value;
  Variant secondary;
  std::vector<std::string> ids;
};

TEST_F(SqliteEndToEnd, EveryClauseKindSelectsItsRows) {
  ScopedClock clock(40240 + 14.5 / 24);  // 14:30
  const Variant none("");
  const std::vector<Case> cases = {
      {"Name", qbe_DataString, qbe_ClauseBetween, Variant("A"), Variant("B"), {"1", "4"}},
      {"Name", qbe_DataString, qbe_ClauseContains, Variant("an"), none, {"1", "3", "4"}},
      {"Name", qbe_DataString, qbe_ClauseEqualTo, Variant("O'Brien"), none, {"2"}},
      {"Name", qbe_DataString, qbe_ClauseGreaterOrEqual, Variant("B"), none, {"2", "3"}},
      {"Name", qbe_DataString, qbe_ClauseGreaterThan, Variant("Anca"), none, {"2", "3"}},
      {"Notes", qbe_DataString, qbe_ClauseIsEmpty, none, none, {"2", "3"}},
      {"Notes", qbe_DataMemo, qbe_ClauseIsNull, none, none, {"2"}},
      {"Name", qbe_DataString, qbe_ClauseLessOrEqual, Variant("Ana"), none, {"1"}},
      {"Name", qbe_DataString, qbe_ClauseLessThan, Variant("Anca"), none, {"1"}},
      {"Name", qbe_DataString, qbe_ClauseNotContains, Variant("an"), none, {"2"}},
      {"Name", qbe_DataString, qbe_ClauseNotEqual, Variant("Ana"), none, {"2", "3", "4"}},
      {"Name", qbe_DataString, qbe_ClauseNotStartingWith, Variant("An"), none, {"2", "3"}},
      {"Name", qbe_DataString, qbe_ClauseStartingWith, Variant("An"), none, {"1", "4"}},
      {"Name", qbe_DataString, qbe_ClauseToday, Variant("Bogdan"), none, {"3"}},
      {"Name", qbe_DataString, qbe_ClauseThisWeek, Variant("B"), Variant("P"), {"2", "3"}},
      {"Name", qbe_DataString, qbe_ClauseThisMonth, Variant("B"), Variant("P"), {"2", "3"}},
      {"ID", qbe_DataNumeric, qbe_ClauseInList, Variant("(1, 3)"), none, {"1", "3"}},
      {"ID", qbe_DataNumeric, qbe_ClauseLastXDays, Variant(2), Variant(3), {"2", "3"}},
      {"ID", qbe_DataNumeric, qbe_ClauseNotInList, Variant("(1, 3)"), none, {"2", "4"}},
      // Both tests are joined with OR, so an empty text passes as not null.
      {"Notes", qbe_DataString, qbe_ClauseNotIsEmpty, none, none, {"1", "3", "4"}},
      {"Credit Limit",
       qbe_DataNumeric,
       qbe_ClauseLastXMonths,
       Variant(90),
       Variant(300),
       {"1", "2"}},
      {"Name", qbe_DataString, qbe_ClauseThisYear, Variant("B"), Variant("P"), {"2", "3"}},
      {"Name", qbe_DataString, qbe_ClauseYear, Variant("B"), Variant("P"), {"2", "3"}},
      {"ID", qbe_DataNumeric, qbe_ClauseLastXYears, Variant(3), Variant(9), {"3", "4"}},
      {"Notes",
       qbe_DataMemo,
       qbe_ClauseContainsWordsNear,
       Variant("x"),
       none,
       {"1", "2", "3", "4"}},
      {"Notes", qbe_DataMemo, qbe_ClauseContainsWords, Variant("x"), none, {"1", "2", "3", "4"}},
      {"Notes",
       qbe_DataMemo,
       qbe_ClauseContainsExpression,
       Variant("x"),
       none,
       {"1", "2", "3", "4"}},
      {"ID", qbe_DataNumeric, qbe_ClauseNextXDays, Variant(1), Variant(2), {"1", "2"}},
      {"Credit Limit", qbe_DataNumeric, qbe_ClauseOverXDays, Variant(250.5), none, {"2"}},
      {"Last Visit", qbe_DataString, qbe_ClauseTimeNow, none, none, {"2", "4"}},
      {"Last Visit", qbe_DataString, qbe_ClauseTimeGreaterThanNow, none, none, {"2", "3", "4"}},
      {"Last Visit", qbe_DataString, qbe_ClauseTimeLessThanNow, none, none, {"1", "2", "4"}},
      {"Active", qbe_DataBoolean, qbe_ClauseEqualTo, Variant(true), none, {"1", "3"}},
      {"Active", qbe_DataBoolean, qbe_ClauseNotEqual, Variant(true), none, {"2", "4"}},
      {"Credit Limit", qbe_DataNumeric, qbe_ClauseIsEmpty, none, none, {"3"}},
      {"Credit Limit", qbe_DataNumeric, qbe_ClauseNotIsEmpty, none, none, {"1", "2", "4"}},
  };
  for (const Case& c : cases) {
    auto query = xqb_Query::Create();
    auto customers = AddTable(*query, "Customers");
    auto id = AddField(*customers, "ID", qbe_DataNumeric);
    id->SetOrderByOrder(qbe_SortAscending);
    id->SetOrderByLevel(1);
    auto field = id;
    if (c.field != std::string_view("ID")) {
      field = AddField(*customers, c.field, c.type);
      field->SetUseInStatement(false);
    }
    AddCondition(*field, 1, c.kind, c.value, c.secondary);
    EXPECT_EQ(Rows(query->ReturnSQL()), c.ids) << "kind " << c.kind << ": " << query->ReturnSQL();
  }
}

TEST_F(SqliteEndToEnd, JoinedTablesWithGroupsOrderAndLimit) {
  auto query = xqb_Query::Create();
  auto customers = AddTable(*query, "Customers");
  auto id = AddField(*customers, "ID", qbe_DataNumeric);
  id->SetAppearanceOrder(1);
  id->SetLinksWithField("Orders.CustomerID");
  id->SetGroupByLevel(1);
  id->SetOrderByOrder(qbe_SortDescending);
  id->SetOrderByLevel(1);
  auto limit = AddField(*customers, "Credit Limit", qbe_DataNumeric);
  limit->SetAlias("[Credit Limit]");
  limit->SetAppearanceOrder(2);
  limit->SetGroupByLevel(2);
  auto orders = AddTable(*query, "Orders");
  auto count = AddField(*orders, "N", qbe_DataNumeric);
  count->SetCalculatedFormula("Count(Orders.Product)");
  auto product = AddField(*orders, "Product");
  product->SetUseInStatement(false);
  AddCondition(*product, 1, qbe_ClauseNotEqual, Variant("pot"));
  EXPECT_EQ(Rows(query->ReturnSQL(2)), (std::vector<std::string>{"4|80.0|2", "1|100.0|2"}));
}

TEST_F(SqliteEndToEnd, FilterJoinsAndOrderOnTablesWithBlanks) {
  // The table list brackets stored names again ([[Order Items]]), so a host that uses such
  // names writes its own FROM around the filter and the order list.
  auto query = xqb_Query::Create();
  auto customers = AddTable(*query, "Customers");
  auto id = AddField(*customers, "ID", qbe_DataNumeric);
  id->SetLinksWithField("[Order Items].CustomerID");
  id->SetOrderByOrder(qbe_SortAscending);
  id->SetOrderByLevel(1);
  auto items = AddTable(*query, "Order Items");
  auto price = AddField(*items, "Unit Price", qbe_DataNumeric);
  price->SetOrderByOrder(qbe_SortDescending);
  price->SetOrderByLevel(2);
  AddCondition(*price, 1, qbe_ClauseGreaterThan, Variant(10));
  std::string sql = "SELECT Customers.ID, [Order Items].[Unit Price] FROM Customers, " +
                    items->DBName() + " WHERE " +
                    query->ReturnWHEREConditions(true, nullptr, true) + " ORDER BY " +
                    query->ReturnOrderByFields();
  EXPECT_EQ(Rows(sql), (std::vector<std::string>{"1|12.5", "2|30.0", "4|50.0", "4|11.0"}));
}

}  // namespace
}  // namespace brix
