// Parameter expansion: the conditions added per value, the 16-bit walk, and failures reported
// through the expansion's own error with what was added kept.
#include "querybuilder/parameter_expander.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::AddCondition;
using test_support::AddField;
using test_support::AddTable;
using test_support::RaisesError;

constexpr char kSource[] = "[OrlaXML_qb].[xqb_Persistence].[AddParamValues]";

// Runs `test` on a new thread at a fixed noon: the random identities drawn there are known
// (9229, then 4837, 2723, 2374).
template <class Test>
void InFreshThread(Test test) {
  std::thread([&] {
    ScopedClock noon(45000.5);
    test();
  }).join();
}

Variant Values(std::vector<Variant> items, std::int32_t lower_bound = 0) {
  return Variant(VariantArray{std::move(items), lower_bound});
}

// Table Acte with the field Emitent, whose condition 1 is the parameter "P" (clause EqualTo).
struct Sample {
  std::shared_ptr<xqb_Query> query = xqb_Query::Create();
  std::shared_ptr<xqb_Field> field;
  Sample() {
    AddTable(*query, "Altele");
    field = AddField(*AddTable(*query, "Acte"), "Emitent");
    field->SetIsDTIndex(true);
    AddCondition(*field, 1, qbe_ClauseEqualTo)->SetParamName("P");
  }
  // The values of the conditions after the parameter, as text.
  std::vector<std::string> Added() const {
    std::vector<std::string> values;
    for (const auto& condition : *field->Conditions()) {
      if (condition->ParamName().empty()) values.push_back(ConcatText(condition->Value()));
    }
    return values;
  }
};

TEST(ParameterExpander, AddsOneConditionPerValue) {
  using Texts = std::vector<std::string>;
  const std::vector<std::pair<Variant, Texts>> cases = {
      {Values({Variant("a"), Variant(""), Variant("b")}), {"a", "b"}},
      {Values({Variant(), Variant::Null(), Variant(0), Variant(false)}, -3), {"0", "False"}},
      {Variant(ByteArray{7, 0}), {"7", "0"}},
      {Values({}), {}},
  };
  for (const auto& [values, expected] : cases) {
    InFreshThread([&] {
      Sample sample;
      sample.query->AddParamValues("P", values);
      EXPECT_EQ(sample.Added(), expected);
      for (const auto& condition : *sample.field->Conditions()) {
        if (!condition->ParamName().empty()) continue;
        EXPECT_EQ(condition->Clause(), qbe_ClauseEqualTo);
        EXPECT_EQ(condition->SecondaryValue().AsString(), "");
        EXPECT_FALSE(condition->IsEditable());
        EXPECT_EQ(condition->Tag(), "ConditionFromParam");
      }
    });
  }
}

TEST(ParameterExpander, UnknownNameChangesNothing) {
  ScopedClock fixed(45000.5);
  Sample sample;
  sample.query->AddParamValues("p", Values({Variant("a")}));  // names are case-sensitive
  sample.query->AddParamValues("Q", Variant("not an array"));
  EXPECT_EQ(sample.field->Conditions()->Count(), 1);
}

TEST(ParameterExpander, ExpandedValuesReachTheRenderers) {
  InFreshThread([] {
    Sample sample;
    sample.query->AddParamValues("P", Values({Variant("x"), Variant("y")}));
    EXPECT_EQ(sample.query->ReturnDTConditions(), "");  // only the first table is searched
    sample.query->Tables()->Remove(Variant(1));
    EXPECT_EQ(sample.query->ReturnDTConditions(),
              "((Emitent contains (x)) OR (Emitent contains (y)))");
    EXPECT_EQ(sample.query->ReturnWHEREConditions(), "(Emitent = 'x' OR Emitent = 'y')");
  });
}

TEST(ParameterExpander, FailuresAreReportedAndKeepWhatWasAdded) {
  using Texts = std::vector<std::string>;
  std::vector<Variant> to_32767;
  for (int i = 0; i < 8; ++i) to_32767.emplace_back(std::to_string(i));
  struct Case {
    const char* name;
    Variant values;
    std::int32_t used_identity;  // a condition already holding it; 0 for none
    std::string reason;
    Texts kept;
  };
  const std::vector<Case> cases = {
      {"not an array", Variant("a"), 0, "Type mismatch", {}},
      {"error element", Values({Variant("a"), Variant(ErrorValue{5})}), 0, "Type mismatch", {"a"}},
      {"array element", Values({Variant(VariantArray{})}), 0, "Type mismatch", {}},
      {"nothing element",
       Values({Variant("a"), Variant::Nothing()}),
       0,
       "Object variable or With block variable not set",
       {"a"}},
      {"duplicate condition",
       Values({Variant("a"), Variant("dup")}),
       0,
       "A condition with this characteristics already exists in this field!",
       {"dup", "a"}},
      {"used identity",
       Values({Variant("a"), Variant("b")}),
       4837,
       "This key is already associated with an element of this collection",
       {"dup", "a"}},
      {"upper bound beyond 16 bits",
       Values({Variant("a"), Variant("b")}, 32767),
       0,
       "Overflow",
       {}},
      {"lower bound beyond 16 bits", Values({Variant("a")}, -32769), 0, "Overflow", {}},
      {"counter steps past 32767",
       Values(to_32767, 32760),
       0,
       "Overflow",
       {"0", "1", "2", "3", "4", "5", "6", "7"}},
  };
  for (const auto& c : cases) {
    InFreshThread([&] {
      Sample sample;
      if (!c.kept.empty() && c.kept.front() == "dup") {
        // Equal value and secondary value: adding "dup" again is a duplicate.
        AddCondition(*sample.field, c.used_identity, qbe_ClauseEqualTo, Variant("dup"),
                     Variant("dup"));
      }
      EXPECT_TRUE(RaisesError([&] { sample.query->AddParamValues("P", c.values); },
                              kErrAddParamValues, kSource,
                              "Couldn't add parameter!\r\nReason: " + c.reason))
          << c.name;
      EXPECT_EQ(sample.Added(), c.kept) << c.name;
    });
  }
  EXPECT_EQ(kErrAddParamValues, static_cast<std::int32_t>(0x80042774u));
}

}  // namespace
}  // namespace brix
