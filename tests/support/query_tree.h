// Builders of small query trees for tests: tables, typed fields and conditions with fixed IDs.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "querybuilder/xqb_table.h"
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

/// Adds a condition with a chosen identity to `field` and returns it.
inline std::shared_ptr<xqb_Condition> AddCondition(xqb_Field& field, std::int32_t id,
                                                   qbe_ClauseOperator clause,
                                                   Variant value = Variant(""),
                                                   Variant secondary = Variant("")) {
  auto condition = MakeCondition(id, clause, std::move(value), std::move(secondary));
  field.Conditions()->AddObjectCondition(condition);
  return condition;
}

/// Adds a table to `query` by name.
inline std::shared_ptr<xqb_Table> AddTable(xqb_Query& query, std::string_view name) {
  return query.Tables()->Add(name);
}

/// Adds a field to `table` with `DBType` and `ShowAsType` set to `type` (which builds its
/// default clause list).
inline std::shared_ptr<xqb_Field> AddField(xqb_Table& table, std::string_view name,
                                           qbe_DataType type = qbe_DataString) {
  auto field = table.Fields()->Add(name);
  field->SetDBType(type);
  field->SetShowAsType(type);
  return field;
}

}  // namespace brix::test_support
