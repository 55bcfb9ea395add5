// The condition sentences: operand texts per type, month names and the prefixes.
#include "querybuilder/condition_describer.h"

#include <gtest/gtest.h>

#include <tuple>

#include "runtime/clock.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::AddCondition;
using test_support::AddField;
using test_support::AddTable;
using test_support::BuildQuery;
using test_support::Outcome;
using V = Variant;

constexpr double kClock = 40240;

// The description of one condition on the field `name` of the only table.
std::string Describe(qbe_DataType db_type, qbe_DataType show_as, qbe_ClauseOperator clause,
                     const V& value, const V& secondary = V(""), const char* name = "F") {
  ScopedClock fixed(kClock);
  auto query = BuildQuery({{"T",
                            {{.name = name,
                              .type = db_type,
                              .conditions = {{clause, value, secondary}},
                              .show_as = show_as}}}});
  return query->ReturnConditionDescription(1);
}

TEST(ConditionDescriber, OperandTexts) {
  constexpr auto B = qbe_DataBoolean, S = qbe_DataString, N = qbe_DataNumeric, D = qbe_DataDate;
  // clang-format off
  const std::vector<std::tuple<qbe_DataType, qbe_DataType, qbe_ClauseOperator, V, V, std::string>> cases = {
      {B,              B,            qbe_ClauseEqualTo,   V(true),        V(""),          "F sa fie Da"},
      {B,              B,            qbe_ClauseEqualTo,   V(-1),          V(""),          "F sa fie Da"},
      // A Boolean read back from a definition is the text "True", which is not True.
      {B,              B,            qbe_ClauseEqualTo,   V("True"),      V(""),          "F sa fie Nu"},
      {B,              B,            qbe_ClauseBetween,   V(true),        V::Null(),      "F este intre Da si Nu"},
      {S,              S,            qbe_ClauseEqualTo,   V("x"),         V(""),          "F sa fie 'x'"},
      {S,              qbe_DataMemo, qbe_ClauseBetween,   V("a"),         V::Null(),      "F este intre 'a' si ''"},
      {S,              N,            qbe_ClauseEqualTo,   V("x"),         V(""),          "F sa fie x"},
      {qbe_DataMemo,   S,            qbe_ClauseEqualTo,   V("x"),         V(""),          "F sa fie x"},
      {N,              D,            qbe_ClauseEqualTo,   V(Date{40238}), V(""),          "F sa fie 01-Mar-2010"},
      {N,              D,            qbe_ClauseBetween,   V(40238),       V("3/31/2010"), "F este intre 01-Mar-2010 si 31-Mar-2010"},
      {qbe_DataDecimal, D,           qbe_ClauseBetween,   V("40239"),     V("abc"),       "F este intre 02-Mar-2010 si abc"},
      // A day-number text with a fraction is its day; Empty and Null write nothing.
      {N,              D,            qbe_ClauseBetween,   V("43051.75"),  V(),            "F este intre 12-Nov-2017 si "},
      {N,              D,            qbe_ClauseNotEqual,  V::Null(),      V(""),          "F nu este egal cu "},
      {qbe_DataDecimal, D,           qbe_ClauseLastXDays, V(5),           V(""),          "F este in ultimele 5 zile"},
      {N,              D,            qbe_ClauseYear,      V(2010.0),      V(""),          "F este in anul 2010"},
      // Counted clauses never read the second operand.
      {N,              D,            qbe_ClauseOverXDays, V("7"),         V(VariantArray{}), "F peste 7 zile"},
      {N,              N,            qbe_ClauseEqualTo,   V(2.5),         V(""),          "F sa fie 2.5"},
      {D,              D,            qbe_ClauseEqualTo,   V(Date{40238}), V(""),          "F sa fie 3/1/2010"},
      // Operands that do not convert raise.
      {S,              S,            qbe_ClauseEqualTo,   V(VariantArray{}), V(""),       "13 brixobjects4: Type mismatch"},
      {B,              B,            qbe_ClauseEqualTo,   V(VariantArray{}), V(""),       "13 brixobjects4: Type mismatch"},
      {N,              D,            qbe_ClauseEqualTo,   V::Nothing(),   V(""),          "91 brixobjects4: Object variable or With block variable not set"},
  };
  // clang-format on
  for (const auto& [db_type, show_as, clause, value, secondary, expected] : cases) {
    EXPECT_EQ(Outcome([&] { return Describe(db_type, show_as, clause, value, secondary); }),
              expected);
  }
}

TEST(ConditionDescriber, MonthNames) {
  // The month is the operand's text, exactly, whatever the field's type makes of it.
  std::string months;
  for (const V& month : {V(0), V(1), V(2), V(3), V(4), V(5), V(6), V(7), V(8), V(9), V(10), V(11),
                         V(12), V(13), V("3"), V("03")}) {
    const auto type = month.Type() == vbString ? qbe_DataString : qbe_DataNumeric;
    months += Describe(type, type, qbe_ClauseEqualTo, month, V(""), "Publicatie_Luna").substr(23);
    months += "|";
  }
  EXPECT_EQ(months,
            "|Ianuarie|Februarie|Martie|Aprilie|Mai|Iunie|Iulie|August|Septembrie|Octombrie|"
            "Noiembrie|Decembrie||Martie||");
}

TEST(ConditionDescriber, PrefixAndSearch) {
  ScopedClock fixed(kClock);
  auto query = xqb_Query::Create();
  auto activ =
      AddField(*query->Tables()->Add("Clienti", "Clienti activi"), "Activ", qbe_DataBoolean);
  AddCondition(*activ, 5, qbe_ClauseEqualTo, V(true));
  EXPECT_EQ(query->ReturnConditionDescription(5), "Activ sa fie Da");
  auto other = AddField(*AddTable(*query, "Facturi"), "Suma", qbe_DataNumeric);
  AddCondition(*other, 5, qbe_ClauseEqualTo, V(1));  // same identity, later in the tree
  EXPECT_EQ(query->ReturnConditionDescription(5), "Activ (Clienti activi) sa fie Da");
  EXPECT_EQ(query->ReturnConditionDescription(6), "");
}

}  // namespace
}  // namespace brix
