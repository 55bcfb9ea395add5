// SELECT statements and their lists: slot and tail placement, clause order, LIMIT, errors.
#include "querybuilder/statement_builder.h"

#include <gtest/gtest.h>

#include <tuple>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::FieldRow;
using test_support::Outcome;
using test_support::RaisesRuntimeError;
using test_support::TableRow;
using V = Variant;

constexpr auto N = qbe_DataNumeric, S = qbe_DataString;
constexpr auto ASC = qbe_SortAscending;
constexpr auto DESC = qbe_SortDescending;
constexpr const char* kOutOfRange = "9 brixobjects4: Subscript out of range";

// A numeric field with its alias and select position; a sorted field; a grouped field.
FieldRow Placed(const char* name, std::int16_t place) {
  return {.name = name, .type = N, .alias = name, .place = place};
}
FieldRow Sorted(const char* name, qbe_SortType sort, std::int16_t level, bool used = true) {
  return {.name = name, .type = N, .sort = sort, .sort_level = level, .in_statement = used};
}
FieldRow Grouped(const char* name, std::int16_t level, bool used = true) {
  return {.name = name, .group_level = level, .in_statement = used};
}

TEST(StatementBuilder, Statements) {
  // clang-format off
  const FieldRow id = {.name = "ID", .type = N, .conditions = {{qbe_ClauseGreaterThan, V(5)}}, .alias = "ID", .place = 2,
                       .links = "B.AID", .group_level = 1, .sort = DESC, .sort_level = 1};
  const FieldRow price = {.name = "Unit Price", .type = N, .alias = "x", .place = 1, .formula = "Sum(x)"};
  const std::vector<std::tuple<std::vector<TableRow>, std::int32_t, std::string>> cases = {
      {{}, 5, ""},
      {{{"T"}}, -3, "SELECT  FROM [T] LIMIT -3"},
      // Every clause in order, joins inside WHERE, names with blanks bracketed again, a formula named by its field.
      {{{"Order Items", {id, price}}, {"B", {{"Name", qbe_DataString, {{qbe_ClauseStartingWith, V("a")}}}}}}, 7,
       "SELECT Sum(x) AS [Unit Price], [[Order Items]].ID AS ID, [B].Name AS Name FROM [[Order Items]], [B] WHERE "
       " ([Order Items].ID = B.AID) AND ([[Order Items]].ID > 5) AND ([B].Name LIKE 'a%') "
       "GROUP BY [[Order Items]].ID ORDER BY [Order Items].ID DESC LIMIT 7"},
      {{{"A", {{.name = "k", .links = "B.k"}}}}, 0, "SELECT [A].k AS k FROM [A] WHERE  (A.k = B.k)"},
      // The first field of a position takes its slot; later ones follow all placed fields, in tree order.
      {{{"T", {Placed("a", 1), Placed("b", 1), Placed("c", 0), Placed("d", 6)}}, {"U", {Placed("e", 2)}}}, 0,
       "SELECT [T].a AS a, [U].e AS e, [T].b AS b, [T].c AS c, [T].d AS d FROM [T], [U]"},
      {{{"T", {{.name = "a", .place = 2, .in_statement = false}, {.name = "b", .place = -1, .in_statement = false},
               {.name = "c", .alias = "", .place = 2}}}}, 0, "SELECT [T].c AS  FROM [T]"},
      {{{"A", {Sorted("y", DESC, 2), Sorted("x", ASC, 1)}}}, 0, "SELECT [A].y AS y, [A].x AS x FROM [A] ORDER BY A.x ASC, A.y DESC"},
      // The first level-0 sort lands in slot 0, which is never written; unsorted fields are skipped.
      {{{"T", {Sorted("a", ASC, 0), Sorted("b", DESC, 0, false), Sorted("c", qbe_SortNone, 1),
               Sorted("d", static_cast<qbe_SortType>(2), 1), Sorted("e", qbe_SortNone, -1), Sorted("f", ASC, 9)}}}, 0,
       "SELECT [T].a AS a, [T].c AS c, [T].d AS d, [T].e AS e, [T].f AS f FROM [T] ORDER BY T.b DESC, T.f ASC"},
      {{{"T", {Grouped("a", 2), Grouped("b", 1, false), Grouped("c", 7), Grouped("d", 1), Grouped("e", 0)}}}, 0,
       "SELECT [T].a AS a, [T].c AS c, [T].d AS d, [T].e AS e FROM [T] GROUP BY [T].b, [T].a, [T].c, [T].d"},
      // Negative positions and levels are out of range.
      {{{"T", {{.name = "F", .place = -1}}}}, 0, kOutOfRange},
      {{{"T", {{.name = "F", .sort = ASC, .sort_level = -2}}}}, 0, kOutOfRange},
      {{{"T", {{.name = "F", .group_level = -32768}}}}, 0, kOutOfRange},
  };
  // clang-format on
  for (const auto& [tables, top, expected] : cases) {
    EXPECT_EQ(Outcome([&] { return BuildQuery(tables)->ReturnSQL(top); }), expected);
  }
  auto query = BuildQuery({{"T", {Placed("a", 2), Placed("b", 1)}}, {"U"}});
  query->SetDistinctRows(true);
  for (auto type : {qbe_StatementAccess, qbe_StatementDTSearch, qbe_StatementSQLServer}) {
    query->SetStatementType(type);
    EXPECT_EQ(query->ReturnSQL(), "SELECT DISTINCT [T].b AS b, [T].a AS a FROM [T], [U]");
  }
  EXPECT_EQ(query->ReturnAllFields(), "b, a");
  query = BuildQuery({{"T", {{.name = "F", .place = -1}}}});
  EXPECT_TRUE(RaisesRuntimeError([&] { query->ReturnAllFields(); }, kErrSubscriptOutOfRange));
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
  auto query =
      BuildQuery({{"T", {{"F", qbe_DataString, {{qbe_ClauseTimeNow}}}}}});  // Today: 1 read
  EXPECT_EQ(query->ReturnSQL(), "SELECT [T].F AS F FROM [T] WHERE ([T].F = '14:32')");
}

}  // namespace
}  // namespace brix
