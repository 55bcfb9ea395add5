// SELECT statements and their lists: slot and tail placement, clause order, LIMIT, errors.
#include "querybuilder/statement_builder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::FieldRow;
using test_support::RaisesRuntimeError;
using test_support::TableRow;
using V = Variant;

constexpr auto N = qbe_DataNumeric;
constexpr auto ASC = qbe_SortAscending;
constexpr auto DESC = qbe_SortDescending;

// A numeric field with its alias and select position.
FieldRow Placed(const char* name, std::int16_t place) {
  return {.name = name, .type = N, .alias = name, .place = place};
}
FieldRow Sorted(const char* name, qbe_SortType sort, std::int16_t level, bool used = true) {
  return {.name = name, .type = N, .sort = sort, .sort_level = level, .in_statement = used};
}
FieldRow Grouped(const char* name, std::int16_t level, bool used = true) {
  return {.name = name, .group_level = level, .in_statement = used};
}

using Text = std::function<std::string(const xqb_Query&)>;
const Text kSQL = [](const xqb_Query& q) { return q.ReturnSQL(); };
const Text kFields = [](const xqb_Query& q) { return q.ReturnAllFields(); };
const Text kFieldsQualified = [](const xqb_Query& q) { return q.ReturnAllFields(false); };
const Text kOrderBy = [](const xqb_Query& q) { return q.ReturnOrderByFields(); };
const Text kTables = [](const xqb_Query& q) { return q.ReturnTables(); };
Text Limited(std::int32_t top) {
  return [top](const xqb_Query& q) { return q.ReturnSQL(top); };
}

TEST(StatementBuilder, Texts) {
  FieldRow id = Placed("ID", 2);
  id.links = "B.AID";
  id.group_level = 1;
  id.sort = DESC;
  id.sort_level = 1;
  id.conditions = {{qbe_ClauseGreaterThan, V(5)}};
  FieldRow price = Placed("Unit Price", 1);
  price.formula = "Sum(x)";
  struct Case {
    const char* name;
    std::vector<TableRow> tables;
    Text text;
    std::string expected;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"no tables", {}, Limited(5), ""},
      {"no fields", {{"T"}}, kSQL, "SELECT  FROM [T]"},
      {"one field", {{"T", {{.name = "F", .alias = "A", .place = 1}}}}, kSQL, "SELECT [T].F AS A FROM [T]"},
      {"LIMIT as it stands", {{"T"}}, Limited(-3), "SELECT  FROM [T] LIMIT -3"},
      {"every clause in order, joins inside WHERE, names with blanks bracketed again",
       {{"Order Items", {id, price}}, {"B", {{"Name", qbe_DataString, {{qbe_ClauseStartingWith, V("a")}}}}}}, Limited(7),
       "SELECT Sum(x) AS [Unit Price], [[Order Items]].ID AS ID, [B].Name AS Name FROM [[Order Items]], [B] WHERE "
       " ([Order Items].ID = B.AID) AND ([[Order Items]].ID > 5) AND ([B].Name LIKE 'a%') "
       "GROUP BY [[Order Items]].ID ORDER BY [Order Items].ID DESC LIMIT 7"},
      {"joins alone make a WHERE clause", {{"A", {{.name = "k", .links = "B.k"}}}}, kSQL,
       "SELECT [A].k AS k FROM [A] WHERE  (A.k = B.k)"},
      {"table list", {{"A"}, {"B"}}, kTables, "[A], [B]"},
      {"no table list", {}, kTables, ""},
      // The first field takes its slot; later ones follow all placed fields, in tree order.
      {"slots and tail", {{"T", {Placed("a", 1), Placed("b", 1), Placed("c", 0), Placed("d", 6)}}, {"U", {Placed("e", 2)}}},
       kFields, "a, e, b, c, d"},
      {"left out, empty alias, formula without prefix",
       {{"T", {{.name = "a", .place = 2, .in_statement = false}, {.name = "b", .place = -1, .in_statement = false},
               {.name = "c", .alias = "", .place = 2}, {.name = "d", .place = 1, .formula = "a + 1"}}}},
       kFieldsQualified, "a + 1 AS d, [T].c AS "},
      {"ORDER BY by level", {{"A", {Sorted("y", DESC, 2), Sorted("x", ASC, 1)}}}, kOrderBy, "A.x ASC, A.y DESC"},
      // The first level-0 sort lands in slot 0, which is never written; unsorted fields are skipped.
      {"ORDER BY slot 0", {{"T", {Sorted("a", ASC, 0), Sorted("b", DESC, 0, false), Sorted("c", qbe_SortNone, 1),
                                  Sorted("d", static_cast<qbe_SortType>(2), 1), Sorted("e", qbe_SortNone, -1),
                                  Sorted("f", ASC, 9), Sorted("g", ASC, 1)}}},
       kOrderBy, "T.g ASC, T.b DESC, T.f ASC"},
      {"single level-0 sort", {{"T", {Sorted("a", ASC, 0)}}}, kSQL, "SELECT [T].a AS a FROM [T]"},
      {"GROUP BY ignores statement use",
       {{"T", {Grouped("a", 2), Grouped("b", 1, false), Grouped("c", 7), Grouped("d", 1), Grouped("e", 0)}}}, kSQL,
       "SELECT [T].a AS a, [T].c AS c, [T].d AS d, [T].e AS e FROM [T] GROUP BY [T].b, [T].a, [T].c, [T].d"},
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(c.text(*BuildQuery(c.tables)), c.expected) << c.name;
}

TEST(StatementBuilder, DistinctAndStatementTypes) {
  auto query = BuildQuery({{"T", {{.name = "F", .alias = "A", .place = 1}}}});
  query->SetDistinctRows(true);
  for (auto type : {qbe_StatementAccess, qbe_StatementDTSearch, qbe_StatementSQLServer}) {
    query->SetStatementType(type);
    EXPECT_EQ(query->ReturnSQL(10), "SELECT DISTINCT [T].F AS A FROM [T] LIMIT 10");
  }
}

TEST(StatementBuilder, NegativePositionsRaise9) {
  // clang-format off
  const std::vector<std::pair<FieldRow, Text>> cases = {
      {{.name = "F", .place = -1},                            kSQL},
      {{.name = "F", .place = -1},                            kFields},
      {{.name = "F", .sort = ASC, .sort_level = -2},          kSQL},
      {{.name = "F", .group_level = -32768},                  kSQL},
  };
  // clang-format on
  for (const auto& [field, text] : cases) {
    auto query = BuildQuery({{"T", {field}}});
    EXPECT_TRUE(RaisesRuntimeError([&] { text(*query); }, kErrSubscriptOutOfRange));
  }
}

// Answers a later minute each time it is read.
class TickingClock final : public Clock {
 public:
  double Now() const override { return 40240 + (14 * 60 + 30 + reads_++) / 1440.0; }

 private:
  mutable int reads_ = 0;
};

TEST(StatementBuilder, WritesTheSecondWhereEvaluation) {
  ScopedClock clock(std::make_shared<TickingClock>());
  auto query = BuildQuery({{"T", {{"F", qbe_DataString, {{qbe_ClauseTimeNow}}}}}});  // Today: 1 read
  EXPECT_EQ(query->ReturnSQL(), "SELECT [T].F AS F FROM [T] WHERE ([T].F = '14:32')");
}

}  // namespace
}  // namespace brix
