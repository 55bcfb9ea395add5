// Condition: stored values and their derived texts.
#include "querybuilder/xqb_condition.h"

#include <utility>

#include "querybuilder/clause_catalogue.h"

namespace brix {

std::shared_ptr<xqb_Condition> xqb_Condition::Create() {
  struct Made : xqb_Condition {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

void xqb_Condition::SetClause(qbe_ClauseOperator value) {
  ChangeKey([&]() noexcept { clause_ = value; });
}

void xqb_Condition::SetValue(const Variant& value) {
  Variant copy = value;
  ChangeKey([&]() noexcept { value_ = std::move(copy); });
}

void xqb_Condition::SetSecondaryValue(const Variant& value) {
  Variant copy = value;
  ChangeKey([&]() noexcept { secondary_value_ = std::move(copy); });
}

std::string xqb_Condition::ClauseDescription() const { return brix::ClauseDescription(clause_); }

std::string xqb_Condition::WhereClauseDescription() const {
  return WhereClauseLogicDescription(where_clause_logic_);
}

}  // namespace brix
