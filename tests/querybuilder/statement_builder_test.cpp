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

using test_support::AddCondition;
using test_support::AddField;
using test_support::AddTable;
using test_support::RaisesRuntimeError;

// A field of `table` with an explicit alias and select position.
std::shared_ptr<xqb_Field> Placed(xqb_Table& table, std::string_view name, std::int16_t order) {
  auto field = AddField(table, name, qbe_DataNumeric);
  field->SetAlias(std::string(name));
  field->SetAppearanceOrder(order);
  return field;
}

std::shared_ptr<xqb_Field> Sorted(xqb_Table& table, std::string_view name, qbe_SortType order,
                                  std::int16_t level) {
  auto field = AddField(table, name, qbe_DataNumeric);
  field->SetOrderByOrder(order);
  field->SetOrderByLevel(level);
  return field;
}

struct Case {
  const char* name;
  std::function<std::string()> render;
  std::string expected;
};

TEST(StatementBuilder, Statements) {
  const std::vector<Case> cases = {
      {"no tables", [] { return xqb_Query::Create()->ReturnSQL(5); }, ""},
      {"a table without fields",
       [] {
         auto query = xqb_Query::Create();
         AddTable(*query, "T");
         return query->ReturnSQL();
       },
       "SELECT  FROM [T]"},
      {"one field",
       [] {
         auto query = xqb_Query::Create();
         auto field = AddField(*AddTable(*query, "T"), "F");
         field->SetAlias("A");
         field->SetAppearanceOrder(1);
         return query->ReturnSQL();
       },
       "SELECT [T].F AS A FROM [T]"},
      {"distinct rows and a row limit",
       [] {
         auto query = xqb_Query::Create();
         Placed(*AddTable(*query, "T"), "F", 1)->SetAlias("A");
         query->SetDistinctRows(true);
         return query->ReturnSQL(10);
       },
       "SELECT DISTINCT [T].F AS A FROM [T] LIMIT 10"},
      {"LIMIT for every statement type, negative as it stands",
       [] {
         auto query = xqb_Query::Create();
         AddTable(*query, "T");
         std::string texts;
         for (auto type : {qbe_StatementAccess, qbe_StatementDTSearch, qbe_StatementSQLServer}) {
           query->SetStatementType(type);
           texts += query->ReturnSQL(-3) + "|";
         }
         return texts;
       },
       "SELECT  FROM [T] LIMIT -3|SELECT  FROM [T] LIMIT -3|SELECT  FROM [T] LIMIT -3|"},
      {"every clause in order, joins inside WHERE, names with blanks bracketed again",
       [] {
         auto query = xqb_Query::Create();
         auto a = AddTable(*query, "Order Items");
         auto id = Placed(*a, "ID", 2);
         id->SetLinksWithField("B.AID");
         id->SetGroupByLevel(1);
         id->SetOrderByOrder(qbe_SortDescending);
         id->SetOrderByLevel(1);
         AddCondition(*id, 1, qbe_ClauseGreaterThan, Variant(5));
         auto total = Placed(*a, "Unit Price", 1);
         total->SetCalculatedFormula("Sum(x)");
         auto b = AddTable(*query, "B");
         AddCondition(*AddField(*b, "Name"), 2, qbe_ClauseStartingWith, Variant("a"));
         return query->ReturnSQL(7);
       },
       "SELECT Sum(x) AS [Unit Price], [[Order Items]].ID AS ID, [B].Name AS Name "
       "FROM [[Order Items]], [B] WHERE  ([Order Items].ID = B.AID) AND "
       "([[Order Items]].ID > 5) AND ([B].Name LIKE 'a%') GROUP BY [[Order Items]].ID "
       "ORDER BY [Order Items].ID DESC LIMIT 7"},
      {"joins alone make a WHERE clause",
       [] {
         auto query = xqb_Query::Create();
         AddField(*AddTable(*query, "A"), "k")->SetLinksWithField("B.k");
         return query->ReturnSQL();
       },
       "SELECT [A].k AS k FROM [A] WHERE  (A.k = B.k)"},
      {"table list",
       [] {
         auto query = xqb_Query::Create();
         AddTable(*query, "A");
         AddTable(*query, "B");
         return query->ReturnTables() + "|" + xqb_Query::Create()->ReturnTables();
       },
       "[A], [B]|"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.render(), c.expected) << c.name;
}

TEST(StatementBuilder, FieldLists) {
  const std::vector<Case> cases = {
      {"the first field takes a slot, later ones follow all placed fields in tree order",
       [] {
         auto query = xqb_Query::Create();
         auto t = AddTable(*query, "T");
         Placed(*t, "a", 1);
         Placed(*t, "b", 1);
         Placed(*t, "c", 0);
         Placed(*t, "d", 6);  // above the field count
         Placed(*AddTable(*query, "U"), "e", 2);
         return query->ReturnAllFields();
       },
       "a, e, b, c, d"},
      {"fields left out of the statement, empty alias, calculated field without prefix",
       [] {
         auto query = xqb_Query::Create();
         auto t = AddTable(*query, "T");
         Placed(*t, "a", 2)->SetUseInStatement(false);
         Placed(*t, "b", -1)->SetUseInStatement(false);  // not placed, so no error
         Placed(*t, "c", 2)->SetAlias("");
         Placed(*t, "d", 1)->SetCalculatedFormula("a + 1");
         return query->ReturnAllFields(false);
       },
       "a + 1 AS d, [T].c AS "},
      {"no fields",
       [] {
         auto query = xqb_Query::Create();
         AddTable(*query, "T");
         return query->ReturnAllFields() + "|" + query->ReturnOrderByFields();
       },
       "|"},
      {"ORDER BY by level whatever the collection order",
       [] {
         auto query = xqb_Query::Create();
         auto t = AddTable(*query, "A");
         Sorted(*t, "y", qbe_SortDescending, 2);
         Sorted(*t, "x", qbe_SortAscending, 1);
         return query->ReturnOrderByFields();
       },
       "A.x ASC, A.y DESC"},
      {"ORDER BY: the first level-0 field is left out, later ones follow",
       [] {
         auto query = xqb_Query::Create();
         auto t = AddTable(*query, "T");
         Sorted(*t, "a", qbe_SortAscending, 0);
         Sorted(*t, "b", qbe_SortDescending, 0)->SetUseInStatement(false);
         Sorted(*t, "c", qbe_SortNone, 1);
         Sorted(*t, "d", static_cast<qbe_SortType>(2), 1);
         Sorted(*t, "e", qbe_SortNone, -1);  // no item, so no error
         Sorted(*t, "f", qbe_SortAscending, 9);
         Sorted(*t, "g", qbe_SortAscending, 1);
         return query->ReturnOrderByFields();
       },
       "T.g ASC, T.b DESC, T.f ASC"},
      {"a single level-0 sort writes no ORDER BY",
       [] {
         auto query = xqb_Query::Create();
         Sorted(*AddTable(*query, "T"), "a", qbe_SortAscending, 0);
         return query->ReturnSQL();
       },
       "SELECT [T].a AS a FROM [T]"},
      {"GROUP BY: non-zero levels, statement use and group order not consulted",
       [] {
         auto query = xqb_Query::Create();
         auto t = AddTable(*query, "T");
         auto a = AddField(*t, "a");
         a->SetGroupByLevel(2);
         a->SetGroupOrder(qbe_SortDescending);
         auto b = AddField(*t, "b");
         b->SetGroupByLevel(1);
         b->SetUseInStatement(false);
         AddField(*t, "c")->SetGroupByLevel(7);
         AddField(*t, "d")->SetGroupByLevel(1);
         AddField(*t, "e");
         return query->ReturnSQL();
       },
       "SELECT [T].a AS a, [T].c AS c, [T].d AS d, [T].e AS e FROM [T] "
       "GROUP BY [T].b, [T].a, [T].c, [T].d"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.render(), c.expected) << c.name;
}

TEST(StatementBuilder, NegativePositionsRaise9) {
  const std::vector<std::pair<const char*, std::function<void(xqb_Field&)>>> cases = {
      {"AppearanceOrder", [](xqb_Field& f) { f.SetAppearanceOrder(-1); }},
      {"OrderByLevel",
       [](xqb_Field& f) {
         f.SetOrderByOrder(qbe_SortAscending);
         f.SetOrderByLevel(-2);
       }},
      {"GroupByLevel", [](xqb_Field& f) { f.SetGroupByLevel(-32768); }},
  };
  for (const auto& [name, set] : cases) {
    auto query = xqb_Query::Create();
    set(*AddField(*AddTable(*query, "T"), "F"));
    EXPECT_TRUE(RaisesRuntimeError([&] { query->ReturnSQL(); }, kErrSubscriptOutOfRange)) << name;
  }
  auto query = xqb_Query::Create();
  AddField(*AddTable(*query, "T"), "F")->SetAppearanceOrder(-1);
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
  auto query = xqb_Query::Create();  // reads the clock once for Today
  AddCondition(*AddField(*AddTable(*query, "T"), "F"), 1, qbe_ClauseTimeNow);
  EXPECT_EQ(query->ReturnSQL(), "SELECT [T].F AS F FROM [T] WHERE ([T].F = '14:32')");
}

}  // namespace
}  // namespace brix
