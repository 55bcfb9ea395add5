// The duplicate test (its asymmetry, its errors in position order), keyed access, the index
// behind the test staying right while held conditions change, and the random identities.
#include "querybuilder/xqb_conditions.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <limits>
#include <tuple>

#include "querybuilder/xqb_module.h"
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

// Conditions holding `stored`, set through the held objects after they were added (adding some
// of these combinations directly would be refused or raise), so the index follows the changes.
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

TEST(ConditionExists, ComparesStoredSecondaryValueWithGivenValueAndRaisesInPositionOrder) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto between = qbe_ClauseBetween, less = qbe_ClauseLessThan;
  const Stored plain{EQ, V(""), V("")};
  const int no = 0, yes = 1;  // otherwise the error number raised
  // clang-format off
  const std::vector<std::tuple<const char*, std::vector<Stored>, qbe_ClauseOperator, V, V, int>> cases = {
      {"all empty text",          {plain},                          EQ,      V(""),              V("x"), yes},
      {"between 1..9 then 1..7",  {{between, V(1), V(9)}},          between, V(1),               V(7),   no},
      {"given secondary ignored", {{between, V(1), V(1)}},          between, V(1),               V(99),  yes},
      {"clause differs",          {{qbe_ClauseGreaterThan, V(""), V("")}}, EQ, V(""),            V(""),  no},
      {"Empty equals \"\"",       {{EQ, V(), V()}},                 EQ,      V(""),              V(),    yes},
      {"Empty equals 0",          {{EQ, V(), V()}},                 EQ,      V(std::int16_t{0}), V(),    yes},
      {"\"\" and 0 differ",       {{EQ, V(""), V()}},               EQ,      V(0.0),             V(),    no},
      {"given Empty",             {{EQ, V(0), V("")}},              EQ,      V(),                V(),    yes},
      {"Long vs Double",          {{EQ, V(5), V(5.0)}},             EQ,      V(5.0),             V(),    yes},
      {"text is not a number",    {{EQ, V("5"), V("5")}},           EQ,      V(5),               V(),    no},
      {"letter case counts",      {{EQ, V("abc"), V("abc")}},       EQ,      V("ABC"),           V(),    no},
      {"True is -1",              {{EQ, V(true), V(true)}},         EQ,      V(-1),              V(),    yes},
      {"Date is its day number",  {{EQ, V(Date{2}), V(Date{2})}},   EQ,      V(std::int16_t{2}), V(),    yes},
      {"minus zero",              {{EQ, V(-0.0), V(-0.0)}},         EQ,      V(0),               V(),    yes},
      {"Null never equal",        {{EQ, V::Null(), V::Null()}},     EQ,      V::Null(),          V(),    no},
      {"Single vs Double",        {{EQ, V(0.1f), V(0.1f)}},         EQ,      V(0.1),             V(),    yes},
      {"given Single",            {{EQ, V(0.1), V(0.1)}},           EQ,      V(0.1f),            V(),    yes},
      {"NaN equals any number",   {{EQ, V(nan), V(nan)}},           EQ,      V(7),               V(),    yes},
      // Held operands are compared in position order, whatever their clause, until a match.
      {"match before raising",    {plain, {less, V::Missing(), V("")}}, EQ,  V(""),              V(),    yes},
      {"missing held value",      {{less, V::Missing(), V("")}, plain}, EQ,  V(""),              V(),    kErrTypeMismatch},
      {"Nothing held",            {{less, V(""), V::Nothing()}, plain}, EQ,  V(""),              V(),    kErrObjectVariableNotSet},
      // An omitted value is the missing-argument marker: comparing it with a held value raises.
      {"omitted value, none held", {},                              EQ,      V::Missing(),       V(),    no},
      {"omitted value",           {plain},                          EQ,      V::Missing(),       V(),    kErrTypeMismatch},
  };
  // clang-format on
  for (const auto& [name, stored, clause, value, secondary, expected] : cases) {
    auto conditions = Holding(stored);
    auto exists = [&] { return conditions->ConditionExists(clause, value, secondary); };
    if (expected > yes) {
      EXPECT_TRUE(RaisesRuntimeError(exists, expected)) << name;
    } else {
      EXPECT_EQ(exists(), expected == yes) << name;
    }
  }
}

TEST(XqbConditions, AddRefusesDuplicatesAndKeysByTheDecimalIdentity) {
  ScopedClock noon(45000.5);
  OnFreshThread([] {
    auto conditions = xqb_Conditions::Create();
    auto added = conditions->Add(qbe_ClauseBetween, V(1), V(9));
    EXPECT_EQ(conditions->Item(V("9229")), added);  // the first identity drawn at noon
    EXPECT_EQ(added->SecondaryValue().AsLong(), 9);
    conditions->Add(EQ, V(5));
    conditions->Add(EQ, V(5));  // the stored "" differs from 5: accepted
    conditions->Add(EQ);
    EXPECT_TRUE(RaisesDuplicate([&] { conditions->Add(EQ); }));
    EXPECT_TRUE(RaisesDuplicate([&] { conditions->AddObjectCondition(MakeCondition(77, EQ)); }));
    // An identity in use refuses the object, which no one else holds: it must be freed cleanly.
    EXPECT_TRUE(RaisesRuntimeError(
        [&] { conditions->AddObjectCondition(MakeCondition(added->ConditionID(), EQ, V(8))); },
        kErrKeyAlreadyAssociated));
    EXPECT_TRUE(RaisesRuntimeError([&] { conditions->AddObjectCondition(nullptr); },
                                   kErrObjectVariableNotSet));
    EXPECT_EQ(conditions->Count(), 4);
  });
}

// One sequence serves every collection of the thread: fields filled in the same clock tick still
// draw different identities.
TEST(XqbConditions, CollectionsShareTheThreadsIdentitySequence) {
  ScopedClock noon(45000.5);
  OnFreshThread([] {
    const auto first = xqb_Conditions::Create()->Add(EQ, V(1));
    const auto second = xqb_Conditions::Create()->Add(EQ, V(1));
    EXPECT_NE(first->ConditionID(), second->ConditionID());
  });
}

TEST(ConditionIndex, FollowsChangesRemovalsAndClear) {
  auto conditions = xqb_Conditions::Create(), other = xqb_Conditions::Create();
  auto held = MakeCondition(1, EQ, V("a"), V("a"));
  conditions->AddObjectCondition(held);
  other->AddObjectCondition(held);
  conditions->AddObjectCondition(MakeCondition(2, EQ, V("b"), V("b")));
  held->SetValue(V("c"));
  EXPECT_FALSE(conditions->ConditionExists(EQ, V("a")));
  held->SetSecondaryValue(V("c"));
  EXPECT_TRUE(conditions->ConditionExists(EQ, V("c")) && other->ConditionExists(EQ, V("c")));
  held->SetClause(qbe_ClauseNotEqual);
  EXPECT_TRUE(RaisesDuplicate([&] { conditions->Add(qbe_ClauseNotEqual, V("c")); }));
  conditions->Remove(V("1"));
  EXPECT_FALSE(conditions->ConditionExists(qbe_ClauseNotEqual, V("c")));
  // A removed condition changed while nobody holds it is indexed by its new values when re-added.
  held->SetValue(V("d"));
  held->SetSecondaryValue(V("d"));
  conditions->AddObjectCondition(held);
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseNotEqual, V("d")));
  conditions->Clear();
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

// A Null operand can never match, so it does not send the duplicate test back to a scan of the
// whole field: a full field with one Null first fills as fast as one without (a scan per addition
// would make it thousands of times slower).
TEST(XqbConditions, ANullOperandKeepsFillingAFieldLinear) {
  auto fill = [](bool null_first) {
    const auto start = std::chrono::steady_clock::now();
    auto conditions = xqb_Conditions::Create();
    if (null_first) conditions->AddObjectCondition(MakeCondition(0, EQ, V::Null(), V("")));
    for (std::int32_t id = 1; id < 32767; ++id) {
      conditions->AddObjectCondition(MakeCondition(id, EQ, V(id), V(id)));
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  const double plain = fill(false);
  EXPECT_LT(fill(true), 10 * plain + 0.5);
}

}  // namespace
}  // namespace brix
