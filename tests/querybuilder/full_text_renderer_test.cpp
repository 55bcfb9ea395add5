// The dtSearch request: joiners, carried operand texts, near distance and day-number bounds.
#include "querybuilder/full_text_renderer.h"

#include <gtest/gtest.h>

#include <tuple>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::ConditionRow;
using test_support::FieldRow;
using test_support::Outcome;
using test_support::RaisesRuntimeError;
using V = Variant;
using Conditions = std::vector<ConditionRow>;

constexpr double kWednesday = 40240;    // 3 March 2010, the clock's date
constexpr std::int32_t kToday = 40300;  // 2 May 2010, the query's Today
constexpr const char* kMismatch = "13 brixobjects4: Type mismatch";
constexpr const char* kOverflow = "6 brixobjects4: Overflow";

FieldRow Indexed(const char* name, qbe_DataType db, qbe_DataType show, Conditions c) {
  return {.name = name, .type = db, .conditions = std::move(c), .show_as = show, .dt_index = true};
}
FieldRow Emitent(Conditions c) { return Indexed("Emitent", qbe_DataString, qbe_DataString, c); }
FieldRow Numar(Conditions c) { return Indexed("Numar", qbe_DataNumeric, qbe_DataNumeric, c); }
FieldRow Suma(Conditions c) { return Indexed("Suma", qbe_DataDecimal, qbe_DataDecimal, c); }
FieldRow Doc(Conditions c) {
  return Indexed("Textul_documentului", qbe_DataUserDefined3, qbe_DataUserDefined3, c);
}
FieldRow Days(Conditions c) { return Indexed("Luna", qbe_DataNumeric, qbe_DataDate, c); }
FieldRow Data(Conditions c) { return Indexed("Data", qbe_DataDate, qbe_DataDate, c); }
FieldRow Activ(Conditions c) { return Indexed("Activ", qbe_DataBoolean, qbe_DataBoolean, c); }
ConditionRow Eq(V value) { return {qbe_ClauseEqualTo, std::move(value)}; }

std::string Render(const std::vector<FieldRow>& fields, std::int16_t near = 33,
                   double clock = kWednesday) {
  ScopedClock fixed(clock);
  auto query = BuildQuery({{"Documente", fields}});
  query->SetToday(kToday);
  return query->ReturnDTConditions(near);
}

TEST(FullTextRenderer, Requests) {
  const ConditionRow x = Eq(V("x")), five = Eq(V(5)), greater{qbe_ClauseGreaterThan};
  const ConditionRow param{qbe_ClauseEqualTo, V("p"), V(""), "P"};
  const ConditionRow near{qbe_ClauseContainsWordsNear, V("alfa beta")};
  const ConditionRow words{qbe_ClauseContainsWords, V("alfa beta")};
  const ConditionRow expression{qbe_ClauseContainsExpression, V("b")};
  const FieldRow not_indexed = {.name = "Alt", .conditions = {x}};
  const auto B = qbe_DataBoolean;
  // clang-format off
  const std::vector<std::tuple<const char*, std::vector<FieldRow>, std::string>> cases = {
      {"document joins with AND", {Doc({expression, words})},        "((b) AND (alfa* AND beta*))"},
      {"words elsewhere join with OR", {Emitent({words, expression})}, "((Emitent contains (alfa* AND beta*)) OR (Emitent contains (b)))"},
      {"document equality",     {Doc({x})},                          "( contains (x)))"},
      {"(()) left out",         {Doc({{qbe_ClauseContainsExpression}}), Numar({five})}, "((Numar contains (5)))"},
      {"() kept",               {Emitent({x, greater}), Numar({five})}, "() AND ((Numar contains (5)))"},
      {"unsearchable leaves its joiner", {Emitent({greater, x})},    "( OR (Emitent contains (x)))"},
      {"parameter skipped",     {Emitent({param, x}), Numar({param})}, "((Emitent contains (x)))"},
      {"not indexed",           {not_indexed, Numar({five})},        "((Numar contains (5)))"},
      {"boolean empty repeats", {Activ({Eq(V(true)), Eq(V(""))})},   "((Activ contains (True)) OR (Activ contains (True)))"},
      {"boolean carries across fields", {Emitent({x}), Activ({Eq(V(""))})}, "((Emitent contains (x))) AND ((Activ contains (x)))"},
      {"blob keeps previous",   {Numar({five}), Indexed("Poza", qbe_DataBLOB, qbe_DataBLOB, {x})}, "((Numar contains (5))) AND ((Poza contains (5)))"},
      // Text "True" (as a definition reads back) is not True: it keeps the previous "0".
      {"string shown as boolean", {Indexed("S", qbe_DataString, B, {Eq(V(true)), Eq(V(false)), Eq(V("True"))})},
       "((S contains (1)) OR (S contains (0)) OR (S contains (0)))"},
      {"near form carries",     {Doc({near}), Suma({x})},            "((alfa w/33 beta)) AND ((Suma contains (alfa w/33 beta)))"},
      {"words form does not",   {Doc({words}), Suma({x})},           "((alfa* AND beta*)) AND ((Suma contains (alfa beta)))"},
      {"date field",            {Data({Eq(V(Date{40239})), {qbe_ClauseBetween, V("3/2/2010"), V("12/31/2010")}})},
       "((Data contains (02-Mar-2010)) OR (Data contains (02-Mar-2010~~31-Dec-2010)))"},
      {"date field, Null",      {Data({Eq(V::Null())})},             "((Data contains ()))"},
      // Day-number texts read as their day; other text stays, even in a clause discarded later.
      {"date field, day numbers", {Data({{qbe_ClauseBetween, V("43051"), V("43051.75")}})},
       "((Data contains (12-Nov-2017~~12-Nov-2017)))"},
      {"date field, other text", {Data({{qbe_ClauseGreaterThan, V("abc")}, Eq(V("abc"))})},
       "( OR (Data contains (abc)))"},
      {"numeric operands",      {Numar({Eq(V("abc")), Eq(V(" 12 "))})}, "((Numar contains ()) OR (Numar contains ( 12 )))"},
      {"in-list text carries",  {Numar({{qbe_ClauseInList, V("(1,a)")}}), Suma({x})}, "() AND ((Suma contains ((1,a))))"},
      {"day numbers among others", {Emitent({x}), Days({{qbe_ClauseToday}}), Numar({five})},
       "((Emitent contains (x))) AND ((Luna contains (201005~~201005))) AND ((Numar contains (5)))"},
      // Operands that do not convert raise.
      {"day number text",       {Days({{qbe_ClauseBetween, V("abc"), V(1)}})}, kMismatch},
      {"day number overflow",   {Days({Eq(V(1e10))})},               kOverflow},
      {"day count text",        {Days({{qbe_ClauseLastXDays, V("abc")}})}, kMismatch},
      {"year overflow",         {Days({{qbe_ClauseYear, V(40000)}})}, kOverflow},
      {"boolean text",          {Activ({Eq(V("yes"))})},             kMismatch},
      {"array",                 {Emitent({Eq(V(VariantArray{}))})},  kMismatch},
  };
  // clang-format on
  for (const auto& [name, fields, expected] : cases) {
    EXPECT_EQ(Outcome([&] { return Render(fields); }), expected) << name;
  }
}

TEST(FullTextRenderer, NearDistance) {
  const std::vector<std::pair<std::int16_t, std::string>> cases = {
      {0, "((a w/33 b))"},    {1, "((a w/1 b))"},    {5, "((a w/5 b))"},
      {100, "((a w/100 b))"}, {101, "((a w/33 b))"}, {-1, "((a w/33 b))"}};
  for (const auto& [near, expected] : cases) {
    EXPECT_EQ(Render({Doc({{qbe_ClauseContainsWordsNear, V("a b")}})}, near), expected);
  }
}

TEST(FullTextRenderer, OnlyTheFirstTableTakesPart) {
  auto query = BuildQuery({{"A", {Numar({Eq(V(1))})}}, {"B", {Numar({Eq(V(2))})}}});
  EXPECT_EQ(query->ReturnDTConditions(), "((Numar contains (1)))");
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Query::Create()->ReturnDTConditions(); },
                                 kErrSubscriptOutOfRange));
}

TEST(FullTextRenderer, DayNumberBounds) {
  const V none("");
  // clang-format off
  // clock, clause, operands, the field's text between "((Luna contains (" and ")))"
  const std::vector<std::tuple<double, qbe_ClauseOperator, V, V, std::string>> cases = {
      {kWednesday, qbe_ClauseBetween,     V(Date{40238}), V("4/15/2011"), "201003~~201104"},
      {kWednesday, qbe_ClauseBetween,     V("40299"),     V(40330.0),     "201005~~201006"},
      {kWednesday, qbe_ClauseToday,       none,           none,           "201005~~201005"},
      {kWednesday, qbe_ClauseThisMonth,   none,           none,           "201003~~201003"},
      {kWednesday, qbe_ClauseLastXDays,   V(2),           none,           "201004~~201005"},
      {kWednesday, qbe_ClauseLastXDays,   V("1"),         none,           "201005~~201005"},
      {kWednesday, qbe_ClauseLastXMonths, V(12),          none,           "200905~~201005"},
      {kWednesday, qbe_ClauseThisYear,    none,           none,           "201001~~201012"},
      {kWednesday, qbe_ClauseYear,        V("1999"),      none,           "199901~~199912"},
      {kWednesday, qbe_ClauseYear,        V(9),           none,           "200901~~200912"},
      {kWednesday, qbe_ClauseLastXYears,  V(2),           none,           "200805~~201005"},
      {kWednesday, qbe_ClauseNextXDays,   V(30),          none,           "201005~~201006"},
      {kWednesday, qbe_ClauseOverXDays,   V(30),          none,           "201006"},
      {kWednesday, qbe_ClauseEqualTo,     V("3/2/2010"),  none,           "201003"},
      {kWednesday, qbe_ClauseEqualTo,     V(40268.6),     none,           "201004"},  // rounds to 1 April
      {kWednesday, qbe_ClauseEqualTo,     V("abc"),       none,           ""},
      // "This week" runs from the clock's date back to date - 7 + weekday (Monday 1): reversed
      // but on Sunday. The week of Monday 26 April 2010:
      {40294,      qbe_ClauseThisWeek,    none,           none,           "201004~~201004"},
      {40299,      qbe_ClauseThisWeek,    none,           none,           "201005~~201004"},
      {40300,      qbe_ClauseThisWeek,    none,           none,           "201005~~201005"},
  };
  // clang-format on
  for (const auto& [clock, clause, value, secondary, expected] : cases) {
    EXPECT_EQ(Render({Days({{clause, value, secondary}})}, 33, clock),
              "((Luna contains (" + expected + ")))")
        << clause << " " << expected;
  }
}

}  // namespace
}  // namespace brix
