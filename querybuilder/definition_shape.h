// The shape of the definition document, said once: for each saved class its element name, its
// rows, and the children it owns (the count element, the child class, the name of child n, and
// the collection they go into). The writer, the bag-based reader and the direct reader all take
// the document's names and nesting from here.
#pragma once

#include <string_view>
#include <type_traits>
#include <vector>

#include "querybuilder/definition_rows.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_conditions.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_fields.h"
#include "querybuilder/xqb_query.h"
#include "querybuilder/xqb_table.h"
#include "querybuilder/xqb_tables.h"

namespace brix {

/// How an object names the children it owns: a count element, then child n (from 1) as an
/// element of the child's class whose "name" attribute is `prefix` + n.
struct ChildNaming {
  std::string_view count_name;
  std::string_view prefix;
};

/// The saved form of class `T`; `Child` is void for a class that owns no children.
template <class T>
struct DefinitionShape;

template <>
struct DefinitionShape<xqb_Query> {
  static constexpr std::string_view kElement = "xqb_Query";
  static const std::vector<Row<xqb_Query>>& Rows() { return QueryRows(); }
  using Child = xqb_Table;
  using Collection = xqb_Tables;
  static constexpr ChildNaming kChildren{"TablesCount", "Table"};
  static constexpr auto kCollection = &xqb_Query::Tables;
  static constexpr auto kSetCollection = &xqb_Query::SetTables;
  static constexpr auto kAdd = &xqb_Tables::AddObjectTable;
};

template <>
struct DefinitionShape<xqb_Table> {
  static constexpr std::string_view kElement = "xqb_Table";
  static const std::vector<Row<xqb_Table>>& Rows() { return TableRows(); }
  using Child = xqb_Field;
  using Collection = xqb_Fields;
  static constexpr ChildNaming kChildren{"FieldsCount", "Field"};
  static constexpr auto kCollection = &xqb_Table::Fields;
  static constexpr auto kSetCollection = &xqb_Table::SetFields;
  static constexpr auto kAdd = &xqb_Fields::AddObjectField;
};

template <>
struct DefinitionShape<xqb_Field> {
  static constexpr std::string_view kElement = "xqb_Field";
  static const std::vector<Row<xqb_Field>>& Rows() { return FieldRows(); }
  using Child = xqb_Condition;
  using Collection = xqb_Conditions;
  static constexpr ChildNaming kChildren{"ConditionsCount", "Condition"};
  static constexpr auto kCollection = &xqb_Field::Conditions;
  static constexpr auto kSetCollection = &xqb_Field::SetConditions;
  static constexpr auto kAdd = &xqb_Conditions::AddObjectCondition;
};

template <>
struct DefinitionShape<xqb_Condition> {
  static constexpr std::string_view kElement = "xqb_Condition";
  static const std::vector<Row<xqb_Condition>>& Rows() { return ConditionRows(); }
  using Child = void;
};

/// Whether objects of class `T` own a collection of children.
template <class T>
concept OwnsChildren = !std::is_void_v<typename DefinitionShape<T>::Child>;

}  // namespace brix
