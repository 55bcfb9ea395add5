// Reads a definition document of the usual shape straight from its DOM: each object element is
// visited once, its property elements matched to the saved rows in one pass, and plain numbers
// and Booleans set without building variants.
#include "querybuilder/regular_definition_reader.h"

#include <array>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/definition_rows.h"
#include "querybuilder/load_budget.h"
#include "runtime/conversions.h"
#include "runtime/error.h"

namespace brix {
namespace {

/// Raised inside the reader when the document leaves the usual shape.
struct IrregularShape {};

/// How the objects of one class own those of the next: the count element and the child elements
/// (class and name prefix; child n is named prefix + n).
struct ChildShape {
  const char* count_name;
  const char* type;
  const char* prefix;
};

constexpr ChildShape kTables{"TablesCount", "xqb_Table", "Table"};
constexpr ChildShape kFields{"FieldsCount", "xqb_Field", "Field"};
constexpr ChildShape kConditions{"ConditionsCount", "xqb_Condition", "Condition"};

constexpr std::size_t kMaxRows = 48;

/// The elements under one object element: per row the first element of its name, the count
/// element, and the elements of the child class in document order.
struct ObjectElements {
  std::array<pugi::xml_node, kMaxRows> rows{};
  pugi::xml_node count;
  std::vector<pugi::xml_node> children;
};

bool Named(pugi::xml_node node, const char* name) { return std::strcmp(node.name(), name) == 0; }

bool HasElementChild(pugi::xml_node node) {
  for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
    if (child.type() == pugi::node_element) return true;
  }
  return false;
}

/// The row named `name`: the one after the last match first, since a saved object writes its
/// rows in order; rows.size() when none is.
template <class T>
std::size_t FindRow(const std::vector<Row<T>>& rows, const char* name, std::size_t expected) {
  if (expected < rows.size() && std::strcmp(rows[expected].name, name) == 0) return expected;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (std::strcmp(rows[i].name, name) == 0) return i;
  }
  return rows.size();
}

/// Sorts the child elements of `element`. An unknown element with content could hold another
/// "PropertyBag" path that the bag's document-wide lookups would see: such documents take the
/// bag's way (markup inside property values is caught when they are read).
template <class T>
void Collect(pugi::xml_node element, const std::vector<Row<T>>& rows, const ChildShape* shape,
             ObjectElements& out) {
  if (rows.size() > kMaxRows) throw IrregularShape{};
  std::size_t expected = 0;
  for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
    if (child.type() != pugi::node_element) continue;
    const char* name = child.name();
    if (shape && std::strcmp(name, shape->type) == 0) {
      out.children.push_back(child);
      continue;
    }
    const std::size_t row = FindRow(rows, name, expected);
    if (row < rows.size()) {
      if (!out.rows[row]) out.rows[row] = child;
      expected = row + 1;
    } else if (shape && std::strcmp(name, shape->count_name) == 0) {
      if (!out.count) out.count = child;
    } else if (std::strcmp(name, "PropertyBag") == 0 || HasElementChild(child)) {
      throw IrregularShape{};
    }
  }
}

/// The value of a property element as the bag reads it. Markup inside it could hold another
/// "PropertyBag" path, so such a document takes the bag's way.
Variant ElementValue(pugi::xml_node element) {
  if (HasElementChild(element)) throw IrregularShape{};
  return XMLPropBag::ElementValue(element);
}

/// The text of an element without attributes and with at most one text child, as the bag reads
/// it; nothing for any other element.
std::optional<std::string_view> PlainText(pugi::xml_node element) {
  if (element.first_attribute()) return std::nullopt;
  const pugi::xml_node first = element.first_child();
  if (!first) return std::string_view(element.value());  // empty, or text kept in the element
  if (*element.value()) return std::nullopt;
  const pugi::xml_node_type type = first.type();
  if ((type != pugi::node_pcdata && type != pugi::node_cdata) || first.next_sibling()) {
    return std::nullopt;
  }
  return std::string_view(first.value());
}

template <class T>
void ApplyRows(T& object, const std::vector<Row<T>>& rows, const ObjectElements& elements) {
  const std::vector<Variant>& initial_values = InitialValues(rows);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row<T>& row = rows[i];
    if (!row.set) continue;
    const pugi::xml_node element = elements.rows[i];
    if (!element) {
      row.set(object, initial_values[i]);
    } else if (const std::optional<std::string_view> text = PlainText(element)) {
      LoadBudget::CheckValue(*text);
      if (row.set_text) {
        row.set_text(object, *text);
      } else {
        row.set(object, Variant(*text));
      }
    } else {
      const Variant value = ElementValue(element);
      if (value.IsString()) LoadBudget::CheckValue(value.AsString());
      row.set(object, value);
    }
  }
}

/// Child n must be the n-th element of its class and named prefix + n, so that no name repeats
/// and each lookup by name finds exactly this element.
void CheckNumbered(const std::vector<pugi::xml_node>& children, const char* prefix) {
  const std::size_t prefix_length = std::strlen(prefix);
  for (std::size_t i = 0; i < children.size(); ++i) {
    const std::string_view name = children[i].attribute("name").value();
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, i + 1).ptr;
    if (name.size() != prefix_length + static_cast<std::size_t>(end - digits) ||
        name.compare(0, prefix_length, prefix) != 0 ||
        name.substr(prefix_length) != std::string_view(digits, end - digits)) {
      throw IrregularShape{};
    }
  }
}

void ReadObject(xqb_Query& query, pugi::xml_node element);
void ReadObject(xqb_Table& table, pugi::xml_node element);
void ReadObject(xqb_Field& field, pugi::xml_node element);
void ReadObject(xqb_Condition& condition, pugi::xml_node element);

/// Reads an object that owns a collection: its rows, a new collection, then its children in the
/// order of their numbers (a number without an element gives a child at its defaults).
template <class T, class Collection, class Child>
void ReadOwner(T& owner, pugi::xml_node element, const std::vector<Row<T>>& rows,
               const ChildShape& shape, void (T::*set_collection)(std::shared_ptr<Collection>),
               void (Collection::*add)(std::shared_ptr<Child>)) {
  ObjectElements elements;
  Collect(element, rows, &shape, elements);
  CheckNumbered(elements.children, shape.prefix);
  ApplyRows(owner, rows, elements);
  auto collection = Collection::Create();
  (owner.*set_collection)(collection);
  const std::int32_t count = elements.count ? CLng(ElementValue(elements.count)) : 0;
  for (std::int32_t n = 1; n <= count; ++n) {
    LoadBudget::TakeObjects(1);
    std::shared_ptr<Child> child = Child::Create();
    if (static_cast<std::size_t>(n) <= elements.children.size()) {
      ReadObject(*child, elements.children[n - 1]);
    }
    ((*collection).*add)(std::move(child));
  }
}

void ReadObject(xqb_Query& query, pugi::xml_node element) {
  ReadOwner(query, element, QueryRows(), kTables, &xqb_Query::SetTables,
            &xqb_Tables::AddObjectTable);
}

void ReadObject(xqb_Table& table, pugi::xml_node element) {
  ReadOwner(table, element, TableRows(), kFields, &xqb_Table::SetFields,
            &xqb_Fields::AddObjectField);
}

void ReadObject(xqb_Field& field, pugi::xml_node element) {
  ReadOwner(field, element, FieldRows(), kConditions, &xqb_Field::SetConditions,
            &xqb_Conditions::AddObjectCondition);
}

void ReadObject(xqb_Condition& condition, pugi::xml_node element) {
  ObjectElements elements;
  Collect(element, ConditionRows(), nullptr, elements);
  ApplyRows(condition, ConditionRows(), elements);
}

/// The one "xqb_Query" element under the document element "PropertyBag", or none.
pugi::xml_node OnlyQueryElement(const pugi::xml_document& document) {
  const pugi::xml_node bag = document.document_element();
  if (!Named(bag, "PropertyBag")) return {};
  pugi::xml_node query;
  for (pugi::xml_node child = bag.first_child(); child; child = child.next_sibling()) {
    if (child.type() != pugi::node_element) continue;
    if (Named(child, "xqb_Query")) {
      if (query) return {};
      query = child;
    } else if (HasElementChild(child) || Named(child, "PropertyBag")) {
      return {};
    }
  }
  return query;
}

}  // namespace

bool ReadRegularDefinition(const pugi::xml_document& document, xqb_Query& query) {
  const pugi::xml_node element = OnlyQueryElement(document);
  if (!element) return false;
  try {
    ReadObject(query, element);
    return true;
  } catch (const IrregularShape&) {
    return false;
  } catch (const Error&) {
    return false;  // the bag's reading raises it again, with its own context
  }
}

}  // namespace brix
