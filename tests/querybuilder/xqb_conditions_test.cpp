// The duplicate test (its asymmetry, its errors in position order), keyed access, and the index
// behind the test staying right while held conditions change.
#include "querybuilder/xqb_conditions.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/fresh_thread.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::MakeCondition;
using test_support::OnFreshThread;
using test_support::RaisesError;
using test_support::RaisesRuntimeError;
using V = Variant;

constexpr auto EQ = qbe_ClauseEqualTo;

::testing::AssertionResult RaisesDuplicate(const std::function<void()>& action) {
  return RaisesError(action, kErrConditionExists, "[Add Condition]",
                     "A condition with this characteristics already exists in this field!");
}

struct Stored {
  qbe_ClauseOperator clause;
  V value;
  V secondary;
};

// Conditions holding `stored`, set through the held objects after they were added: adding some
// of these combinations directly would be refused or raise.
std::shared_ptr<xqb_Conditions> Holding(const std::vector<Stored>& stored) {
  auto conditions = xqb_Conditions::Create();
  for (std::int32_t id = 1; id <= std::ssize(stored); ++id) {
    conditions->AddObjectCondition(MakeCondition(id, qbe_ClauseIsNull, V(id), V(-id)));
  }
  for (std::int32_t id = 1; id <= std::ssize(stored); ++id) {
    auto held = conditions->Item(V(id));
    held->SetClause(stored[id - 1].clause);
    held->SetValue(stored[id - 1].value);
    held->SetSecondaryValue(stored[id - 1].secondary);
  }
  return conditions;
}

TEST(ConditionExists, ComparesStoredSecondaryValueWithGivenValue) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto between = qbe_ClauseBetween;
  struct Case {
    const char* name;
    Stored stored;
    qbe_ClauseOperator clause;
    V value;
    V secondary;
    bool expected;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"secondary \"\" vs 5",      {EQ, V(5), V("")},                    EQ,      V(5),                V(""),  false},
      {"all empty text",           {EQ, V(""), V("")},                   EQ,      V(""),               V("x"), true},
      {"between 1..9 then 1..7",   {between, V(1), V(9)},                between, V(1),                V(7),   false},
      {"given secondary ignored",  {between, V(1), V(1)},                between, V(1),                V(99),  true},
      {"clause differs",           {qbe_ClauseGreaterThan, V(""), V("")}, EQ,     V(""),               V(""),  false},
      {"Empty equals \"\"",        {EQ, V(), V()},                       EQ,      V(""),               V(),    true},
      {"Empty equals 0",           {EQ, V(), V()},                       EQ,      V(std::int16_t{0}),  V(),    true},
      {"\"\" and 0 differ",        {EQ, V(""), V()},                     EQ,      V(0.0),              V(),    false},
      {"given Empty",              {EQ, V(0), V("")},                    EQ,      V(),                 V(),    true},
      {"Long vs Double",           {EQ, V(5), V(5.0)},                   EQ,      V(5.0),              V(),    true},
      {"text is not a number",     {EQ, V("5"), V("5")},                 EQ,      V(5),                V(),    false},
      {"letter case counts",       {EQ, V("abc"), V("abc")},             EQ,      V("ABC"),            V(),    false},
      {"True is -1",               {EQ, V(true), V(true)},               EQ,      V(-1),               V(),    true},
      {"Date is its day number",   {EQ, V(Date{2}), V(Date{2})},         EQ,      V(std::int16_t{2}),  V(),    true},
      {"minus zero",               {EQ, V(-0.0), V(-0.0)},               EQ,      V(0),                V(),    true},
      {"Null never equal",         {EQ, V::Null(), V::Null()},           EQ,      V::Null(),           V(),    false},
      {"Single vs Double",         {EQ, V(0.1f), V(0.1f)},               EQ,      V(0.1),              V(),    true},
      {"given Single",             {EQ, V(0.1), V(0.1)},                 EQ,      V(0.1f),             V(),    true},
      {"NaN equals any number",    {EQ, V(nan), V(nan)},                 EQ,      V(7),                V(),    true},
      {"Currency",                 {EQ, V(Currency{50000}), V(Currency{50000})}, EQ, V(5),             V(),    true},
  };
  // clang-format on
  for (const auto& c : cases) {
    EXPECT_EQ(Holding({c.stored})->ConditionExists(c.clause, c.value, c.secondary), c.expected)
        << c.name;
  }
}

TEST(ConditionExists, RaisesInPositionOrderEvenWhenTheClauseDiffers) {
  const Stored plain{EQ, V(""), V("")};
  const Stored missing{qbe_ClauseLessThan, V::Missing(), V("")};
  const Stored nothing{qbe_ClauseLessThan, V(""), V::Nothing()};
  const Stored array{qbe_ClauseLessThan, V(VariantArray{}), V("")};
  EXPECT_TRUE(Holding({plain, missing})->ConditionExists(EQ, V("")));
  // clang-format off
  const std::vector<std::pair<std::vector<Stored>, std::int32_t>> cases = {
      {{missing, plain}, kErrTypeMismatch},
      {{nothing, plain}, kErrObjectVariableNotSet},
      {{array},          kErrTypeMismatch},
  };
  // clang-format on
  for (const auto& [stored, number] : cases) {
    EXPECT_TRUE(RaisesRuntimeError([&] { Holding(stored)->ConditionExists(EQ, V("")); }, number));
  }
  // An omitted value is the missing-argument marker: comparing it with a stored value raises.
  EXPECT_FALSE(xqb_Conditions::Create()->ConditionExists(EQ));
  EXPECT_TRUE(RaisesRuntimeError([&] { Holding({plain})->ConditionExists(EQ); }, kErrTypeMismatch));
}

TEST(XqbConditions, AddRefusesDuplicatesAndKeysByTheDecimalIdentity) {
  OnFreshThread([] {
    ScopedClock noon(45000.5);  // the first identity drawn is 9229
    auto conditions = xqb_Conditions::Create();
    auto added = conditions->Add(qbe_ClauseBetween, V(1), V(9));
    EXPECT_EQ(added->ConditionID(), 9229);
    EXPECT_EQ(added->SecondaryValue().AsLong(), 9);
    EXPECT_EQ(conditions->Item(V("9229")), added);
    conditions->Add(EQ, V(5));
    conditions->Add(EQ, V(5));  // the stored "" differs from 5: accepted
    conditions->Add(EQ);
    EXPECT_TRUE(RaisesDuplicate([&] { conditions->Add(EQ); }));
    EXPECT_TRUE(RaisesDuplicate([&] { conditions->AddObjectCondition(MakeCondition(77, EQ)); }));
    EXPECT_EQ(conditions->Count(), 4);
    EXPECT_EQ(kErrConditionExists, static_cast<std::int32_t>(0x80040BB8u));
  });
}

TEST(XqbConditions, TextKeyAndPositionAreDifferentIndexes) {
  auto conditions = xqb_Conditions::Create();
  auto zero = MakeCondition(0, EQ, V(1), V(1));
  conditions->AddObjectCondition(zero);
  EXPECT_EQ(conditions->Item(V("0")), zero);
  EXPECT_EQ(conditions->Item(V(1)), zero);
  EXPECT_TRUE(RaisesRuntimeError([&] { conditions->Item(V(0)); }, kErrSubscriptOutOfRange));
  EXPECT_TRUE(RaisesRuntimeError([&] { conditions->Item(V("1")); }, kErrInvalidProcedureCall));
  EXPECT_TRUE(RaisesRuntimeError([&] { conditions->AddObjectCondition(nullptr); },
                                 kErrObjectVariableNotSet));
}

TEST(ConditionIndex, FollowsChangesOfHeldAndSharedConditions) {
  auto conditions = xqb_Conditions::Create();
  auto other = xqb_Conditions::Create();
  auto held = MakeCondition(1, EQ, V("a"), V("a"));
  conditions->AddObjectCondition(held);
  other->AddObjectCondition(held);
  EXPECT_TRUE(conditions->ConditionExists(EQ, V("a")));
  held->SetValue(V("b"));
  EXPECT_FALSE(conditions->ConditionExists(EQ, V("a")));
  held->SetSecondaryValue(V("b"));
  EXPECT_TRUE(conditions->ConditionExists(EQ, V("b")));
  EXPECT_TRUE(other->ConditionExists(EQ, V("b")));
  held->SetClause(qbe_ClauseNotEqual);
  conditions->Add(EQ, V("b"));
  EXPECT_TRUE(RaisesDuplicate([&] { conditions->Add(qbe_ClauseNotEqual, V("b")); }));
  // A held value that makes comparisons raise, then a regular one again.
  held->SetValue(V::Missing());
  EXPECT_TRUE(RaisesRuntimeError([&] { conditions->ConditionExists(EQ, V("z")); }, kErrTypeMismatch));
  held->SetValue(V("z"));
  held->SetSecondaryValue(V("z"));
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseNotEqual, V("z")));
}

TEST(ConditionIndex, RemoveAndClearKeepItRight) {
  auto conditions = xqb_Conditions::Create();
  auto a = MakeCondition(1, EQ, V("a"), V("a"));
  conditions->AddObjectCondition(a);
  conditions->AddObjectCondition(MakeCondition(2, EQ, V::Null(), V::Null()));  // irregular
  conditions->AddObjectCondition(MakeCondition(3, EQ, V("b"), V("b")));
  conditions->Remove(V("1"));
  EXPECT_FALSE(conditions->ConditionExists(EQ, V("a")));
  conditions->Remove(V(1));
  EXPECT_TRUE(conditions->ConditionExists(EQ, V("b")));
  // A removed condition changed while nobody holds it is indexed by its new values when re-added.
  a->SetValue(V("c"));
  a->SetSecondaryValue(V("c"));
  conditions->AddObjectCondition(a);
  EXPECT_TRUE(conditions->ConditionExists(EQ, V("c")));
  conditions->Clear();
  EXPECT_EQ(conditions->Count(), 0);
  EXPECT_FALSE(conditions->ConditionExists(EQ, V("b")));
}

TEST(XqbConditions, SearchCounterCapsAFieldAt32767Conditions) {
  auto conditions = xqb_Conditions::Create();
  for (std::int32_t id = 1; id <= 32767; ++id) {
    conditions->AddObjectCondition(MakeCondition(id, EQ, V(id), V(id)));
  }
  EXPECT_TRUE(conditions->ConditionExists(EQ, V(32767)));
  EXPECT_TRUE(RaisesRuntimeError(
      [&] { conditions->AddObjectCondition(MakeCondition(0, EQ, V(0))); }, kErrOverflow));
  EXPECT_TRUE(RaisesDuplicate([&] { conditions->Add(EQ, V(5)); }));
}

}  // namespace
}  // namespace brix
