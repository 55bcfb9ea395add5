// The duplicate test (its asymmetry, its errors in position order), keyed access, and the index
// behind the test staying right while held conditions change.
#include "querybuilder/xqb_conditions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::MakeCondition;
using test_support::RaisesError;
using test_support::RaisesRuntimeError;

constexpr const char* kDuplicateSource = "[Add Condition]";
constexpr const char* kDuplicateText =
    "A condition with this characteristics already exists in this field!";

struct Stored {
  qbe_ClauseOperator clause;
  Variant value;
  Variant secondary;
};

std::shared_ptr<xqb_Conditions> Holding(const std::vector<Stored>& stored) {
  auto conditions = xqb_Conditions::Create();
  // Distinct placeholders first, filled in afterwards: adding some of these combinations would
  // be refused or raise.
  for (std::int32_t id = 1; id <= std::ssize(stored); ++id) {
    conditions->AddObjectCondition(MakeCondition(id, qbe_ClauseIsNull, Variant(id), Variant(-id)));
  }
  std::int32_t position = 0;
  for (const auto& s : stored) {
    auto held = conditions->Item(Variant(++position));
    held->SetClause(s.clause);
    held->SetValue(s.value);
    held->SetSecondaryValue(s.secondary);
  }
  return conditions;
}

TEST(ConditionExists, ComparesStoredSecondaryValueWithGivenValue) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    const char* name;
    Stored stored;
    qbe_ClauseOperator clause;
    Variant value;
    Variant secondary;
    bool expected;
  } const cases[] = {
      {"secondary \"\" vs 5",
       {qbe_ClauseEqualTo, Variant(5), Variant("")},
       qbe_ClauseEqualTo,
       Variant(5),
       Variant(""),
       false},
      {"all empty text",
       {qbe_ClauseEqualTo, Variant(""), Variant("")},
       qbe_ClauseEqualTo,
       Variant(""),
       Variant("x"),
       true},
      {"between 1..9 then 1..7",
       {qbe_ClauseBetween, Variant(1), Variant(9)},
       qbe_ClauseBetween,
       Variant(1),
       Variant(7),
       false},
      {"given secondary ignored",
       {qbe_ClauseBetween, Variant(1), Variant(1)},
       qbe_ClauseBetween,
       Variant(1),
       Variant(99),
       true},
      {"clause differs",
       {qbe_ClauseGreaterThan, Variant(""), Variant("")},
       qbe_ClauseEqualTo,
       Variant(""),
       Variant(""),
       false},
      {"Empty equals \"\"",
       {qbe_ClauseEqualTo, Variant(), Variant()},
       qbe_ClauseEqualTo,
       Variant(""),
       Variant(),
       true},
      {"Empty equals 0",
       {qbe_ClauseEqualTo, Variant(), Variant()},
       qbe_ClauseEqualTo,
       Variant(std::int16_t{0}),
       Variant(),
       true},
      {"\"\" and 0 differ",
       {qbe_ClauseEqualTo, Variant(""), Variant()},
       qbe_ClauseEqualTo,
       Variant(0.0),
       Variant(),
       false},
      {"given Empty",
       {qbe_ClauseEqualTo, Variant(0), Variant("")},
       qbe_ClauseEqualTo,
       Variant(),
       Variant(),
       true},
      {"Long vs Double",
       {qbe_ClauseEqualTo, Variant(5), Variant(5.0)},
       qbe_ClauseEqualTo,
       Variant(5.0),
       Variant(),
       true},
      {"text is not a number",
       {qbe_ClauseEqualTo, Variant("5"), Variant("5")},
       qbe_ClauseEqualTo,
       Variant(5),
       Variant(),
       false},
      {"letter case counts",
       {qbe_ClauseEqualTo, Variant("abc"), Variant("abc")},
       qbe_ClauseEqualTo,
       Variant("ABC"),
       Variant(),
       false},
      {"True is -1",
       {qbe_ClauseEqualTo, Variant(true), Variant(true)},
       qbe_ClauseEqualTo,
       Variant(-1),
       Variant(),
       true},
      {"Date is its day number",
       {qbe_ClauseEqualTo, Variant(Date{2}), Variant(Date{2})},
       qbe_ClauseEqualTo,
       Variant(std::int16_t{2}),
       Variant(),
       true},
      {"minus zero",
       {qbe_ClauseEqualTo, Variant(-0.0), Variant(-0.0)},
       qbe_ClauseEqualTo,
       Variant(0),
       Variant(),
       true},
      {"Null never equal",
       {qbe_ClauseEqualTo, Variant::Null(), Variant::Null()},
       qbe_ClauseEqualTo,
       Variant::Null(),
       Variant(),
       false},
      {"Single vs Double",
       {qbe_ClauseEqualTo, Variant(0.1f), Variant(0.1f)},
       qbe_ClauseEqualTo,
       Variant(0.1),
       Variant(),
       true},
      {"given Single",
       {qbe_ClauseEqualTo, Variant(0.1), Variant(0.1)},
       qbe_ClauseEqualTo,
       Variant(0.1f),
       Variant(),
       true},
      {"NaN equals any number",
       {qbe_ClauseEqualTo, Variant(nan), Variant(nan)},
       qbe_ClauseEqualTo,
       Variant(7),
       Variant(),
       true},
      {"Currency",
       {qbe_ClauseEqualTo, Variant(Currency{50000}), Variant(Currency{50000})},
       qbe_ClauseEqualTo,
       Variant(5),
       Variant(),
       true},
  };
  for (const auto& c : cases) {
    auto conditions = Holding({c.stored});
    EXPECT_EQ(conditions->ConditionExists(c.clause, c.value, c.secondary), c.expected) << c.name;
  }
}

TEST(ConditionExists, RaisesInPositionOrderEvenWhenTheClauseDiffers) {
  const Stored plain{qbe_ClauseEqualTo, Variant(""), Variant("")};
  const Stored missing{qbe_ClauseLessThan, Variant::Missing(), Variant("")};
  const Stored nothing{qbe_ClauseLessThan, Variant(""), Variant::Nothing()};
  const Stored array{qbe_ClauseLessThan, Variant(VariantArray{}), Variant("")};

  EXPECT_TRUE(Holding({plain, missing})->ConditionExists(qbe_ClauseEqualTo, Variant("")));
  EXPECT_TRUE(RaisesRuntimeError(
      [&] {
        Holding({missing, plain})->ConditionExists(qbe_ClauseEqualTo, Variant(""));
      },
      kErrTypeMismatch));
  EXPECT_TRUE(RaisesRuntimeError(
      [&] {
        Holding({nothing, plain})->ConditionExists(qbe_ClauseEqualTo, Variant(""));
      },
      kErrObjectVariableNotSet));
  EXPECT_TRUE(
      RaisesRuntimeError([&] { Holding({array})->ConditionExists(qbe_ClauseEqualTo, Variant("")); },
                         kErrTypeMismatch));
  // An omitted value is the missing-argument marker: comparing it with a stored value raises.
  EXPECT_FALSE(xqb_Conditions::Create()->ConditionExists(qbe_ClauseEqualTo));
  EXPECT_TRUE(RaisesRuntimeError([&] { Holding({plain})->ConditionExists(qbe_ClauseEqualTo); },
                                 kErrTypeMismatch));
}

// Runs `test` on a new thread, whose generator starts from its initial state: under a fixed clock
// the random identities drawn there are known.
template <class Test>
void InFreshThread(Test test) {
  std::thread([&] {
    ScopedClock noon(45000.5);
    test();
  }).join();
}

TEST(XqbConditions, AddRefusesDuplicatesWithTheConditionError) {
  InFreshThread([] {
    auto conditions = xqb_Conditions::Create();
    conditions->Add(qbe_ClauseEqualTo, Variant(5));
    conditions->Add(qbe_ClauseEqualTo, Variant(5));  // the stored "" differs from 5: accepted
    conditions->Add(qbe_ClauseEqualTo);
    EXPECT_TRUE(RaisesError([&] { conditions->Add(qbe_ClauseEqualTo); }, kErrConditionExists,
                            kDuplicateSource, kDuplicateText));
    EXPECT_TRUE(
        RaisesError([&] { conditions->AddObjectCondition(MakeCondition(77, qbe_ClauseEqualTo)); },
                    kErrConditionExists, kDuplicateSource, kDuplicateText));
    EXPECT_EQ(conditions->Count(), 3);
    EXPECT_EQ(kErrConditionExists, static_cast<std::int32_t>(0x80040BB8u));
  });
}

TEST(XqbConditions, AddStoresArgumentsUnderTheDecimalIdentity) {
  auto conditions = xqb_Conditions::Create();
  auto added = conditions->Add(qbe_ClauseBetween, Variant(1), Variant(9));
  EXPECT_EQ(added->Clause(), qbe_ClauseBetween);
  EXPECT_EQ(added->SecondaryValue().AsLong(), 9);
  EXPECT_EQ(added->WhereClauseLogic(), qbe_LogicAnd);
  EXPECT_EQ(conditions->Item(Variant(std::to_string(added->ConditionID()))), added);
}

TEST(XqbConditions, TextKeyAndPositionAreDifferentIndexes) {
  auto conditions = xqb_Conditions::Create();
  auto zero = MakeCondition(0, qbe_ClauseEqualTo, Variant(1), Variant(1));
  conditions->AddObjectCondition(zero);
  EXPECT_EQ(conditions->Item(Variant("0")), zero);
  EXPECT_EQ(conditions->Item(Variant(1)), zero);
  EXPECT_TRUE(RaisesRuntimeError([&] { conditions->Item(Variant(0)); }, kErrSubscriptOutOfRange));
  EXPECT_TRUE(
      RaisesRuntimeError([&] { conditions->Item(Variant("1")); }, kErrInvalidProcedureCall));
  EXPECT_TRUE(RaisesRuntimeError([&] { conditions->AddObjectCondition(nullptr); },
                                 kErrObjectVariableNotSet));
}

TEST(XqbConditions, UsedRandomIdentityFailsWithTheCollectionError) {
  InFreshThread([] {  // the first identity drawn at noon is 9229
    auto conditions = xqb_Conditions::Create();
    conditions->AddObjectCondition(MakeCondition(9229, qbe_ClauseLessThan, Variant(1), Variant(1)));
    EXPECT_TRUE(
        RaisesRuntimeError([&] { conditions->Add(qbe_ClauseEqualTo); }, kErrKeyAlreadyAssociated));
    EXPECT_EQ(conditions->Count(), 1);
  });
}

TEST(XqbConditions, NewConditionTexts) {
  auto condition = xqb_Condition::Create();
  EXPECT_EQ(condition->WhereClauseDescription(), " AND ");
  EXPECT_EQ(condition->ClauseDescription(), "");
  EXPECT_TRUE(condition->IsEditable());
  condition->SetClause(qbe_ClauseInList);
  condition->SetWhereClauseLogic(qbe_LogicNone);
  EXPECT_EQ(condition->ClauseDescription(), "in lista: ___");
  EXPECT_EQ(condition->WhereClauseDescription(), "");
}

TEST(ConditionIndex, FollowsChangesOfHeldConditions) {
  auto conditions = xqb_Conditions::Create();
  auto held = MakeCondition(1, qbe_ClauseEqualTo, Variant("a"), Variant("a"));
  conditions->AddObjectCondition(held);
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("a")));

  held->SetValue(Variant("b"));
  EXPECT_FALSE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("a")));
  held->SetSecondaryValue(Variant("b"));
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("b")));
  held->SetClause(qbe_ClauseNotEqual);
  conditions->Add(qbe_ClauseEqualTo, Variant("b"));
  EXPECT_TRUE(RaisesError([&] { conditions->Add(qbe_ClauseNotEqual, Variant("b")); },
                          kErrConditionExists, kDuplicateSource, kDuplicateText));

  // A held value that makes comparisons raise, then a regular one again.
  held->SetValue(Variant::Missing());
  EXPECT_TRUE(RaisesRuntimeError(
      [&] { conditions->ConditionExists(qbe_ClauseEqualTo, Variant("z")); }, kErrTypeMismatch));
  held->SetValue(Variant("z"));
  held->SetSecondaryValue(Variant("z"));
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseNotEqual, Variant("z")));
}

TEST(ConditionIndex, SharedConditionChangesAreSeenByEveryHolder) {
  auto first = xqb_Conditions::Create();
  auto second = xqb_Conditions::Create();
  auto shared = MakeCondition(1, qbe_ClauseEqualTo, Variant(1), Variant(1));
  first->AddObjectCondition(shared);
  second->AddObjectCondition(shared);
  shared->SetValue(Variant(2));
  shared->SetSecondaryValue(Variant(2));
  EXPECT_TRUE(first->ConditionExists(qbe_ClauseEqualTo, Variant(2)));
  EXPECT_TRUE(second->ConditionExists(qbe_ClauseEqualTo, Variant(2)));
  EXPECT_FALSE(second->ConditionExists(qbe_ClauseEqualTo, Variant(1)));
}

TEST(ConditionIndex, RemoveAndClearKeepItRight) {
  auto conditions = xqb_Conditions::Create();
  auto a = MakeCondition(1, qbe_ClauseEqualTo, Variant("a"), Variant("a"));
  auto irregular = MakeCondition(2, qbe_ClauseEqualTo, Variant::Null(), Variant::Null());
  conditions->AddObjectCondition(a);
  conditions->AddObjectCondition(irregular);
  conditions->AddObjectCondition(MakeCondition(3, qbe_ClauseEqualTo, Variant("b"), Variant("b")));
  conditions->Remove(Variant("1"));
  EXPECT_FALSE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("a")));
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("b")));
  conditions->Remove(Variant(1));
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("b")));
  // A removed condition changed while nobody holds it is indexed by its new values when re-added.
  a->SetValue(Variant("c"));
  a->SetSecondaryValue(Variant("c"));
  conditions->AddObjectCondition(a);
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("c")));
  conditions->Clear();
  EXPECT_EQ(conditions->Count(), 0);
  EXPECT_FALSE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant("b")));
  conditions->Clear();
  EXPECT_EQ(conditions->Count(), 0);
}

TEST(XqbConditions, SearchCounterCapsAFieldAt32767Conditions) {
  auto conditions = xqb_Conditions::Create();
  for (std::int32_t id = 1; id <= 32767; ++id) {
    conditions->AddObjectCondition(MakeCondition(id, qbe_ClauseEqualTo, Variant(id), Variant(id)));
  }
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseEqualTo, Variant(32767)));
  EXPECT_TRUE(RaisesRuntimeError(
      [&] { conditions->AddObjectCondition(MakeCondition(0, qbe_ClauseEqualTo, Variant(0))); },
      kErrOverflow));
  EXPECT_TRUE(RaisesError([&] { conditions->Add(qbe_ClauseEqualTo, Variant(5)); },
                          kErrConditionExists, kDuplicateSource, kDuplicateText));
}

}  // namespace
}  // namespace brix
