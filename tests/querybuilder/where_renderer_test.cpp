// WHERE text: clause texts by kind and type, day-number ranges, delimiters, joins and narrowing.
#include "querybuilder/where_renderer.h"

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

// Wednesday 3 March 2010, 14:30; the query's Today is Friday 31 July 2009 (40025).
constexpr double kClock = 40240 + 14.5 / 24;
constexpr std::int32_t kToday = 40025;

std::shared_ptr<xqb_Query> NewQuery() {
  auto query = xqb_Query::Create();
  query->SetToday(kToday);
  return query;
}

// The filter of one condition on field F of table T.
std::string RenderOne(qbe_DataType type, qbe_ClauseOperator kind, Variant value,
                      Variant secondary = Variant("")) {
  auto query = NewQuery();
  auto field = AddField(*AddTable(*query, "T"), "F", type);
  AddCondition(*field, 1, kind, std::move(value), std::move(secondary));
  return query->ReturnWHEREConditions();
}

struct ClauseCase {
  qbe_DataType type;
  qbe_ClauseOperator kind;
  Variant value;
  Variant secondary;
  std::string expected;
};

auto K(int kind) { return static_cast<qbe_ClauseOperator>(kind); }

TEST(WhereRenderer, EveryKindOnTextAndNumberFields) {
  ScopedClock clock(kClock);
  struct Row {
    int kind;
    std::string quoted;  // String and Memo fields
    std::string bare;    // Numeric, Boolean, Decimal and BLOB fields
  };
  const std::string range_quoted = "(F BETWEEN '7' AND '9')";
  const std::string range_bare = "(F BETWEEN 7 AND 9)";
  const std::vector<Row> rows = {
      {1, range_quoted, range_bare},
      {2, "(F LIKE '%7%')", "(F LIKE %7%)"},
      {3, "(F = '7')", "(F = 7)"},
      {4, "(F >= '7')", "(F >= 7)"},
      {5, "(F > '7')", "(F > 7)"},
      {6, "(F = '' OR F IS NULL )", "(F IS NULL )"},
      {7, "(F IS NULL)", "(F IS NULL)"},
      {8, "(F <= '7')", "(F <= 7)"},
      {9, "(F < '7')", "(F < 7)"},
      {10, "(F NOT LIKE '%7%')", "(F NOT LIKE %7%)"},
      {11, "(F <> '7')", "(F <> 7)"},
      {12, "(F NOT LIKE '7%')", "(F NOT LIKE 7%)"},
      {13, "(F LIKE '7%')", "(F LIKE 7%)"},
      {14, "(F = '7')", "(F = 7)"},
      {15, range_quoted, range_bare},
      {16, range_quoted, range_bare},
      {17, "(F IN 7)", "(F IN 7)"},
      {18, range_quoted, range_bare},
      {19, "(F NOT IN 7)", "(F NOT IN 7)"},
      {20, "(F <> '' OR F IS NOT NULL )", "(F IS NOT NULL )"},
      {21, range_quoted, range_bare},
      {22, range_quoted, range_bare},
      {23, range_quoted, range_bare},
      {24, range_quoted, range_bare},
      {25, "", ""},
      {26, "", ""},
      {27, "", ""},
      {28, range_quoted, range_bare},
      {29, "(F = '7')", "(F = 7)"},
      {30, "(F = '14:30')", "(F = 14:30)"},
      {31, "(F >= '14:30')", "(F >= 14:30)"},
      {32, "(F <= '14:30')", "(F <= 14:30)"},
      {0, "(F)", "(F)"},
      {33, "(F)", "(F)"},
      {-1, "(F)", "(F)"},
  };
  for (const Row& row : rows) {
    for (auto type : {qbe_DataString, qbe_DataMemo}) {
      EXPECT_EQ(RenderOne(type, K(row.kind), Variant("7"), Variant("9")), row.quoted)
          << "type " << type << ", kind " << row.kind;
    }
    for (auto type : {qbe_DataNumeric, qbe_DataBoolean, qbe_DataDecimal, qbe_DataBLOB}) {
      EXPECT_EQ(RenderOne(type, K(row.kind), Variant("7"), Variant("9")), row.bare)
          << "type " << type << ", kind " << row.kind;
    }
  }
}

TEST(WhereRenderer, ValueTexts) {
  ScopedClock clock(kClock);
  const Variant s("x");
  const Variant none("");
  const std::vector<ClauseCase> cases = {
      {qbe_DataString, K(3), Variant::Null(), none, "(F = '')"},
      {qbe_DataNumeric, K(3), Variant(2.5), none, "(F = 2.5)"},
      {qbe_DataNumeric, K(18), Variant(10), none, "(F BETWEEN 10 AND )"},
      {qbe_DataBoolean, K(3), Variant(true), none, "(F = True)"},
      {qbe_DataBoolean, K(11), Variant(false), none, "(F <> False)"},
      // Quotes of a value are doubled inside quotes only; lists are written as they stand.
      {qbe_DataString, K(3), Variant("O'Brien"), none, "(F = 'O''Brien')"},
      {qbe_DataString, K(1), Variant("a'"), Variant("''"), "(F BETWEEN 'a''' AND '''''')"},
      {qbe_DataString, K(17), Variant("('O''Brien')"), none, "(F IN ('O''Brien'))"},
      {qbe_DataMemo, K(2), Variant("O'Brien"), none, "(F LIKE '%O''Brien%')"},
      {qbe_DataDecimal, K(5), Variant("it's"), none, "(F > it's)"},
      // Date: day numbers for ranges and relative kinds, dd-MMM-yyyy for comparisons.
      {qbe_DataDate, K(1), Variant(Date{40239.75}), Variant("3/5/2010"),
       "(F BETWEEN #40239# AND #40242#)"},
      {qbe_DataDate, K(1), Variant("40239.9"), Variant(40240), "(F BETWEEN #40239# AND #40240#)"},
      {qbe_DataDate, K(1), Variant(Date{-1.25}), Variant(std::int16_t{2}),
       "(F BETWEEN #-1# AND #2#)"},
      {qbe_DataDate, K(3), Variant(Date{40239.5}), none, "(F = #02-Mar-2010#)"},
      {qbe_DataDate, K(4), Variant("3/2/2010"), none, "(F >= #02-Mar-2010#)"},
      {qbe_DataDate, K(5), Variant("40239"), none, "(F > #02-Mar-2010#)"},
      {qbe_DataDate, K(8), Variant(40239), none, "(F <= #02-Mar-2010#)"},
      {qbe_DataDate, K(9), Variant("abc"), none, "(F < #abc#)"},
      {qbe_DataDate, K(11), none, none, "(F <> ##)"},
      {qbe_DataDate, K(14), s, none, "(F = #40025#)"},
      {qbe_DataDate, K(15), s, none, "(F BETWEEN #40238# AND #40244#)"},
      {qbe_DataDate, K(16), s, none, "(F BETWEEN #40238# AND #40268#)"},
      {qbe_DataDate, K(18), Variant(10), none, "(F BETWEEN #40015# AND #40025#)"},
      {qbe_DataDate, K(21), Variant("1"), none, "(F BETWEEN #39994# AND #40025#)"},
      {qbe_DataDate, K(21), Variant(2), none, "(F BETWEEN #39964# AND #40025#)"},
      {qbe_DataDate, K(22), s, none, "(F BETWEEN #40179# AND #40543#)"},
      {qbe_DataDate, K(23), Variant("2008"), none, "(F BETWEEN #39448# AND #39813#)"},
      {qbe_DataDate, K(24), Variant(1), none, "(F BETWEEN #39660# AND #40025#)"},
      {qbe_DataDate, K(28), Variant(7), none, "(F BETWEEN #40025# AND #40032#)"},
      {qbe_DataDate, K(29), Variant(30), none, "(F = #40055#)"},
      {qbe_DataDate, K(30), s, none, "(F = #14:30#)"},
      {qbe_DataDate, K(2), Variant("it's"), none, "(F LIKE #%it's%#)"},
      {qbe_DataDate, K(17), Variant("(1, 2)"), none, "(F IN (1, 2))"},
      {qbe_DataDate, K(6), s, none, "(F IS NULL )"},
      {qbe_DataDate, K(26), s, none, ""},
      {qbe_DataDate, K(7), s, none, "(F IS NULL)"},
      {qbe_DataDate, K(10), Variant("x"), none, "(F NOT LIKE #%x%#)"},
      {qbe_DataDate, K(12), Variant("x"), none, "(F NOT LIKE #x%#)"},
      {qbe_DataDate, K(13), Variant("x"), none, "(F LIKE #x%#)"},
      {qbe_DataDate, K(19), Variant("(1)"), none, "(F NOT IN (1))"},
      {qbe_DataDate, K(20), s, none, "(F IS NOT NULL )"},
      {qbe_DataDate, K(31), s, none, "(F >= #14:30#)"},
      {qbe_DataDate, K(32), s, none, "(F <= #14:30#)"},
      {qbe_DataDate, K(25), s, none, ""},
      {qbe_DataDate, K(27), s, none, ""},
      {qbe_DataDate, K(0), s, none, "(F)"},
  };
  for (const ClauseCase& c : cases) {
    EXPECT_EQ(RenderOne(c.type, c.kind, c.value, c.secondary), c.expected)
        << "type " << c.type << ", kind " << c.kind;
  }
}

TEST(WhereRenderer, RelativeRangesFollowTheClock) {
  struct Case {
    double clock;
    qbe_ClauseOperator kind;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {40238, qbe_ClauseThisWeek, "(F BETWEEN #40238# AND #40244#)"},     // Monday
      {40244.99, qbe_ClauseThisWeek, "(F BETWEEN #40238# AND #40244#)"},  // Sunday night
      {40245, qbe_ClauseThisWeek, "(F BETWEEN #40245# AND #40251#)"},     // next Monday
      {39493, qbe_ClauseThisMonth, "(F BETWEEN #39479# AND #39507#)"},    // February 2008
      {39141, qbe_ClauseThisMonth, "(F BETWEEN #39114# AND #39141#)"},    // 28 February 2007
      {39507, qbe_ClauseThisYear, "(F BETWEEN #39448# AND #39813#)"},     // 29 February 2008
  };
  for (const Case& c : cases) {
    ScopedClock clock(c.clock);
    EXPECT_EQ(RenderOne(qbe_DataDate, c.kind, Variant("")), c.expected) << c.clock;
  }
  // The requested year is reached from the clock's date, so 29 February clamps harmlessly.
  ScopedClock clock(39507);
  EXPECT_EQ(RenderOne(qbe_DataDate, qbe_ClauseYear, Variant(2009.4)),
            "(F BETWEEN #39814# AND #40178#)");
}

TEST(WhereRenderer, DateOperandsThatDoNotConvertRaise) {
  ScopedClock clock(kClock);
  struct Case {
    qbe_ClauseOperator kind;
    Variant value;
    std::int32_t number;
  };
  const std::vector<Case> cases = {
      {qbe_ClauseBetween, Variant("abc"), kErrTypeMismatch},
      {qbe_ClauseBetween, Variant(), kErrTypeMismatch},
      {qbe_ClauseBetween, Variant::Null(), kErrTypeMismatch},
      {qbe_ClauseBetween, Variant(true), kErrTypeMismatch},
      {qbe_ClauseBetween, Variant(1e7), kErrOverflow},
      {qbe_ClauseLastXDays, Variant("abc"), kErrTypeMismatch},
      {qbe_ClauseLastXMonths, Variant::Null(), kErrInvalidUseOfNull},
      {qbe_ClauseOverXDays, Variant(1e12), kErrOverflow},
      {qbe_ClauseYear, Variant("abc"), kErrTypeMismatch},
      {qbe_ClauseYear, Variant(10000), kErrInvalidProcedureCall},
  };
  for (const Case& c : cases) {
    EXPECT_TRUE(RaisesRuntimeError(
        [&] { RenderOne(qbe_DataDate, c.kind, c.value, Variant(40000)); }, c.number))
        << c.kind;
  }
}

struct TreeCase {
  const char* name;
  std::function<std::string()> render;
  std::string expected;
};

// Orders(ID -> Items.OrderID, Name = 'a'), Items(OrderID, Qty > 2), Notes(Text LIKE).
std::shared_ptr<xqb_Query> LinkedQuery() {
  auto query = NewQuery();
  auto orders = AddTable(*query, "Orders");
  AddField(*orders, "ID", qbe_DataNumeric)->SetLinksWithField("Items.OrderID");
  AddCondition(*AddField(*orders, "Name"), 1, qbe_ClauseEqualTo, Variant("a"));
  auto items = AddTable(*query, "Items");
  AddField(*items, "OrderID", qbe_DataNumeric)->SetLinksWithField("Orders.ID");
  AddCondition(*AddField(*items, "Qty", qbe_DataNumeric), 2, qbe_ClauseGreaterThan, Variant(2));
  AddTable(*query, "Notes");
  return query;
}

TEST(WhereRenderer, Trees) {
  ScopedClock clock(kClock);
  const std::vector<TreeCase> cases = {
      {"no tables", [] { return NewQuery()->ReturnWHEREConditions(); }, ""},
      {"no conditions",
       [] {
         auto query = NewQuery();
         AddField(*AddTable(*query, "T"), "F");
         return query->ReturnWHEREConditions(false, nullptr, true);
       },
       ""},
      {"conditions of one field are ORed",
       [] {
         auto query = NewQuery();
         auto field = AddField(*AddTable(*query, "T"), "F", qbe_DataNumeric);
         AddCondition(*field, 1, qbe_ClauseEqualTo, Variant(1));
         AddCondition(*field, 2, qbe_ClauseEqualTo, Variant(2));
         return query->ReturnWHEREConditions();
       },
       "(F = 1 OR F = 2)"},
      {"fields are ANDed across tables, qualified when not simple",
       [] {
         auto query = NewQuery();
         AddCondition(*AddField(*AddTable(*query, "A"), "x", qbe_DataNumeric), 1, qbe_ClauseEqualTo,
                      Variant(1));
         auto b = AddTable(*query, "B b");
         AddCondition(*AddField(*b, "y z"), 2, qbe_ClauseIsEmpty);
         return query->ReturnWHEREConditions(false);
       },
       "([A].x = 1) AND ([[B b]].[y z] = '' OR [y z] IS NULL )"},
      {"a full-text kind discards the field's earlier conditions only",
       [] {
         auto query = NewQuery();
         auto table = AddTable(*query, "T");
         auto f = AddField(*table, "F", qbe_DataNumeric);
         AddCondition(*f, 1, qbe_ClauseEqualTo, Variant(1));
         AddCondition(*f, 2, qbe_ClauseContainsWords, Variant("w"));
         AddCondition(*f, 3, qbe_ClauseEqualTo, Variant(3));
         auto g = AddField(*table, "G", qbe_DataNumeric);
         AddCondition(*g, 4, qbe_ClauseEqualTo, Variant(4));
         AddCondition(*g, 5, qbe_ClauseContainsExpression, Variant("e"));
         auto h = AddField(*table, "H", qbe_DataNumeric);
         AddCondition(*h, 6, qbe_ClauseLessThan, Variant(6));
         return query->ReturnWHEREConditions();
       },
       "(F = 3) AND (H < 6)"},
      {"parameter conditions are skipped",
       [] {
         auto query = NewQuery();
         auto table = AddTable(*query, "T");
         auto f = AddField(*table, "F");
         AddCondition(*f, 1, qbe_ClauseEqualTo, Variant("p"))->SetParamName("P1");
         AddCondition(*f, 2, qbe_ClauseEqualTo, Variant("v"));
         auto g = AddField(*table, "G");
         AddCondition(*g, 3, qbe_ClauseContainsWords, Variant("w"))->SetParamName("P2");
         AddCondition(*g, 4, qbe_ClauseEqualTo, Variant("g"));
         AddCondition(*AddField(*table, "H"), 5, qbe_ClauseIsNull)->SetParamName("P3");
         return query->ReturnWHEREConditions();
       },
       "(F = 'v') AND (G = 'g')"},
      {"types 7 to 11 keep the previous field's delimiter, across tables and empty fields",
       [] {
         auto query = NewQuery();
         auto a = AddTable(*query, "A");
         AddCondition(*AddField(*a, "t0", qbe_DataTime), 1, qbe_ClauseEqualTo, Variant("1"));
         AddField(*a, "s", qbe_DataString);  // no conditions, still sets "'"
         AddCondition(*AddField(*a, "t1", qbe_DataTime), 2, qbe_ClauseEqualTo, Variant("O'B"));
         AddCondition(*AddField(*a, "d", qbe_DataDate), 3, qbe_ClauseToday);
         auto b = AddTable(*query, "B");
         AddCondition(*AddField(*b, "u", qbe_DataUTCDate), 4, qbe_ClauseEqualTo, Variant("2"));
         AddCondition(*AddField(*b, "n", qbe_DataNumeric), 5, qbe_ClauseEqualTo, Variant("3"));
         AddCondition(*AddField(*b, "x", qbe_DataUserDefined3), 6, qbe_ClauseTimeNow);
         AddCondition(*AddField(*b, "m", qbe_DataMemo), 7, qbe_ClauseEqualTo, Variant("4"));
         auto odd = AddField(*b, "o");
         odd->SetDBType(static_cast<qbe_DataType>(99));
         AddCondition(*odd, 8, qbe_ClauseEqualTo, Variant("5"));
         return query->ReturnWHEREConditions();
       },
       "(t0 = 1) AND (t1 = 'O''B') AND (d = #40025#) AND (u = #2#) AND (n = 3) AND "
       "(x = 14:30) AND (m = '4') AND (o = '5')"},
      {"WithJoinConditions puts the joins first",
       [] { return LinkedQuery()->ReturnWHEREConditions(true, nullptr, true); },
       " (Orders.ID = Items.OrderID) AND  (Items.OrderID = Orders.ID) AND (Name = 'a') AND "
       "(Qty > 2)"},
      {"without WithJoinConditions no joins are written",
       [] { return LinkedQuery()->ReturnWHEREConditions(false); },
       "([Orders].Name = 'a') AND ([Items].Qty > 2)"},
      {"joins alone",
       [] {
         auto query = LinkedQuery();
         query->DeleteAllConditions();
         return query->ReturnWHEREConditions(true, nullptr, true);
       },
       " (Orders.ID = Items.OrderID) AND  (Items.OrderID = Orders.ID)"},
      {"a table narrows conditions and joins",
       [] {
         auto query = LinkedQuery();
         return query->ReturnWHEREConditions(false, query->Tables()->Item(Variant("Items")), true);
       },
       " (Items.OrderID = Orders.ID) AND ([Items].Qty > 2)"},
      {"a narrowed walk starts with no delimiter",
       [] {
         auto query = NewQuery();
         AddField(*AddTable(*query, "A"), "s", qbe_DataString);
         auto b = AddTable(*query, "B");
         AddCondition(*AddField(*b, "t", qbe_DataTime), 1, qbe_ClauseEqualTo, Variant("1"));
         return query->ReturnWHEREConditions(true, b);
       },
       "(t = 1)"},
      {"a table without conditions gives nothing",
       [] {
         auto query = LinkedQuery();
         return query->ReturnWHEREConditions(true, query->Tables()->Item(Variant(3)), true);
       },
       ""},
  };
  for (const TreeCase& c : cases) EXPECT_EQ(c.render(), c.expected) << c.name;
}

}  // namespace
}  // namespace brix
