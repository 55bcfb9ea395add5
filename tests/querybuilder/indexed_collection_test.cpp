// The lookup indexes of the model's collections: after any sequence of adds, removals and key
// changes, on any thread and in every collection that shares an object, the existence and
// duplicate tests answer what a plain scan answers.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <thread>
#include <vector>

#include "querybuilder/xqb_conditions.h"
#include "querybuilder/xqb_fields.h"
#include "querybuilder/xqb_tables.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/variant.h"

namespace brix {
namespace {

const std::vector<std::string> kNames = {"A", "a", "B", "Cod", "COD", "[X Y]", "Z"};

bool ScanFields(xqb_Fields& fields, const std::string& name) {
  for (const auto& field : fields) {
    if (field->DBName() == name) return true;
  }
  return false;
}

bool ScanConditions(xqb_Conditions& conditions, qbe_ClauseOperator clause, const Variant& value) {
  for (const auto& condition : conditions) {
    if (condition->Clause() == clause && VarEqual(condition->Value(), value) &&
        VarEqual(condition->SecondaryValue(), value)) {
      return true;
    }
  }
  return false;
}

TEST(IndexedCollection, FieldExistsAgreesWithAScanAfterEveryChangeOnEveryThread) {
  for (unsigned seed = 1; seed <= 50; ++seed) {
    std::mt19937 random(seed);
    auto pick = [&](std::size_t n) {
      return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    auto fields = xqb_Fields::Create();
    for (int step = 0; step < 60; ++step) {
      const std::string& name = kNames[pick(kNames.size())];
      switch (pick(4)) {
        case 0:
          try {
            if (!fields->FieldExists(name)) fields->Add(name);
          } catch (const Error& error) {  // the same key in other letter case
            ASSERT_EQ(error.Number(), kErrKeyAlreadyAssociated);
          }
          break;
        case 1:
          if (fields->Count() > 0)
            fields->Remove(Variant(static_cast<std::int32_t>(pick(fields->Count()) + 1)));
          break;
        case 2:  // renamed on this thread
          if (fields->Count() > 0)
            fields->Item(Variant(static_cast<std::int32_t>(pick(fields->Count()) + 1)))
                ->SetDBName(name);
          break;
        default:  // renamed on another thread, which the host joins before going on
          if (fields->Count() > 0) {
            auto field =
                fields->Item(Variant(static_cast<std::int32_t>(pick(fields->Count()) + 1)));
            std::thread([&] { field->SetDBName(name); }).join();
          }
      }
      for (const std::string& probe : kNames) {
        ASSERT_EQ(fields->FieldExists(probe), ScanFields(*fields, probe))
            << "seed " << seed << " step " << step << " probe " << probe;
      }
    }
  }
}

TEST(IndexedCollection, ConditionExistsAgreesWithAScanAfterEveryChange) {
  // Null never matches; Single and Currency compare after rounding (0.1 as a Single equals the
  // Double 0.1 only once both are rounded), so they are checked one by one.
  const std::vector<Variant> values = {Variant(""),
                                       Variant("x"),
                                       Variant(1),
                                       Variant(2.0),
                                       Variant("1"),
                                       Variant(true),
                                       Variant(),
                                       Variant::Null(),
                                       Variant(0.1f),
                                       Variant(0.1),
                                       Variant(2.0f),
                                       Variant(Currency::FromNumber(2.0)),
                                       Variant(Currency::FromNumber(0.1))};
  for (unsigned seed = 1; seed <= 50; ++seed) {
    std::mt19937 random(seed);
    auto pick = [&](std::size_t n) {
      return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    auto conditions = xqb_Conditions::Create();
    std::int32_t next_id = 1;
    for (int step = 0; step < 150; ++step) {
      const auto clause = static_cast<qbe_ClauseOperator>(1 + pick(3));
      const Variant& value = values[pick(values.size())];
      auto any = [&] {
        return conditions->Item(Variant(static_cast<std::int32_t>(pick(conditions->Count()) + 1)));
      };
      switch (pick(4)) {
        case 0:
          if (!conditions->ConditionExists(clause, value)) {
            auto condition = xqb_Condition::Create();
            condition->SetConditionID(next_id++);
            condition->SetClause(clause);
            condition->SetValue(value);
            condition->SetSecondaryValue(values[pick(values.size())]);
            conditions->AddObjectCondition(condition);
          }
          break;
        case 1:
          if (conditions->Count() > 0)
            conditions->Remove(Variant(static_cast<std::int32_t>(pick(conditions->Count()) + 1)));
          break;
        case 2:
          if (conditions->Count() > 0)
            std::thread([&, target = any()] { target->SetValue(value); }).join();
          break;
        default:
          if (conditions->Count() > 0) {
            auto target = any();
            target->SetSecondaryValue(value);
            target->SetClause(clause);
          }
      }
      for (int probe_clause = 1; probe_clause <= 3; ++probe_clause) {
        for (const Variant& probe : values) {
          const auto c = static_cast<qbe_ClauseOperator>(probe_clause);
          ASSERT_EQ(conditions->ConditionExists(c, probe), ScanConditions(*conditions, c, probe))
              << "seed " << seed << " step " << step;
        }
      }
    }
  }
}

// An object held by several collections (or twice by one, under two keys) is followed by each
// holding; a collection that let it go, was cleared or ended is no longer told of its changes.
TEST(IndexedCollection, SharedObjectsAreFollowedByEveryHolding) {
  auto first = xqb_Fields::Create();
  auto second = xqb_Fields::Create();
  auto field = first->Add("A");
  second->AddObjectField(field);
  field->SetDBName("B");
  {
    auto ended = xqb_Fields::Create();
    ended->AddObjectField(field);
  }
  for (const auto& fields : {first, second}) {
    EXPECT_TRUE(fields->FieldExists("B"));
    EXPECT_FALSE(fields->FieldExists("A"));
  }
  second->Remove(Variant(1));
  first->Clear();
  field->SetDBName("C");
  EXPECT_FALSE(second->FieldExists("C"));
  EXPECT_FALSE(first->FieldExists("C"));

  // A Null operand never matches, so one condition can be added twice under two identities.
  auto conditions = xqb_Conditions::Create();
  auto others = xqb_Conditions::Create();
  auto condition = conditions->Add(qbe_ClauseEqualTo, Variant::Null());
  condition->SetConditionID(20000);
  conditions->AddObjectCondition(condition);
  others->AddObjectCondition(condition);
  condition->SetValue(Variant(7));
  condition->SetSecondaryValue(Variant(7));
  for (const auto& held : {conditions, others}) {
    EXPECT_TRUE(held->ConditionExists(qbe_ClauseEqualTo, Variant(7)));
    EXPECT_FALSE(held->ConditionExists(qbe_ClauseEqualTo, Variant("")));
  }
  conditions->Remove(Variant("20000"));
  others->Remove(Variant(1));
  condition->SetClause(qbe_ClauseNotEqual);
  EXPECT_TRUE(conditions->ConditionExists(qbe_ClauseNotEqual, Variant(7)));
  EXPECT_FALSE(others->ConditionExists(qbe_ClauseNotEqual, Variant(7)));
  conditions->Remove(Variant(1));
  EXPECT_FALSE(conditions->ConditionExists(qbe_ClauseNotEqual, Variant(7)));
}

}  // namespace
}  // namespace brix
