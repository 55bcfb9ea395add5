// WHERE text: value texts by type, day-number ranges, delimiters, joins and narrowing.
#include "querybuilder/where_renderer.h"

#include <gtest/gtest.h>

#include <tuple>

#include "runtime/clock.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::Outcome;
using test_support::TableRow;
using V = Variant;

// Wednesday 3 March 2010, 14:30; the query's Today is Friday 31 July 2009 (40025).
constexpr double kClock = 40240 + 14.5 / 24;
constexpr std::int32_t kToday = 40025;
constexpr auto N = qbe_DataNumeric;
constexpr auto S = qbe_DataString;
constexpr auto EQ = qbe_ClauseEqualTo;
constexpr const char* kMismatch = "13 brixobjects4: Type mismatch";
constexpr const char* kOverflow = "6 brixobjects4: Overflow";

auto K(int kind) { return static_cast<qbe_ClauseOperator>(kind); }

// The WHERE text of `tables`, narrowed to the table named `narrow` when it is not empty.
std::string Render(const std::vector<TableRow>& tables, bool simple = true, bool joins = false,
                   const char* narrow = "") {
  auto query = BuildQuery(tables);
  query->SetToday(kToday);
  auto table = *narrow ? query->Tables()->Item(V(narrow)) : nullptr;
  return query->ReturnWHEREConditions(simple, table, joins);
}

// The filter of one condition on field F of table T.
std::string RenderOne(qbe_DataType type, qbe_ClauseOperator kind, V value, V secondary = V("")) {
  return Render({{"T", {{"F", type, {{kind, value, secondary}}}}}});
}

TEST(WhereRenderer, ValueTexts) {
  ScopedClock clock(kClock);
  const V s("x"), none("");
  // clang-format off
  const std::vector<std::tuple<qbe_DataType, int, V, V, std::string>> cases = {
      {qbe_DataString,  3,  V::Null(),       none,       "(F = '')"},
      {qbe_DataNumeric, 18, V(10),           none,       "(F BETWEEN 10 AND )"},
      {qbe_DataBoolean, 11, V(false),        none,       "(F <> False)"},
      // Quotes of a value are doubled inside quotes only; lists are written as they stand.
      {qbe_DataString,  3,  V("O'Brien"),    none,       "(F = 'O''Brien')"},
      {qbe_DataString,  1,  V("a'"),         V("''"),    "(F BETWEEN 'a''' AND '''''')"},
      {qbe_DataString,  17, V("('O''B')"),   none,       "(F IN ('O''B'))"},
      {qbe_DataMemo,    2,  V("O'Brien"),    none,       "(F LIKE '%O''Brien%')"},
      {qbe_DataDecimal, 5,  V("it's"),       none,       "(F > it's)"},
      // Date: day numbers for ranges and relative kinds, dd-MMM-yyyy for comparisons.
      {qbe_DataDate, 1,  V(Date{40239.75}),  V("3/5/2010"), "(F BETWEEN #40239# AND #40242#)"},
      {qbe_DataDate, 1,  V("40239.9"),       V(40240),      "(F BETWEEN #40239# AND #40240#)"},
      {qbe_DataDate, 1,  V(Date{-1.25}),     V(std::int16_t{2}), "(F BETWEEN #-1# AND #2#)"},
      {qbe_DataDate, 3,  V(Date{40239.5}),   none,       "(F = #02-Mar-2010#)"},
      {qbe_DataDate, 4,  V("3/2/2010"),      none,       "(F >= #02-Mar-2010#)"},
      {qbe_DataDate, 5,  V("40239"),         none,       "(F > #02-Mar-2010#)"},
      {qbe_DataDate, 8,  V(40239),           none,       "(F <= #02-Mar-2010#)"},
      {qbe_DataDate, 9,  V("abc"),           none,       "(F < #abc#)"},
      {qbe_DataDate, 11, none,               none,       "(F <> ##)"},
      {qbe_DataDate, 14, s,                  none,       "(F = #40025#)"},
      {qbe_DataDate, 18, V(10),              none,       "(F BETWEEN #40015# AND #40025#)"},
      {qbe_DataDate, 21, V(2),               none,       "(F BETWEEN #39964# AND #40025#)"},
      {qbe_DataDate, 23, V("2008"),          none,       "(F BETWEEN #39448# AND #39813#)"},
      {qbe_DataDate, 24, V(1),               none,       "(F BETWEEN #39660# AND #40025#)"},
      {qbe_DataDate, 28, V(7),               none,       "(F BETWEEN #40025# AND #40032#)"},
      {qbe_DataDate, 29, V(30),              none,       "(F = #40055#)"},
      {qbe_DataDate, 31, s,                  none,       "(F >= #14:30#)"},
      {qbe_DataDate, 2,  V("it's"),          none,       "(F LIKE #%it's%#)"},
      // A missing bound is Empty, day 0; True is day -1.
      {qbe_DataDate, 1,  V(),                V(40000),   "(F BETWEEN #0# AND #40000#)"},
      {qbe_DataDate, 1,  V(true),            V(),        "(F BETWEEN #-1# AND #0#)"},
      // Date operands that do not convert raise.
      {qbe_DataDate, 1,  V("abc"),           V(40000),   kMismatch},
      {qbe_DataDate, 1,  V(40000),           V(""),      kMismatch},
      {qbe_DataDate, 1,  V::Null(),          V(40000),   "94 brixobjects4: Invalid use of Null"},
      {qbe_DataDate, 1,  V(1e7),             V(40000),   kOverflow},
      {qbe_DataDate, 18, V("abc"),           none,       kMismatch},
      {qbe_DataDate, 21, V::Null(),          none,       "94 brixobjects4: Invalid use of Null"},
      {qbe_DataDate, 29, V(1e12),            none,       kOverflow},
      {qbe_DataDate, 23, V("abc"),           none,       kMismatch},
      {qbe_DataDate, 23, V(10000),           none,       "5 brixobjects4: Invalid procedure call or argument"},
  };
  // clang-format on
  for (const auto& [type, kind, value, secondary, expected] : cases) {
    EXPECT_EQ(Outcome([&] { return RenderOne(type, K(kind), value, secondary); }), expected)
        << type << " " << kind;
  }
}

TEST(WhereRenderer, RelativeRangesFollowTheClock) {
  // clang-format off
  const std::vector<std::tuple<double, qbe_ClauseOperator, V, std::string>> cases = {
      {40238,    qbe_ClauseThisWeek,  V(""),     "(F BETWEEN #40238# AND #40244#)"},  // Monday
      {40244.99, qbe_ClauseThisWeek,  V(""),     "(F BETWEEN #40238# AND #40244#)"},  // Sunday night
      {40245,    qbe_ClauseThisWeek,  V(""),     "(F BETWEEN #40245# AND #40251#)"},  // next Monday
      {39493,    qbe_ClauseThisMonth, V(""),     "(F BETWEEN #39479# AND #39507#)"},  // Feb 2008
      {39141,    qbe_ClauseThisMonth, V(""),     "(F BETWEEN #39114# AND #39141#)"},  // 28 Feb 2007
      {39507,    qbe_ClauseThisYear,  V(""),     "(F BETWEEN #39448# AND #39813#)"},  // 29 Feb 2008
      // The requested year is reached from the clock's date, so 29 February clamps harmlessly.
      {39507,    qbe_ClauseYear,      V(2009.4), "(F BETWEEN #39814# AND #40178#)"},
  };
  // clang-format on
  for (const auto& [serial, kind, value, expected] : cases) {
    ScopedClock clock(serial);
    EXPECT_EQ(RenderOne(qbe_DataDate, kind, value), expected) << serial;
  }
}

TEST(WhereRenderer, Trees) {
  ScopedClock clock(kClock);
  // clang-format off
  // Orders(ID -> Items.OrderID, Name = 'a'), Items(OrderID -> Orders.ID, Qty > 2), Notes.
  const std::vector<TableRow> linked = {
      {"Orders", {{.name = "ID", .type = N, .links = "Items.OrderID"}, {"Name", S, {{EQ, V("a")}}}}},
      {"Items", {{.name = "OrderID", .type = N, .links = "Orders.ID"}, {"Qty", N, {{K(5), V(2)}}}}},
      {"Notes"}};
  const auto T = qbe_DataTime;
  const std::vector<std::tuple<std::vector<TableRow>, bool, bool, const char*, std::string>> cases = {
      // tables, simple field names, with joins, narrowed to, expected
      {{{"T", {{"F"}}}}, false, true, "", ""},
      {{{"T", {{"F", N, {{EQ, V(1)}, {EQ, V(2)}}}}}}, true, false, "", "(F = 1 OR F = 2)"},
      {{{"A", {{"x", N, {{EQ, V(1)}}}}}, {"B b", {{"y z", S, {{K(6)}}}}}}, false, false, "", "([A].x = 1) AND ([[B b]].[y z] = '' OR [y z] IS NULL )"},
      // A full-text kind discards the field's earlier conditions only.
      {{{"T", {{"F", N, {{EQ, V(1)}, {K(26), V("w")}, {EQ, V(3)}}}, {"G", N, {{EQ, V(4)}, {K(27), V("e")}}},
               {"H", N, {{K(9), V(6)}}}}}},
       true, false, "", "(F = 3) AND (H < 6)"},
      // Parameter conditions are left out.
      {{{"T", {{"F", S, {{EQ, V("p"), V(""), "P1"}, {EQ, V("v")}}}, {"G", S, {{K(26), V("w"), V(""), "P2"}, {EQ, V("g")}}},
               {"H", S, {{K(7), V(""), V(""), "P3"}}}}}},
       true, false, "", "(F = 'v') AND (G = 'g')"},
      // Types 7 to 11 (and unknown ones) keep the previous field's delimiter, across tables and fields without conditions.
      {{{"A", {{"t0", T, {{EQ, V("1")}}}, {"s"}, {"t1", T, {{EQ, V("O'B")}}}, {"d", qbe_DataDate, {{K(14)}}}}},
        {"B", {{"u", qbe_DataUTCDate, {{EQ, V("2")}}}, {"n", N, {{EQ, V("3")}}}, {"x", qbe_DataUserDefined3, {{K(30)}}},
               {"m", qbe_DataMemo, {{EQ, V("4")}}}, {"o", static_cast<qbe_DataType>(99), {{EQ, V("5")}}}}}},
       true, false, "", "(t0 = 1) AND (t1 = 'O''B') AND (d = #40025#) AND (u = #2#) AND (n = 3) AND (x = 14:30) AND (m = '4') AND (o = '5')"},
      {linked, true, true, "", " (Orders.ID = Items.OrderID) AND  (Items.OrderID = Orders.ID) AND (Name = 'a') AND (Qty > 2)"},
      {linked, false, false, "", "([Orders].Name = 'a') AND ([Items].Qty > 2)"},
      {linked, false, true, "Items", " (Items.OrderID = Orders.ID) AND ([Items].Qty > 2)"},
      {linked, true, true, "Notes", ""},
      // A narrowed walk starts with no delimiter.
      {{{"A", {{"s"}}}, {"B", {{"t", T, {{EQ, V("1")}}}}}}, true, true, "B", "(t = 1)"},
  };
  // clang-format on
  for (const auto& [tables, simple, joins, narrow, expected] : cases) {
    EXPECT_EQ(Render(tables, simple, joins, narrow), expected) << expected;
  }
}

}  // namespace
}  // namespace brix
