// The saved properties of each class of the query tree: element names in document order, and
// how each value is written and read back. Shared by the bag-based and the direct readers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "persistence/property_row.h"
#include "persistence/xml_prop_bag.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "querybuilder/xqb_table.h"
#include "runtime/variant.h"

namespace brix {

/// One saved property of the query's classes.
template <class T>
using Row = PropertyRow<T>;

const std::vector<Row<xqb_Query>>& QueryRows();
const std::vector<Row<xqb_Table>>& TableRows();
const std::vector<Row<xqb_Field>>& FieldRows();
const std::vector<Row<xqb_Condition>>& ConditionRows();

/// The row names of `rows` as element names, measured and checked once per class.
template <class T>
const std::vector<ElementName>& RowNames(const std::vector<Row<T>>& rows) {
  static const std::vector<ElementName> names = [&rows] {
    std::vector<ElementName> checked;
    for (const Row<T>& row : rows) checked.emplace_back(row.name);
    return checked;
  }();
  return names;
}

/// The value of each row on a new object: a missing element leaves the property there, so older
/// documents that lack a property still load.
template <class T>
const std::vector<Variant>& InitialValues(const std::vector<Row<T>>& rows) {
  static const std::vector<Variant> values = [&rows] {
    const std::shared_ptr<T> fresh = T::Create();
    std::vector<Variant> initial;
    for (const Row<T>& row : rows) initial.push_back(row.get(*fresh));
    return initial;
  }();
  return values;
}

/// Reads `query` from the definition document `xml_text` through an XML property bag. A value
/// that does not convert to its property's type is raised with its number and a description
/// that names the element, its path in the document ("xqb_Query/Table1/Field2") and its line.
/// The bag holds the document to `limits`.
void ReadDefinitionThroughBag(std::string_view xml_text, xqb_Query& query,
                              const XMLReadLimits& limits);

}  // namespace brix
