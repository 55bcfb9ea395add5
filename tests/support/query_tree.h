// Builders of small query trees for tests: tables, typed fields and conditions with fixed IDs.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// One condition of a `FieldRow`.
struct ConditionRow {
  qbe_ClauseOperator clause;
  Variant value = Variant("");
  Variant secondary = Variant("");
  std::string param_name = {};
};

/// One field of a `TableRow`: its type (DBType and ShowAsType), conditions and the settings the
/// generators read. Members left out keep the creation values; the alias then stays the name.
struct FieldRow {
  std::string name;
  qbe_DataType type = qbe_DataString;
  std::vector<ConditionRow> conditions = {};
  std::optional<qbe_DataType> show_as = {};
  std::optional<std::string> alias = {};
  std::int16_t place = 0;  // AppearanceOrder
  std::string links = {};
  std::int16_t group_level = 0;
  qbe_SortType sort = qbe_SortNone;
  std::int16_t sort_level = 0;
  std::string formula = {};
  bool in_statement = true;
  bool dt_index = false;
};

/// One table of a query written as a table row: its name and fields.
struct TableRow {
  std::string name;
  std::vector<FieldRow> fields = {};
};

/// Adds the tables of `rows` to `query`; the conditions get the identities 1, 2, ... in tree
/// order.
inline void AddTables(xqb_Query& query, const std::vector<TableRow>& rows) {
  std::int32_t id = 0;
  for (const TableRow& row : rows) {
    auto table = AddTable(query, row.name);
    for (const FieldRow& f : row.fields) {
      auto field = AddField(*table, f.name, f.type);
      if (f.show_as) field->SetShowAsType(*f.show_as);
      if (f.alias) field->SetAlias(*f.alias);
      field->SetAppearanceOrder(f.place);
      field->SetLinksWithField(f.links);
      field->SetGroupByLevel(f.group_level);
      field->SetOrderByOrder(f.sort);
      field->SetOrderByLevel(f.sort_level);
      field->SetCalculatedFormula(f.formula);
      field->SetUseInStatement(f.in_statement);
      field->SetIsDTIndex(f.dt_index);
      for (const ConditionRow& c : f.conditions) {
        AddCondition(*field, ++id, c.clause, c.value, c.secondary)->SetParamName(c.param_name);
      }
    }
  }
}

/// A new query holding the tables of `rows`.
inline std::shared_ptr<xqb_Query> BuildQuery(const std::vector<TableRow>& rows) {
  auto query = xqb_Query::Create();
  AddTables(*query, rows);
  return query;
}

}  // namespace brix::test_support
