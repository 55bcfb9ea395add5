// Condition sentences: every phrase, operand texts per type, month names and the prefixes.
#include "querybuilder/condition_describer.h"

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
using test_support::AddField;
using test_support::AddTable;
using test_support::RaisesRuntimeError;

constexpr double kClock = 40240;

TEST(ConditionDescriber, PhraseOfEveryClause) {
  const std::vector<std::string> expected = {
      "Nume ",
      "Nume este intre a si b",
      "Nume contine a",
      "Nume sa fie a",
      "Nume este mai mare sau egal cu a",
      "Nume este mai mare ca a",
      "Nume lipseste",
      "Nume este <NULL>",
      "Nume este mai mic sau egal cu a",
      "Nume este mai mic ca a",
      "Nume nu contine a",
      "Nume nu este egal cu a",
      "Nume nu incepe cu a",
      "Nume incepe cu a",
      "Nume este astazi",
      "Nume este saptamana aceasta",
      "Nume este luna aceasta",
      "Nume este in lista a",
      "Nume este in ultimele a zile",
      "Nume nu este in lista a",
      "Nume nu lipseste",
      "Nume este in ultimele a luni",
      "Nume este anul acesta",
      "Nume este in anul a",
      "Nume este in ultimii a ani",
      "Nume contine apropiat cuvintele a",
      "Nume contine cuvintele a",
      "Nume contine expresia a",
      "Nume in urmatoarele a zile",
      "Nume peste a zile",
      "Nume este ora curenta",
      "Nume este mai mare decat ora curenta",
      "Nume este mai mic decat ora curenta",
      "Nume ",
  };
  ScopedClock fixed(kClock);
  auto query = xqb_Query::Create();
  auto field = AddField(*AddTable(*query, "T"), "Nume", qbe_DataMemo);
  for (int clause = 0; clause <= 33; ++clause) {
    AddCondition(*field, 100 + clause, static_cast<qbe_ClauseOperator>(clause), Variant("a"),
                 Variant("b"));
  }
  for (int clause = 0; clause <= 33; ++clause) {
    EXPECT_EQ(query->ReturnConditionDescription(100 + clause), expected[clause]);
  }
  EXPECT_EQ(query->ReturnConditionDescription(7), "");
}

// The description of one condition on the field F of the only table.
std::string Describe(qbe_DataType db_type, qbe_DataType show_as, qbe_ClauseOperator clause,
                     const Variant& value, const Variant& secondary = Variant(""),
                     const std::string& name = "F") {
  ScopedClock fixed(kClock);
  auto query = xqb_Query::Create();
  auto field = AddField(*AddTable(*query, "T"), name, show_as);
  field->SetDBType(db_type);
  AddCondition(*field, 1, clause, value, secondary);
  return query->ReturnConditionDescription(1);
}

TEST(ConditionDescriber, OperandTexts) {
  struct Case {
    qbe_DataType db_type;
    qbe_DataType show_as;
    qbe_ClauseOperator clause;
    Variant value;
    Variant secondary;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {qbe_DataBoolean, qbe_DataBoolean, qbe_ClauseEqualTo, Variant(true), Variant(""),
       "F sa fie Da"},
      {qbe_DataBoolean, qbe_DataBoolean, qbe_ClauseEqualTo, Variant(-1), Variant(""),
       "F sa fie Da"},
      // A Boolean read back from a definition is the text "True", which is not True.
      {qbe_DataBoolean, qbe_DataBoolean, qbe_ClauseEqualTo, Variant("True"), Variant(""),
       "F sa fie Nu"},
      {qbe_DataBoolean, qbe_DataBoolean, qbe_ClauseEqualTo, Variant::Null(), Variant(""),
       "F sa fie Nu"},
      {qbe_DataBoolean, qbe_DataBoolean, qbe_ClauseBetween, Variant(true), Variant(false),
       "F este intre Da si Nu"},
      {qbe_DataString, qbe_DataString, qbe_ClauseEqualTo, Variant("x"), Variant(""),
       "F sa fie 'x'"},
      {qbe_DataString, qbe_DataMemo, qbe_ClauseBetween, Variant("a"), Variant::Null(),
       "F este intre 'a' si ''"},
      {qbe_DataString, qbe_DataNumeric, qbe_ClauseEqualTo, Variant("x"), Variant(""), "F sa fie x"},
      {qbe_DataMemo, qbe_DataString, qbe_ClauseEqualTo, Variant("x"), Variant(""), "F sa fie x"},
      {qbe_DataNumeric, qbe_DataDate, qbe_ClauseEqualTo, Variant(Date{40238}), Variant(""),
       "F sa fie 01-Mar-2010"},
      {qbe_DataNumeric, qbe_DataDate, qbe_ClauseBetween, Variant(40238), Variant("3/31/2010"),
       "F este intre 01-Mar-2010 si 31-Mar-2010"},
      {qbe_DataDecimal, qbe_DataDate, qbe_ClauseBetween, Variant("40239"), Variant("abc"),
       "F este intre 02-Mar-2010 si abc"},
      {qbe_DataDecimal, qbe_DataDate, qbe_ClauseLastXDays, Variant(5), Variant(""),
       "F este in ultimele 5 zile"},
      {qbe_DataNumeric, qbe_DataDate, qbe_ClauseYear, Variant(2010.0), Variant(""),
       "F este in anul 2010"},
      // Counted clauses never read the second operand.
      {qbe_DataNumeric, qbe_DataDate, qbe_ClauseOverXDays, Variant("7"), Variant(VariantArray{}),
       "F peste 7 zile"},
      {qbe_DataNumeric, qbe_DataNumeric, qbe_ClauseEqualTo, Variant(2.5), Variant(""),
       "F sa fie 2.5"},
      {qbe_DataDate, qbe_DataDate, qbe_ClauseEqualTo, Variant(Date{40238}), Variant(""),
       "F sa fie 3/1/2010"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Describe(c.db_type, c.show_as, c.clause, c.value, c.secondary), c.expected);
  }
}

TEST(ConditionDescriber, MonthNames) {
  const std::vector<std::string> months = {
      "",      "Ianuarie", "Februarie",  "Martie",    "Aprilie",   "Mai",       "Iunie",
      "Iulie", "August",   "Septembrie", "Octombrie", "Noiembrie", "Decembrie", ""};
  for (std::int32_t month = 0; month <= 13; ++month) {
    EXPECT_EQ(Describe(qbe_DataNumeric, qbe_DataNumeric, qbe_ClauseEqualTo, Variant(month),
                       Variant(""), "Publicatie_Luna"),
              "Publicatie_Luna sa fie " + months[month]);
  }
  // The month is the operand's text, exactly, whatever the field's type makes of it.
  EXPECT_EQ(Describe(qbe_DataString, qbe_DataString, qbe_ClauseEqualTo, Variant("3"), Variant(""),
                     "Publicatie_Luna"),
            "Publicatie_Luna sa fie Martie");
  EXPECT_EQ(Describe(qbe_DataString, qbe_DataString, qbe_ClauseEqualTo, Variant("03"), Variant(""),
                     "Publicatie_Luna"),
            "Publicatie_Luna sa fie ");
}

TEST(ConditionDescriber, PrefixAndSearch) {
  ScopedClock fixed(kClock);
  auto query = xqb_Query::Create();
  auto activ =
      AddField(*query->Tables()->Add("Clienti", "Clienti activi"), "Activ", qbe_DataBoolean);
  AddCondition(*activ, 5, qbe_ClauseEqualTo, Variant(true));
  EXPECT_EQ(query->ReturnConditionDescription(5), "Activ sa fie Da");
  auto other = AddField(*AddTable(*query, "Facturi"), "Suma", qbe_DataNumeric);
  AddCondition(*other, 5, qbe_ClauseEqualTo, Variant(1));  // same identity, later in the tree
  EXPECT_EQ(query->ReturnConditionDescription(5), "Activ (Clienti activi) sa fie Da");
  EXPECT_EQ(query->ReturnConditionDescription(6), "");
}

TEST(ConditionDescriber, OperandsThatDoNotConvertRaise) {
  const VariantArray array;
  EXPECT_TRUE(RaisesRuntimeError(
      [&] { Describe(qbe_DataString, qbe_DataString, qbe_ClauseEqualTo, Variant(array)); },
      kErrTypeMismatch));
  EXPECT_TRUE(RaisesRuntimeError(
      [&] { Describe(qbe_DataBoolean, qbe_DataBoolean, qbe_ClauseEqualTo, Variant(array)); },
      kErrTypeMismatch));
  EXPECT_TRUE(RaisesRuntimeError(
      [&] { Describe(qbe_DataNumeric, qbe_DataDate, qbe_ClauseEqualTo, Variant::Nothing()); },
      kErrObjectVariableNotSet));
}

}  // namespace
}  // namespace brix
