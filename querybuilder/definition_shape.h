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

/// What an owner's shape adds: the children's class and collection, how the owner gives and
/// takes the collection, and how a child is added to it.
template <class ChildT, class CollectionT, auto collection, auto set_collection, auto add>
struct OwnerShape {
  using Child = ChildT;
  using Collection = CollectionT;
  static constexpr auto kCollection = collection;
  static constexpr auto kSetCollection = set_collection;
  static constexpr auto kAdd = add;
};

template <>
struct DefinitionShape<xqb_Query> : OwnerShape<xqb_Table, xqb_Tables, &xqb_Query::Tables,
                                               &xqb_Query::SetTables, &xqb_Tables::AddObjectTable> {
  static constexpr std::string_view kElement = "xqb_Query";
  static constexpr ChildNaming kChildren{"TablesCount", "Table"};
  static const std::vector<Row<xqb_Query>>& Rows() { return QueryRows(); }
};

template <>
struct DefinitionShape<xqb_Table> : OwnerShape<xqb_Field, xqb_Fields, &xqb_Table::Fields,
                                               &xqb_Table::SetFields, &xqb_Fields::AddObjectField> {
  static constexpr std::string_view kElement = "xqb_Table";
  static constexpr ChildNaming kChildren{"FieldsCount", "Field"};
  static const std::vector<Row<xqb_Table>>& Rows() { return TableRows(); }
};

template <>
struct DefinitionShape<xqb_Field>
    : OwnerShape<xqb_Condition, xqb_Conditions, &xqb_Field::Conditions, &xqb_Field::SetConditions,
                 &xqb_Conditions::AddObjectCondition> {
  static constexpr std::string_view kElement = "xqb_Field";
  static constexpr ChildNaming kChildren{"ConditionsCount", "Condition"};
  static const std::vector<Row<xqb_Field>>& Rows() { return FieldRows(); }
};

template <>
struct DefinitionShape<xqb_Condition> {
  using Child = void;
  static constexpr std::string_view kElement = "xqb_Condition";
  static const std::vector<Row<xqb_Condition>>& Rows() { return ConditionRows(); }
};

/// Whether objects of class `T` own a collection of children.
template <class T>
concept OwnsChildren = !std::is_void_v<typename DefinitionShape<T>::Child>;

}  // namespace brix
