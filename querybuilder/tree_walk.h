// The walk over a query's tree: tables, their fields, their conditions, in collection order.
#pragma once

#include <memory>

#include "querybuilder/xqb_query.h"

namespace brix {

/// Calls `visit(table, field)` for every field of every table, in collection order.
template <class Visit>
void ForEachField(const xqb_Query& query, Visit&& visit) {
  const std::shared_ptr<xqb_Tables> tables = query.Tables();
  for (const auto& table : *tables) {
    const std::shared_ptr<xqb_Fields> fields = table->Fields();
    for (const auto& field : *fields) visit(*table, *field);
  }
}

/// Calls `visit(table, field, condition)` for every condition in tree order until it returns
/// true; returns whether it did.
template <class Visit>
bool FindInConditions(const xqb_Query& query, Visit&& visit) {
  const std::shared_ptr<xqb_Tables> tables = query.Tables();
  for (const auto& table : *tables) {
    const std::shared_ptr<xqb_Fields> fields = table->Fields();
    for (const auto& field : *fields) {
      const std::shared_ptr<xqb_Conditions> conditions = field->Conditions();
      for (const auto& condition : *conditions) {
        if (visit(*table, *field, *condition)) return true;
      }
    }
  }
  return false;
}

/// Calls `visit(table, field, condition)` for every condition in tree order.
template <class Visit>
void ForEachCondition(const xqb_Query& query, Visit&& visit) {
  FindInConditions(
      query, [&](const xqb_Table& table, const xqb_Field& field, const xqb_Condition& condition) {
        visit(table, field, condition);
        return false;
      });
}

}  // namespace brix
