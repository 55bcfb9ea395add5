// The conditions collection: duplicate test, adding with a random identity, keyed access.
#include "querybuilder/xqb_conditions.h"

#include <string>

#include "querybuilder/condition_index.h"
#include "querybuilder/indexed_collection.h"
#include "querybuilder/xqb_module.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::int32_t kHighestRandomID = 10000;

[[noreturn]] void RaiseDuplicateCondition() {
  Raise(kErrConditionExists, "[Add Condition]",
        "A condition with this characteristics already exists in this field!");
}

}  // namespace

std::shared_ptr<xqb_Conditions> xqb_Conditions::Create() {
  struct Made : xqb_Conditions {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

void xqb_Conditions::AddObjectCondition(std::shared_ptr<xqb_Condition> condition) {
  if (!condition) RaiseRuntimeError(kErrObjectVariableNotSet);
  if (ConditionExists(condition->Clause(), condition->Value(), condition->SecondaryValue())) {
    RaiseDuplicateCondition();
  }
  std::string key = std::to_string(condition->ConditionID());
  Store().AddItem(std::move(condition), key);
}

std::shared_ptr<xqb_Condition> xqb_Conditions::Add(qbe_ClauseOperator clause, const Variant& value,
                                                   const Variant& secondary_value) {
  if (ConditionExists(clause, value, secondary_value)) RaiseDuplicateCondition();
  auto condition = xqb_Condition::Create();
  condition->SetConditionID(xqb_Module::RandomNumber(0, kHighestRandomID));
  condition->SetClause(clause);
  condition->SetValue(value);
  condition->SetSecondaryValue(secondary_value);
  Store().AddItem(condition, std::to_string(condition->ConditionID()));
  return condition;
}

bool xqb_Conditions::ConditionExists(qbe_ClauseOperator clause, const Variant& value,
                                     const Variant& /*secondary_value*/) {
  std::optional<bool> known = Store().CurrentIndex().HasMatch(clause, value);
  bool found = known ? *known : ScanForDuplicate(clause, value);
  if (!found) CheckSearchCounter(Count());
  return found;
}

bool xqb_Conditions::ScanForDuplicate(qbe_ClauseOperator clause, const Variant& value) const {
  for (const auto& condition : *this) {
    // All three comparisons run, as the platform's And evaluates every operand: a comparison
    // that raises does so even when the clause already differs.
    bool same_clause = condition->Clause() == clause;
    bool same_value = VarEqual(condition->Value(), value);
    // Saved definitions and callers depend on which additions are refused: the stored secondary
    // value is compared with the first operand, never with the given secondary value.
    bool same_secondary = VarEqual(condition->SecondaryValue(), value);
    if (same_clause && same_value && same_secondary) return true;
  }
  return false;
}

template class ModelCollection<xqb_Condition, ConditionIndex>;

}  // namespace brix
