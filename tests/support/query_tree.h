// Builders of small query trees for tests: tables, typed fields and conditions with fixed IDs.
#pragma once

#include <cstdint>
#include <memory>

#include "querybuilder/xqb_condition.h"
#include "runtime/variant.h"

namespace brix::test_support {

/// A condition with a chosen identity (no random draw), not yet added anywhere.
inline std::shared_ptr<xqb_Condition> MakeCondition(std::int32_t id, qbe_ClauseOperator clause,
                                                    Variant value = Variant(""),
                                                    Variant secondary = Variant("")) {
  auto condition = xqb_Condition::Create();
  condition->SetConditionID(id);
  condition->SetClause(clause);
  condition->SetValue(value);
  condition->SetSecondaryValue(secondary);
  return condition;
}

}  // namespace brix::test_support
