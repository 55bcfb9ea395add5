// Statements and filters run against a real SQLite database: the rows they select.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

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
    ASSERT_EQ(Rows(kSchema), std::vector<std::string>{});
  }

  // Every row of `sql`, its columns as text joined by "|".
  std::vector<std::string> Rows(const std::string& sql) {
    std::vector<std::string> rows;
    auto collect = [](void* out, int count, char** values, char**) {
      std::string row;
      for (int i = 0; i < count; ++i) {
        row += std::string(i > 0 ? "|" : "") + (values[i] ? values[i] : "NULL");
      }
      static_cast<std::vector<std::string>*>(out)->push_back(row);
      return 0;
    };
    char* error = nullptr;
    if (sqlite3_exec(db_.get(), sql.c_str(), collect, &rows, &error) != SQLITE_OK) {
      ADD_FAILURE() << error << " in: " << sql;
      sqlite3_free(error);
    }
    return rows;
  }

  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> db_{nullptr, sqlite3_close};
};

using test_support::BuildQuery;
using test_support::FieldRow;
using V = Variant;
using Texts = std::vector<std::string>;

constexpr auto N = qbe_DataNumeric;

TEST_F(SqliteEndToEnd, EveryClauseKindSelectsItsRows) {
  ScopedClock clock(40240 + 14.5 / 24);  // 14:30
  const V none("");
  constexpr auto S = qbe_DataString, M = qbe_DataMemo;
  // clang-format off
  // the field with the condition, its type, the condition, the IDs of the rows selected
  const std::vector<std::tuple<const char*, qbe_DataType, qbe_ClauseOperator, V, V, Texts>> cases = {
      {"Name",         S, qbe_ClauseBetween,             V("A"),       V("B"),   {"1", "4"}},
      {"Name",         S, qbe_ClauseContains,            V("an"),      none,     {"1", "3", "4"}},
      {"Name",         S, qbe_ClauseEqualTo,             V("O'Brien"), none,     {"2"}},
      {"Name",         S, qbe_ClauseGreaterOrEqual,      V("B"),       none,     {"2", "3"}},
      {"Name",         S, qbe_ClauseGreaterThan,         V("Anca"),    none,     {"2", "3"}},
      {"Notes",        S, qbe_ClauseIsEmpty,             none,         none,     {"2", "3"}},
      {"Notes",        M, qbe_ClauseIsNull,              none,         none,     {"2"}},
      {"Name",         S, qbe_ClauseLessOrEqual,         V("Ana"),     none,     {"1"}},
      {"Name",         S, qbe_ClauseLessThan,            V("Anca"),    none,     {"1"}},
      {"Name",         S, qbe_ClauseNotContains,         V("an"),      none,     {"2"}},
      {"Name",         S, qbe_ClauseNotEqual,            V("Ana"),     none,     {"2", "3", "4"}},
      {"Name",         S, qbe_ClauseNotStartingWith,     V("An"),      none,     {"2", "3"}},
      {"Name",         S, qbe_ClauseStartingWith,        V("An"),      none,     {"1", "4"}},
      {"Name",         S, qbe_ClauseToday,               V("Bogdan"),  none,     {"3"}},
      {"Name",         S, qbe_ClauseThisWeek,            V("B"),       V("P"),   {"2", "3"}},
      {"Name",         S, qbe_ClauseThisMonth,           V("B"),       V("P"),   {"2", "3"}},
      {"ID",           N, qbe_ClauseInList,              V("(1, 3)"),  none,     {"1", "3"}},
      {"ID",           N, qbe_ClauseLastXDays,           V(2),         V(3),     {"2", "3"}},
      {"ID",           N, qbe_ClauseNotInList,           V("(1, 3)"),  none,     {"2", "4"}},
      // Both tests are joined with OR, so an empty text passes as not null.
      {"Notes",        S, qbe_ClauseNotIsEmpty,          none,         none,     {"1", "3", "4"}},
      {"Credit Limit", N, qbe_ClauseLastXMonths,         V(90),        V(300),   {"1", "2"}},
      {"Name",         S, qbe_ClauseThisYear,            V("B"),       V("P"),   {"2", "3"}},
      {"Name",         S, qbe_ClauseYear,                V("B"),       V("P"),   {"2", "3"}},
      {"ID",           N, qbe_ClauseLastXYears,          V(3),         V(9),     {"3", "4"}},
      {"Notes",        M, qbe_ClauseContainsWordsNear,   V("x"),       none,     {"1", "2", "3", "4"}},
      {"Notes",        M, qbe_ClauseContainsWords,       V("x"),       none,     {"1", "2", "3", "4"}},
      {"Notes",        M, qbe_ClauseContainsExpression,  V("x"),       none,     {"1", "2", "3", "4"}},
      {"ID",           N, qbe_ClauseNextXDays,           V(1),         V(2),     {"1", "2"}},
      {"Credit Limit", N, qbe_ClauseOverXDays,           V(250.5),     none,     {"2"}},
      {"Last Visit",   S, qbe_ClauseTimeNow,             none,         none,     {"2", "4"}},
      {"Last Visit",   S, qbe_ClauseTimeGreaterThanNow,  none,         none,     {"2", "3", "4"}},
      {"Last Visit",   S, qbe_ClauseTimeLessThanNow,     none,         none,     {"1", "2", "4"}},
      {"Active",       qbe_DataBoolean, qbe_ClauseEqualTo,  V(true),   none,     {"1", "3"}},
      {"Active",       qbe_DataBoolean, qbe_ClauseNotEqual, V(true),   none,     {"2", "4"}},
      {"Credit Limit", N, qbe_ClauseIsEmpty,             none,         none,     {"3"}},
      {"Credit Limit", N, qbe_ClauseNotIsEmpty,          none,         none,     {"1", "2", "4"}},
  };
  // clang-format on
  for (const auto& [field, type, kind, value, secondary, ids] : cases) {
    // Customers.ID selected and sorted; another field with the condition only filters.
    FieldRow id{.name = "ID", .type = N, .sort = qbe_SortAscending, .sort_level = 1};
    std::vector<FieldRow> fields = {id, {.name = field, .type = type, .in_statement = false}};
    if (field == std::string_view("ID")) fields.pop_back();
    fields.back().conditions = {{kind, value, secondary}};
    auto query = BuildQuery({{"Customers", fields}});
    EXPECT_EQ(Rows(query->ReturnSQL()), ids) << "kind " << kind << ": " << query->ReturnSQL();
  }
}

TEST_F(SqliteEndToEnd, JoinedTablesWithGroupsOrderAndLimit) {
  // clang-format off
  auto query = BuildQuery({
      {"Customers", {{.name = "ID", .type = N, .place = 1, .links = "Orders.CustomerID", .group_level = 1,
                      .sort = qbe_SortDescending, .sort_level = 1},
                     {.name = "Credit Limit", .type = N, .alias = "[Credit Limit]", .place = 2, .group_level = 2}}},
      {"Orders", {{.name = "N", .type = N, .formula = "Count(Orders.Product)"},
                  {.name = "Product", .conditions = {{qbe_ClauseNotEqual, V("pot")}}, .in_statement = false}}}});
  // clang-format on
  EXPECT_EQ(Rows(query->ReturnSQL(2)), (Texts{"4|80.0|2", "1|100.0|2"}));
}

TEST_F(SqliteEndToEnd, FilterJoinsAndOrderOnTablesWithBlanks) {
  // The table list brackets stored names again ([[Order Items]]), so a host that uses such
  // names writes its own FROM around the filter and the order list.
  // clang-format off
  auto query = BuildQuery({
      {"Customers", {{.name = "ID", .type = N, .links = "[Order Items].CustomerID", .sort = qbe_SortAscending, .sort_level = 1}}},
      {"Order Items", {{.name = "Unit Price", .type = N, .conditions = {{qbe_ClauseGreaterThan, V(10)}},
                        .sort = qbe_SortDescending, .sort_level = 2}}}});
  // clang-format on
  EXPECT_EQ(
      Rows("SELECT Customers.ID, [Order Items].[Unit Price] FROM Customers, [Order Items] WHERE " +
           query->ReturnWHEREConditions(true, nullptr, true) + " ORDER BY " +
           query->ReturnOrderByFields()),
      (Texts{"1|12.5", "2|30.0", "4|50.0", "4|11.0"}));
}

}  // namespace
}  // namespace brix
