// Parameter expansion: the conditions added per value, the 16-bit walk, and failures reported
// through the expansion's own error with what was added kept.
#include "querybuilder/parameter_expander.h"

#include <gtest/gtest.h>

#include <tuple>

#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/fresh_thread.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::AddCondition;
using test_support::BuildQuery;
using test_support::OnFreshThread;
using test_support::RaisesError;
using V = Variant;
using Texts = std::vector<std::string>;

constexpr auto kClause = qbe_ClauseContains;  // the parameter's clause, given to every value

V Values(std::vector<V> items, std::int32_t lower_bound = 0) {
  return V(VariantArray{std::move(items), lower_bound});
}

// Tables Altele and Acte; the field Acte.Emitent carries the parameter "P" as condition 1.
struct Sample {
  std::shared_ptr<xqb_Query> query = BuildQuery(
      {{"Altele"},
       {"Acte",
        {{.name = "Emitent", .conditions = {{kClause, V(""), V(""), "P"}}, .dt_index = true}}}});
  std::shared_ptr<xqb_Field> field = query->Tables()->Item(V(2))->Fields()->Item(V(1));

  // The values of the conditions after the parameter, as text.
  Texts Added() const {
    Texts values;
    for (const auto& condition : *field->Conditions()) {
      if (condition->ParamName().empty()) values.push_back(ConcatText(condition->Value()));
    }
    return values;
  }
};

TEST(ParameterExpander, AddsOneConditionPerValueAndReportsFailuresKeepingWhatWasAdded) {
  ScopedClock noon(45000.5);  // identities drawn on a fresh thread: 9229, 4837, 2723, 2374
  std::vector<V> eight;
  for (int i = 0; i < 8; ++i) eight.emplace_back(std::to_string(i));
  const std::string nothing = "Object variable or With block variable not set";
  const std::string duplicate =
      "A condition with this characteristics already exists in this field!";
  const std::string used_key = "This key is already associated with an element of this collection";
  // values, identity of a held condition "dup" (-1: none), the failure ("": none), values added
  // clang-format off
  const std::vector<std::tuple<V, std::int32_t, std::string, Texts>> cases = {
      {Values({V("a"), V(""), V("b")}),               -1,   "",              {"a", "b"}},
      {Values({V(), V::Null(), V(0), V(false)}, -3),  -1,   "",              {"0", "False"}},
      {V(ByteArray{7, 0}),                            -1,   "",              {"7", "0"}},
      {Values({}),                                    -1,   "",              {}},
      {V("a"),                                        -1,   "Type mismatch", {}},
      {Values({V("a"), V(ErrorValue{5})}),            -1,   "Type mismatch", {"a"}},
      {Values({V(VariantArray{})}),                   -1,   "Type mismatch", {}},
      {Values({V("a"), V::Nothing()}),                -1,   nothing,         {"a"}},
      {Values({V("a"), V("dup")}),                    0,    duplicate,       {"dup", "a"}},
      {Values({V("a"), V("b")}),                      4837, used_key,        {"dup", "a"}},
      {Values({V("a"), V("b")}, 32767),               -1,   "Overflow",      {}},  // upper bound
      {Values({V("a")}, -32769),                      -1,   "Overflow",      {}},
      {Values(eight, 32760),                          -1,   "Overflow",      {"0", "1", "2", "3", "4", "5", "6", "7"}},
  };
  // clang-format on
  for (const auto& [values, held, reason, added] : cases) {
    OnFreshThread([&] {
      Sample sample;
      // Equal value and secondary value: adding "dup" again is a duplicate.
      if (held >= 0) AddCondition(*sample.field, held, kClause, V("dup"), V("dup"));
      auto add = [&] { sample.query->AddParamValues("P", values); };
      if (reason.empty()) {
        EXPECT_NO_THROW(add());
      } else {
        EXPECT_TRUE(RaisesError(add, kErrAddParamValues,
                                "[OrlaXML_qb].[xqb_Persistence].[AddParamValues]",
                                "Couldn't add parameter!\r\nReason: " + reason));
      }
      EXPECT_EQ(sample.Added(), added) << reason;
      for (const auto& condition : *sample.field->Conditions()) {
        if (!condition->ParamName().empty() || held >= 0) continue;
        EXPECT_EQ(ConcatText(condition->SecondaryValue()) + "|" + condition->Tag(),
                  "|ConditionFromParam");
        EXPECT_TRUE(condition->Clause() == kClause && !condition->IsEditable());
      }
    });
  }
  OnFreshThread([] {
    Sample sample;
    sample.query->AddParamValues("p", Values({V("a")}));  // names are case-sensitive
    sample.query->AddParamValues("Q", V("not an array"));
    EXPECT_EQ(sample.Added(), Texts{});
    sample.query->AddParamValues("P", Values({V("x"), V("y")}));
    sample.query->Tables()->Remove(V(1));
    EXPECT_EQ(sample.query->ReturnDTConditions(),
              "((Emitent contains (x)) OR (Emitent contains (y)))");
    EXPECT_EQ(sample.query->ReturnWHEREConditions(), "(Emitent LIKE '%x%' OR Emitent LIKE '%y%')");
  });
}

}  // namespace
}  // namespace brix
