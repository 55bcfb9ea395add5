// Reads a definition document of the usual shape straight from its text: the lexer yields its
// tags and texts one at a time, and each property is matched to its saved row as it comes.
// Anything the lexer or the reader does not know for certain to read as the DOM reads it ends
// the pass, and the caller reads the document the general way.
#include "querybuilder/regular_definition_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "persistence/bin_base64.h"
#include "persistence/xml_lexer.h"
#include "persistence/xml_text_decoder.h"
#include "querybuilder/definition_shape.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

[[noreturn]] void Irregular() { throw IrregularXml{}; }

/// The element a bag's document holds its objects in.
constexpr std::string_view kBagElement = "PropertyBag";

/// The attributes the bag writes on a byte array's element.
constexpr std::array<XmlAttribute, 2> kBinBase64Attributes{
    XmlAttribute{"xmlns:dt", kDatatypesNamespace}, XmlAttribute{"dt:dt", "bin.base64"}};

/// A property's value as the bag reads it: a text (marked or not), or a marker.
struct PropertyValue {
  enum Kind { kText, kMarkedText, kBytes, kEmpty, kNull, kNothing } kind = kText;
  std::string_view text;

  Variant AsVariant() const {
    switch (kind) {
      case kEmpty:
        return Variant();
      case kNull:
        return Variant::Null();
      case kNothing:
        return Variant::Nothing();
      case kBytes:
        return Variant(DecodeBinBase64(text));
      default:
        return Variant(text);
    }
  }
};

/// A text value past the budget's length ends the load, as it would through the bag.
void CheckLength(const PropertyValue& value, const XMLReadBudget& budget) {
  if (value.kind == PropertyValue::kText || value.kind == PropertyValue::kMarkedText) {
    budget.CheckValue(value.text);
  }
}

/// Applies the values of one object's properties in the order of its rows, as the DOM reader
/// does: a row's first element counts, and rows without one get the value of a new object.
template <class T>
class RowFiller {
 public:
  RowFiller(T& object, const std::vector<Row<T>>& rows, const XMLReadBudget& budget)
      : object_(object),
        rows_(rows),
        names_(RowNames(rows)),
        initial_values_(InitialValues(rows)),
        budget_(budget) {
    static_assert(sizeof(seen_) * 8 >= 48, "every row has its bit");
    if (rows.size() > sizeof(seen_) * 8) Irregular();
  }

  /// Takes the element `name` with `value` when it is a row; false when it is none. `is_expected`:
  /// the name is known to be `Expected()`.
  bool Take(std::string_view name, const PropertyValue& value, bool is_expected) {
    const std::size_t row = is_expected && next_ < names_.size() ? next_ : Find(name);
    if (row == rows_.size()) return false;
    const std::uint64_t bit = std::uint64_t{1} << row;
    if (seen_ & bit) return true;
    if (row < next_) Irregular();  // it already has the value of a new object
    for (; next_ < row; ++next_) SetInitial(next_);
    Apply(rows_[row], value);
    seen_ |= bit;
    next_ = row + 1;
    return true;
  }

  /// The name of the row a saved object writes next; empty after the last row.
  std::string_view Expected() const {
    return next_ < names_.size() ? names_[next_].View() : std::string_view();
  }

  /// Gives the rows after the last one taken the value of a new object.
  void Finish() {
    for (; next_ < rows_.size(); ++next_) SetInitial(next_);
  }

 private:
  std::size_t Find(std::string_view name) const {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (name == names_[i].View()) return i;
    }
    return rows_.size();
  }

  void SetInitial(std::size_t row) {
    if (rows_[row].set) rows_[row].set(object_, initial_values_[row]);
  }

  void Apply(const Row<T>& row, const PropertyValue& value) {
    if (!row.set) return;
    CheckLength(value, budget_);
    if (value.kind == PropertyValue::kText && row.set_text) {
      row.set_text(object_, value.text);
    } else {
      row.set(object_, value.AsVariant());
    }
  }

  T& object_;
  const std::vector<Row<T>>& rows_;
  const std::vector<ElementName>& names_;
  const std::vector<Variant>& initial_values_;
  const XMLReadBudget& budget_;
  std::size_t next_ = 0;
  std::uint64_t seen_ = 0;
};

class DefinitionTextReader {
 public:
  DefinitionTextReader(std::string_view text, XMLReadBudget& budget)
      : lexer_(text), budget_(budget) {}

  void ReadDocument(xqb_Query& query) {
    XmlEvent bag;
    lexer_.Next(bag);
    if (bag.name != kBagElement || bag.closed) Irregular();
    bool has_query = false;
    XmlEvent tag;
    while (NextChild(bag, tag)) {
      if (tag.name == DefinitionShape<xqb_Query>::kElement) {
        if (has_query) Irregular();
        has_query = true;
        ReadObject(query, tag);
      } else {
        ReadUnknown(tag);
      }
    }
    lexer_.Next(tag);
    if (!has_query || tag.kind != XmlEvent::kEnd) Irregular();
  }

 private:
  /// Reads the next child element's start tag into `child` and returns true, or the end tag of
  /// `parent` and returns false. Only white space may stand between the children.
  bool NextChild(const XmlEvent& parent, XmlEvent& child, std::string_view expected = {}) {
    if (parent.closed) return false;
    lexer_.Next(child, expected);
    if (child.kind == XmlEvent::kEndTag) return false;
    if (child.kind != XmlEvent::kStartTag) Irregular();
    return true;
  }

  /// The value of a property element whose start tag was read, through its end tag.
  PropertyValue ReadValue(const XmlEvent& tag) {
    PropertyValue value;
    if (tag.attribute_count == 2) {
      if (tag.attributes != kBinBase64Attributes) Irregular();
      value.kind = PropertyValue::kBytes;
    } else if (tag.attribute_count == 1) {
      const XmlAttribute& marker = tag.attributes[0];
      if (marker.name != "vartype") Irregular();
      const std::string kind = UpperAscii(marker.value);
      value.kind = kind == "NULL"      ? PropertyValue::kNull
                   : kind == "EMPTY"   ? PropertyValue::kEmpty
                   : kind == "NOTHING" ? PropertyValue::kNothing
                                       : PropertyValue::kMarkedText;
    }
    if (!tag.closed) value.text = lexer_.TextThroughEnd();  // nested markup ends the pass
    return value;
  }

  /// An element no row reads: skipped when it holds text alone. Markup inside it could hold
  /// another "PropertyBag" path that the bag's document-wide lookups would see.
  void ReadUnknown(const XmlEvent& tag) {
    if (tag.name == kBagElement) Irregular();
    ReadValue(tag);
  }

  /// Reads an object: its rows as they come and, when it owns a collection, its children in the
  /// order of their numbers, then a new collection holding child 1 to the count (a number
  /// without an element gives a child at its defaults).
  template <class T>
  void ReadObject(T& object, const XmlEvent& tag) {
    using Shape = DefinitionShape<T>;
    RowFiller<T> filler(object, Shape::Rows(), budget_);
    if constexpr (OwnsChildren<T>) {
      ReadOwner(object, tag, filler);
    } else {
      XmlEvent child;
      while (NextChild(tag, child, filler.Expected())) {
        const PropertyValue value = ReadValue(child);
        if (!filler.Take(child.name, value, child.expected) && child.name == kBagElement) {
          Irregular();
        }
      }
      filler.Finish();
    }
  }

  template <class T>
  void ReadOwner(T& owner, const XmlEvent& tag, RowFiller<T>& filler) {
    using Shape = DefinitionShape<T>;
    using Child = typename Shape::Child;
    constexpr std::string_view child_element = DefinitionShape<Child>::kElement;
    constexpr ChildNaming naming = Shape::kChildren;
    std::vector<std::shared_ptr<Child>> children;
    std::optional<std::int32_t> count;
    XmlEvent child;
    // A saved object writes its rows, its count, then its children.
    auto expected = [&] {
      const std::string_view row = filler.Expected();
      return !row.empty() ? row : count ? child_element : naming.count_name;
    };
    while (NextChild(tag, child, expected())) {
      if (child.name == child_element) {
        CheckNumber(child, naming.prefix, children.size() + 1);
        budget_.TakeObjects(1);
        children.push_back(Child::Create());
        ReadObject(*children.back(), child);
        continue;
      }
      const PropertyValue value = ReadValue(child);
      if (filler.Take(child.name, value, child.expected)) continue;
      if (child.name == naming.count_name) {
        if (!count) {
          CheckLength(value, budget_);
          count = CLng(value.AsVariant());
        }
      } else if (child.name == kBagElement) {
        Irregular();
      }
    }
    filler.Finish();
    auto collection = Shape::Collection::Create();
    (owner.*Shape::kSetCollection)(collection);
    const std::int32_t number = count.value_or(0);
    // Room for the children read; a count may claim more than the document holds.
    collection->Reserve(std::min(number, static_cast<std::int32_t>(children.size())));
    for (std::int32_t n = 1; n <= number; ++n) {
      if (static_cast<std::size_t>(n) <= children.size()) {
        ((*collection).*Shape::kAdd)(std::move(children[n - 1]));
      } else {
        budget_.TakeObjects(1);
        ((*collection).*Shape::kAdd)(Child::Create());
      }
    }
  }

  /// Child n must be named prefix + n, so that no name repeats and each lookup by name finds
  /// exactly this element.
  static void CheckNumber(const XmlEvent& tag, std::string_view prefix, std::size_t number) {
    if (tag.attribute_count != 1) Irregular();
    const XmlAttribute& attribute = tag.attributes[0];
    if (attribute.name != "name") Irregular();
    const std::string_view name = attribute.value;
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    if (!name.starts_with(prefix) ||
        name.substr(prefix.size()) != std::string_view(digits, end - digits)) {
      Irregular();
    }
  }

  XmlLexer lexer_;
  XMLReadBudget& budget_;
};

}  // namespace

bool ReadRegularDefinition(std::string_view xml_text, xqb_Query& query, XMLReadBudget& budget) {
  try {
    std::string decoded;
    const std::string_view text = DecodeXmlText(xml_text, decoded);
    if (!ForbiddenCharacters(text).empty()) return false;
    DefinitionTextReader(text, budget).ReadDocument(query);
    return true;
  } catch (const IrregularXml&) {
    return false;
  } catch (const Error& error) {
    if (error.Number() == kErrLoadLimit) throw;
    return false;  // the general reading raises it again, with its own context
  }
}

}  // namespace brix
