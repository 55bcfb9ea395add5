// The query definition document: how the query, its tables, fields and conditions write
// themselves into an XML property bag and read themselves back.
#include <string>
#include <string_view>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/definition_shape.h"
#include "runtime/conversions.h"
#include "runtime/error.h"

namespace brix {
namespace {

// Raises `error` again with the element it came from, as the bag places it: "Type mismatch:
// DBType of xqb_Query/Table1/Field2 (line 7) is "banana"".
[[noreturn]] void RaiseAtElement(const Error& error, const XMLPropBag& bag, std::string_view name,
                                 const Variant& value) {
  // Only a load's own reading (the bag keeps its text) places errors; a host's bag passes them
  // on as they are.
  const XMLPropBag::Place place = bag.PlaceOf(name);
  if (place.line == 0) throw error;
  const std::string where =
      std::string(name) + " of " + place.path + " (line " + std::to_string(place.line) + ")";
  std::string shown = value.IsString() ? " is \"" + value.AsString() + "\"" : "";
  Raise(error.Number(), error.Source(), error.Description() + ": " + where + shown);
}

// The converted value of a property: its row's conversion, or the error at its element.
template <class Convert>
auto Converted(const XMLPropBag& bag, std::string_view name, const Variant& value,
               Convert convert) {
  try {
    return convert(value);
  } catch (const Error& error) {
    RaiseAtElement(error, bag, name, value);
  }
}

template <class T>
void WriteRows(const std::vector<Row<T>>& rows, const T& object, XMLPropBag& bag) {
  const std::vector<ElementName>& names = RowNames(rows);
  std::string scratch;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row<T>& row = rows[i];
    if (row.text) {
      bag.WriteText(names[i], row.text(object, scratch));
    } else if (row.held) {
      const Variant& value = (object.*row.held)();
      if (value.IsString()) {
        bag.WriteText(names[i], value.AsString());  // as a text variant is written
      } else {
        bag.WriteProperty(names[i].View(), value);
      }
    } else {
      bag.WriteProperty(names[i].View(), row.get(object));
    }
  }
}

template <class T>
void ReadRows(const std::vector<Row<T>>& rows, T& object, XMLPropBag& bag) {
  const std::vector<Variant>& initial_values = InitialValues(rows);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!rows[i].set) continue;
    const Variant value = bag.ReadProperty(rows[i].name, initial_values[i]);
    Converted(bag, rows[i].name, value, [&](const Variant& v) {
      rows[i].set(object, v);
      return 0;
    });
  }
}

// The owner writes a count and then child n under `prefix` + n, taken by position.
template <class T>
void WriteChildren(const T& owner, XMLPropBag& bag) {
  using Shape = DefinitionShape<T>;
  const auto& children = *(owner.*Shape::kCollection)();
  std::int32_t count = children.Count();
  bag.WriteProperty(Shape::kChildren.count_name, Variant(count));
  const std::string prefix(Shape::kChildren.prefix);
  for (std::int32_t n = 1; n <= count; ++n) {
    bag.WriteProperty(prefix + std::to_string(n), Variant(children.Item(Variant(n))));
  }
}

// Children come back in the order of their numbers: child n is filled from the nested element
// named "<prefix>n", whatever its place in the document; a missing one stays at its defaults.
template <class T>
void ReadChildren(T& owner, XMLPropBag& bag) {
  using Shape = DefinitionShape<T>;
  using Child = typename Shape::Child;
  auto children = Shape::Collection::Create();
  (owner.*Shape::kSetCollection)(children);
  const std::string_view count_name = Shape::kChildren.count_name;
  const std::int32_t count = Converted(bag, count_name, bag.ReadProperty(count_name, Variant(0)),
                                       [](const Variant& v) { return CLng(v); });
  const std::string prefix(Shape::kChildren.prefix);
  for (std::int32_t n = 1; n <= count; ++n) {
    std::shared_ptr<Child> child = Child::Create();
    bag.ReadProperty(prefix + std::to_string(n), Variant(child));
    ((*children).*Shape::kAdd)(std::move(child));
  }
}

template <class T>
void WriteObject(const T& object, XMLPropBag& bag) {
  WriteRows(DefinitionShape<T>::Rows(), object, bag);
  if constexpr (OwnsChildren<T>) WriteChildren(object, bag);
}

template <class T>
void ReadObject(T& object, XMLPropBag& bag) {
  ReadRows(DefinitionShape<T>::Rows(), object, bag);
  if constexpr (OwnsChildren<T>) ReadChildren(object, bag);
}

}  // namespace

std::string xqb_Query::TypeName() const {
  return std::string(DefinitionShape<xqb_Query>::kElement);
}
std::string xqb_Table::TypeName() const {
  return std::string(DefinitionShape<xqb_Table>::kElement);
}
std::string xqb_Field::TypeName() const {
  return std::string(DefinitionShape<xqb_Field>::kElement);
}
std::string xqb_Condition::TypeName() const {
  return std::string(DefinitionShape<xqb_Condition>::kElement);
}

void xqb_Query::WriteProperties(XMLPropBag& PropertyBag) { WriteObject(*this, PropertyBag); }
void xqb_Query::ReadProperties(XMLPropBag& PropertyBag) { ReadObject(*this, PropertyBag); }
void xqb_Table::WriteProperties(XMLPropBag& PropertyBag) { WriteObject(*this, PropertyBag); }
void xqb_Table::ReadProperties(XMLPropBag& PropertyBag) { ReadObject(*this, PropertyBag); }
void xqb_Field::WriteProperties(XMLPropBag& PropertyBag) { WriteObject(*this, PropertyBag); }
void xqb_Field::ReadProperties(XMLPropBag& PropertyBag) { ReadObject(*this, PropertyBag); }
void xqb_Condition::WriteProperties(XMLPropBag& PropertyBag) { WriteObject(*this, PropertyBag); }
void xqb_Condition::ReadProperties(XMLPropBag& PropertyBag) { ReadObject(*this, PropertyBag); }

void ReadDefinitionThroughBag(std::string_view xml_text, xqb_Query& query,
                              const XMLReadLimits& limits) {
  auto bag = XMLPropBag::Create();
  bag->SetLoadLimits(limits);
  bag->SetContentsForReading(xml_text);
  bag->RestoreState(&query);
}

}  // namespace brix
