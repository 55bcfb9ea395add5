// The dtSearch request: clause texts, joiners, carried operand texts and day-number bounds.
#include "querybuilder/full_text_renderer.h"

#include <gtest/gtest.h>

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
using test_support::AddTable;
using test_support::RaisesRuntimeError;

constexpr double kWednesday = 40240;    // 3 March 2010, the clock's date
constexpr std::int32_t kToday = 40300;  // 2 May 2010, the query's Today

struct Cond {
  qbe_ClauseOperator clause;
  Variant value = Variant("");
  Variant secondary = Variant("");
  std::string param_name = {};
};

struct FieldSpec {
  std::string name;
  qbe_DataType db_type;
  qbe_DataType show_as;
  std::vector<Cond> conditions;
  bool indexed = true;
};

FieldSpec Emitent(std::vector<Cond> c) { return {"Emitent", qbe_DataString, qbe_DataString, c}; }
FieldSpec Numar(std::vector<Cond> c) { return {"Numar", qbe_DataNumeric, qbe_DataNumeric, c}; }
FieldSpec Suma(std::vector<Cond> c) { return {"Suma", qbe_DataDecimal, qbe_DataDecimal, c}; }
FieldSpec Doc(std::vector<Cond> c) {
  return {"Textul_documentului", qbe_DataUserDefined3, qbe_DataUserDefined3, c};
}
FieldSpec Days(std::vector<Cond> c) { return {"Luna", qbe_DataNumeric, qbe_DataDate, c}; }
FieldSpec Data(std::vector<Cond> c) { return {"Data", qbe_DataDate, qbe_DataDate, c}; }
FieldSpec Activ(std::vector<Cond> c) { return {"Activ", qbe_DataBoolean, qbe_DataBoolean, c}; }
Cond Eq(Variant value) { return {qbe_ClauseEqualTo, std::move(value)}; }

void AddFields(xqb_Table& table, const std::vector<FieldSpec>& fields, std::int32_t& id) {
  for (const auto& spec : fields) {
    auto field = table.Fields()->Add(spec.name);
    field->SetDBType(spec.db_type);
    field->SetShowAsType(spec.show_as);
    field->SetIsDTIndex(spec.indexed);
    for (const auto& c : spec.conditions) {
      AddCondition(*field, ++id, c.clause, c.value, c.secondary)->SetParamName(c.param_name);
    }
  }
}

std::string Render(const std::vector<FieldSpec>& fields, std::int16_t near = 33,
                   double clock = kWednesday) {
  ScopedClock fixed(clock);
  auto query = xqb_Query::Create();
  query->SetToday(kToday);
  std::int32_t id = 0;
  AddFields(*AddTable(*query, "Documente"), fields, id);
  return query->ReturnDTConditions(near);
}

TEST(FullTextRenderer, ClauseTextOfEveryClause) {
  // R range, E one operand, W words, X not searchable (empties the field), N no text.
  const std::string kinds = "NREEXXXXXXXXXXRRRXRXXRRRREWEREEXXN";
  for (int clause = 0; clause <= 33; ++clause) {
    auto op = static_cast<qbe_ClauseOperator>(clause);
    std::string expected = kinds[clause] == 'R'   ? "((Emitent contains (x~~y)))"
                           : kinds[clause] == 'E' ? "((Emitent contains (x)))"
                           : kinds[clause] == 'W' ? "((Emitent contains (x*)))"
                           : kinds[clause] == 'X' ? "()"
                                                  : "((Emitent)";
    EXPECT_EQ(Render({Emitent({{op, Variant("x"), Variant("y")}})}), expected) << clause;
  }
}

TEST(FullTextRenderer, Requests) {
  const Cond x = Eq(Variant("x")), five = Eq(Variant(5)), greater{qbe_ClauseGreaterThan};
  const Cond param{qbe_ClauseEqualTo, Variant("p"), Variant(""), "P"};
  const Cond near{qbe_ClauseContainsWordsNear, Variant("alfa beta")};
  const Cond words{qbe_ClauseContainsWords, Variant("alfa beta")};
  const Cond expression{qbe_ClauseContainsExpression, Variant("b")};
  struct Case {
    const char* name;
    std::vector<FieldSpec> fields;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"one field", {Emitent({x})}, "((Emitent contains (x)))"},
      {"two fields",
       {Emitent({x}), Numar({five})},
       "((Emitent contains (x))) AND ((Numar contains (5)))"},
      {"words on the document", {Doc({words})}, "((alfa* AND beta*))"},
      {"document joins with AND", {Doc({expression, words})}, "((b) AND (alfa* AND beta*))"},
      {"words elsewhere join with OR",
       {Emitent({words, expression})},
       "((Emitent contains (alfa* AND beta*)) OR (Emitent contains (b)))"},
      {"document equality", {Doc({x})}, "( contains (x)))"},
      {"(()) left out",
       {Doc({{qbe_ClauseContainsExpression}}), Numar({five})},
       "((Numar contains (5)))"},
      {"() kept", {Emitent({x, greater}), Numar({five})}, "() AND ((Numar contains (5)))"},
      {"unsearchable leaves its joiner", {Emitent({greater, x})}, "( OR (Emitent contains (x)))"},
      {"parameter skipped", {Emitent({param, x}), Numar({param})}, "((Emitent contains (x)))"},
      {"not indexed",
       {{"Alt", qbe_DataString, qbe_DataString, {x}, false}, Numar({five})},
       "((Numar contains (5)))"},
      {"boolean empty repeats",
       {Activ({Eq(Variant(true)), Eq(Variant(""))})},
       "((Activ contains (True)) OR (Activ contains (True)))"},
      {"boolean carries across fields",
       {Emitent({x}), Activ({Eq(Variant(""))})},
       "((Emitent contains (x))) AND ((Activ contains (x)))"},
      {"blob keeps previous",
       {Numar({five}), {"Poza", qbe_DataBLOB, qbe_DataBLOB, {x}}},
       "((Numar contains (5))) AND ((Poza contains (5)))"},
      // Text "True" (as a definition reads back) is not True: it keeps the previous "0".
      {"string shown as boolean",
       {{"Semnat",
         qbe_DataString,
         qbe_DataBoolean,
         {Eq(Variant(true)), Eq(Variant(false)), Eq(Variant("True"))}}},
       "((Semnat contains (1)) OR (Semnat contains (0)) OR (Semnat contains (0)))"},
      {"near form carries",
       {Doc({near}), Suma({x})},
       "((alfa w/33 beta)) AND ((Suma contains (alfa w/33 beta)))"},
      {"words form does not",
       {Doc({words}), Suma({x})},
       "((alfa* AND beta*)) AND ((Suma contains (alfa beta)))"},
      {"date field",
       {Data({Eq(Variant(Date{40239})),
              {qbe_ClauseBetween, Variant("3/2/2010"), Variant("12/31/2010")}})},
       "((Data contains (02-Mar-2010)) OR (Data contains (02-Mar-2010~~31-Dec-2010)))"},
      {"numeric operands",
       {Numar({Eq(Variant("abc")), Eq(Variant(" 12 "))})},
       "((Numar contains ()) OR (Numar contains ( 12 )))"},
      {"in-list text carries",
       {Numar({{qbe_ClauseInList, Variant("(1,a)")}}), Suma({x})},
       "() AND ((Suma contains ((1,a))))"},
      {"mixed kinds",
       {Emitent({x}),
        Doc({words}),
        {"Alt", qbe_DataString, qbe_DataString, {five}, false},
        Days({{qbe_ClauseToday}}),
        Numar({five})},
       "((Emitent contains (x))) AND ((alfa* AND beta*)) AND ((Luna contains (201005~~201005))) "
       "AND ((Numar contains (5)))"},
  };
  for (const auto& c : cases) EXPECT_EQ(Render(c.fields), c.expected) << c.name;
}

TEST(FullTextRenderer, NearDistance) {
  const std::vector<std::pair<std::int16_t, std::string>> cases = {
      {0, "((a w/33 b))"},    {1, "((a w/1 b))"},    {5, "((a w/5 b))"},
      {100, "((a w/100 b))"}, {101, "((a w/33 b))"}, {-1, "((a w/33 b))"}};
  for (const auto& [near, expected] : cases) {
    EXPECT_EQ(Render({Doc({{qbe_ClauseContainsWordsNear, Variant("a b")}})}, near), expected);
  }
}

TEST(FullTextRenderer, OnlyTheFirstTableTakesPart) {
  ScopedClock fixed(kWednesday);
  auto query = xqb_Query::Create();
  std::int32_t id = 0;
  AddFields(*AddTable(*query, "A"), {Numar({{qbe_ClauseEqualTo, Variant(1)}})}, id);
  AddFields(*AddTable(*query, "B"), {Numar({{qbe_ClauseEqualTo, Variant(2)}})}, id);
  EXPECT_EQ(query->ReturnDTConditions(), "((Numar contains (1)))");
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Query::Create()->ReturnDTConditions(); },
                                 kErrSubscriptOutOfRange));
}

TEST(FullTextRenderer, DayNumberBounds) {
  struct Case {
    qbe_ClauseOperator clause;
    Variant value;
    Variant secondary;
    std::string expected;  // the field's text between "((Luna contains (" and ")))"
  };
  const std::vector<Case> cases = {
      {qbe_ClauseBetween, Variant(Date{40238}), Variant("4/15/2011"), "201003~~201104"},
      {qbe_ClauseBetween, Variant("40299"), Variant(40330.0), "201005~~201006"},
      {qbe_ClauseToday, Variant(""), Variant(""), "201005~~201005"},
      {qbe_ClauseThisMonth, Variant(""), Variant(""), "201003~~201003"},
      {qbe_ClauseLastXDays, Variant(2), Variant(""), "201004~~201005"},
      {qbe_ClauseLastXDays, Variant("1"), Variant(""), "201005~~201005"},
      {qbe_ClauseLastXMonths, Variant(12), Variant(""), "200905~~201005"},
      {qbe_ClauseThisYear, Variant(""), Variant(""), "201001~~201012"},
      {qbe_ClauseYear, Variant("1999"), Variant(""), "199901~~199912"},
      {qbe_ClauseYear, Variant(9), Variant(""), "200901~~200912"},
      {qbe_ClauseLastXYears, Variant(2), Variant(""), "200805~~201005"},
      {qbe_ClauseNextXDays, Variant(30), Variant(""), "201005~~201006"},
      {qbe_ClauseOverXDays, Variant(30), Variant(""), "201006"},
      {qbe_ClauseEqualTo, Variant("3/2/2010"), Variant(""), "201003"},
      {qbe_ClauseEqualTo, Variant(40268.6), Variant(""), "201004"},  // rounds to 1 April
      {qbe_ClauseEqualTo, Variant("abc"), Variant(""), ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Render({Days({{c.clause, c.value, c.secondary}})}),
              "((Luna contains (" + c.expected + ")))")
        << c.clause << " " << c.expected;
  }
}

TEST(FullTextRenderer, WeekRangeIsReversedButOnSunday) {
  // The week of Monday 26 April 2010: "this week" runs from the clock's date back to
  // date - 7 + weekday, Monday first.
  const std::vector<std::string> expected = {"201004~~201004", "201004~~201004", "201004~~201004",
                                             "201004~~201004", "201004~~201004", "201005~~201004",
                                             "201005~~201005"};
  for (int day = 0; day < 7; ++day) {
    EXPECT_EQ(Render({Days({{qbe_ClauseThisWeek}})}, 33, 40294 + day),
              "((Luna contains (" + expected[day] + ")))")
        << day;
  }
}

TEST(FullTextRenderer, OperandsThatDoNotConvert) {
  const std::vector<std::pair<FieldSpec, std::int32_t>> cases = {
      {Data({Eq(Variant("abc"))}), kErrTypeMismatch},
      {Data({Eq(Variant("40238"))}), kErrTypeMismatch},  // a number text is no date
      {Days({{qbe_ClauseBetween, Variant("abc"), Variant(1)}}), kErrTypeMismatch},
      {Days({Eq(Variant(1e10))}), kErrOverflow},
      {Days({{qbe_ClauseLastXDays, Variant("abc")}}), kErrTypeMismatch},
      {Days({{qbe_ClauseYear, Variant(40000)}}), kErrOverflow},
      {Activ({Eq(Variant("yes"))}), kErrTypeMismatch},
      {Emitent({Eq(Variant(VariantArray{}))}), kErrTypeMismatch},
  };
  for (const auto& [field, number] : cases) {
    EXPECT_TRUE(RaisesRuntimeError([&] { Render({field}); }, number)) << field.name;
  }
  EXPECT_EQ(Render({Data({Eq(Variant::Null())})}), "((Data contains ()))");
}

}  // namespace
}  // namespace brix
