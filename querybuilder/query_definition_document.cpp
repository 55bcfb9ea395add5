// The query definition document: how the query, its tables, fields and conditions write
// themselves into an XML property bag and read themselves back.
#include <algorithm>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/definition_rows.h"
#include "runtime/conversions.h"
#include "runtime/error.h"

namespace brix {
namespace {

// Where a bag reading is: the document's text and the names of the nested objects being read
// ("Table1", "Field2"), so that a value that does not convert can be pointed at.
struct ReadingPlace {
  std::string_view text;
  const XMLPropBag* bag = nullptr;
  std::vector<std::string> objects;
};
thread_local ReadingPlace* reading_place = nullptr;

// The element `name` inside the nested objects of the current place, as the bag finds them: the
// first saved query, then at each level the first element whose "name" attribute matches.
pugi::xml_node PlacedElement(const ReadingPlace& place, std::string_view name) {
  const pugi::xml_document* document = place.bag->Document();
  if (document == nullptr) return {};
  pugi::xml_node node = document->document_element().child("xqb_Query");
  for (const std::string& object : place.objects) {
    node = node.find_child([&](pugi::xml_node child) {
      return std::string_view(child.attribute("name").value()) == object;
    });
  }
  return node.child(std::string(name).c_str());
}

// Raises `error` again with the element it came from: "Type mismatch: DBType of
// xqb_Query/Table1/Field2 (line 7) is "banana"".
[[noreturn]] void RaiseAtElement(const Error& error, std::string_view name, const Variant& value) {
  const ReadingPlace* place = reading_place;
  if (place == nullptr) throw error;
  std::string path = "xqb_Query";
  for (const std::string& object : place->objects) path += "/" + object;
  std::string where = std::string(name) + " of " + path;
  const pugi::xml_node element = PlacedElement(*place, name);
  const std::ptrdiff_t offset = element ? element.offset_debug() : -1;
  if (offset >= 0 && static_cast<std::size_t>(offset) <= place->text.size()) {
    const auto line = 1 + std::count(place->text.begin(), place->text.begin() + offset, '\n');
    where += " (line " + std::to_string(line) + ")";
  }
  std::string shown = value.IsString() ? " is \"" + value.AsString() + "\"" : "";
  Raise(error.Number(), error.Source(), error.Description() + ": " + where + shown);
}

// The converted value of a property: its row's conversion, or the error at its element.
template <class Convert>
auto Converted(std::string_view name, const Variant& value, Convert convert) {
  try {
    return convert(value);
  } catch (const Error& error) {
    RaiseAtElement(error, name, value);
  }
}

// Names the nested object being read while it is read.
class ObjectScope {
 public:
  explicit ObjectScope(std::string name) {
    if (reading_place) reading_place->objects.push_back(std::move(name));
  }
  ~ObjectScope() {
    if (reading_place) reading_place->objects.pop_back();
  }
  ObjectScope(const ObjectScope&) = delete;
  ObjectScope& operator=(const ObjectScope&) = delete;
};

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
    Converted(rows[i].name, value, [&](const Variant& v) {
      rows[i].set(object, v);
      return 0;
    });
  }
}

// The owner writes a count and then child n under `prefix` + n, taken by position.
template <class Collection>
void WriteChildren(const Collection& children, const char* count_name, const std::string& prefix,
                   XMLPropBag& bag) {
  std::int32_t count = children.Count();
  bag.WriteProperty(count_name, Variant(count));
  for (std::int32_t n = 1; n <= count; ++n) {
    bag.WriteProperty(prefix + std::to_string(n), Variant(children.Item(Variant(n))));
  }
}

// Children come back in the order of their numbers: child n is filled from the nested element
// named "<prefix>n", whatever its place in the document; a missing one stays at its defaults.
template <class Child, class Collection>
void ReadChildren(Collection& children, void (Collection::*add)(std::shared_ptr<Child>),
                  const char* count_name, const std::string& prefix, XMLPropBag& bag) {
  const std::int32_t count = Converted(count_name, bag.ReadProperty(count_name, Variant(0)),
                                       [](const Variant& v) { return CLng(v); });
  for (std::int32_t n = 1; n <= count; ++n) {
    std::shared_ptr<Child> child = Child::Create();
    const std::string name = prefix + std::to_string(n);
    const ObjectScope scope(name);
    bag.ReadProperty(name, Variant(child));
    (children.*add)(std::move(child));
  }
}

}  // namespace

void xqb_Query::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(QueryRows(), *this, PropertyBag);
  WriteChildren(*Tables(), "TablesCount", "Table", PropertyBag);
}

void xqb_Query::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(QueryRows(), *this, PropertyBag);
  SetTables(xqb_Tables::Create());
  ReadChildren(*Tables(), &xqb_Tables::AddObjectTable, "TablesCount", "Table", PropertyBag);
}

void xqb_Table::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(TableRows(), *this, PropertyBag);
  WriteChildren(*Fields(), "FieldsCount", "Field", PropertyBag);
}

void xqb_Table::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(TableRows(), *this, PropertyBag);
  SetFields(xqb_Fields::Create());
  ReadChildren(*Fields(), &xqb_Fields::AddObjectField, "FieldsCount", "Field", PropertyBag);
}

void xqb_Field::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(FieldRows(), *this, PropertyBag);
  WriteChildren(*Conditions(), "ConditionsCount", "Condition", PropertyBag);
}

void xqb_Field::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(FieldRows(), *this, PropertyBag);
  SetConditions(xqb_Conditions::Create());
  ReadChildren(*Conditions(), &xqb_Conditions::AddObjectCondition, "ConditionsCount", "Condition",
               PropertyBag);
}

void xqb_Condition::WriteProperties(XMLPropBag& PropertyBag) {
  WriteRows(ConditionRows(), *this, PropertyBag);
}

void xqb_Condition::ReadProperties(XMLPropBag& PropertyBag) {
  ReadRows(ConditionRows(), *this, PropertyBag);
}

void ReadDefinitionThroughBag(std::string_view xml_text, xqb_Query& query,
                              const XMLReadLimits& limits) {
  auto bag = XMLPropBag::Create();
  bag->SetLoadLimits(limits);
  bag->SetContentsForReading(xml_text);
  ReadingPlace place{xml_text, bag.get(), {}};
  struct Leave {
    ~Leave() { reading_place = nullptr; }
  } leave;
  reading_place = &place;
  bag->RestoreState(&query);
}

}  // namespace brix
