// Reads a definition document of the usual shape straight from its text: one pass over the
// characters builds the objects, each property matched to its saved row as it comes. Anything
// the pass does not know for certain to read as the DOM reads it ends the pass, and the caller
// reads the document the general way.
#include "querybuilder/regular_definition_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "persistence/bin_base64.h"
#include "persistence/xml_markup_check.h"
#include "persistence/xml_text_decoder.h"
#include "querybuilder/definition_shape.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

/// Raised inside the reader when the text leaves the shape it reads.
struct IrregularShape {};

[[noreturn]] void Irregular() { throw IrregularShape{}; }

// Classes of the bytes the reader meets, looked up in one table: the reader's loops run over
// every character of the document.
enum CharacterClass : std::uint8_t {
  kSpace = 1,
  kNameStart = 2,
  kNameChar = 4,
  kDecoded = 8,   // changed by the parser in character data: "&" and CR
  kBracket = 16,  // "]", which may begin a "]]>" that text must not hold
  kInValue = 32,  // "<" and "&", which an attribute value may not hold as they stand
};

constexpr std::array<std::uint8_t, 256> kClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (const char c : {' ', '\t', '\n', '\r'}) classes[static_cast<unsigned char>(c)] |= kSpace;
  for (int c = 0; c < 256; ++c) {
    const bool start = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':';
    if (start) classes[c] |= kNameStart | kNameChar;
    if ((c >= '0' && c <= '9') || c == '-' || c == '.') classes[c] |= kNameChar;
  }
  classes['&'] |= kDecoded;
  classes['\r'] |= kDecoded;
  classes[']'] |= kBracket;
  classes['<'] |= kInValue;
  classes['&'] |= kInValue;
  return classes;
}();

constexpr bool Is(char c, CharacterClass character_class) {
  return kClasses[static_cast<unsigned char>(c)] & character_class;
}

/// Whether the `size` bytes at `a` and `b` are the same, compared eight at a time in place (the
/// names compared are short, and a call to memcmp costs more than they do).
inline bool SameBytes(const char* a, const char* b, std::size_t size) {
  for (; size >= 8; a += 8, b += 8, size -= 8) {
    std::uint64_t x, y;
    std::memcpy(&x, a, 8);
    std::memcpy(&y, b, 8);
    if (x != y) return false;
  }
  for (; size > 0; --size) {
    if (*a++ != *b++) return false;
  }
  return true;
}

/// An attribute as it stands in the text.
struct Attribute {
  std::string_view name;
  std::string_view value;
  bool operator==(const Attribute&) const = default;
};

/// A start tag: its name, its first two attributes, and whether it closes itself.
struct StartTag {
  std::string_view name;
  bool expected = false;  // the name is the one the reader expected
  std::array<Attribute, 2> attributes{};
  std::size_t attribute_count = 0;
  bool closed = false;

  /// The attribute when it is the only one; an empty one when there is none.
  const Attribute& OnlyAttribute() const {
    if (attribute_count > 1) Irregular();
    return attributes[0];
  }
};

/// The attributes the bag writes on a byte array's element.
constexpr std::array<Attribute, 2> kBinBase64Attributes{Attribute{"xmlns:dt", kDatatypesNamespace},
                                                        Attribute{"dt:dt", "bin.base64"}};

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

/// The character a reference stands for ("lt", "#38", "#x26" between "&" and ";"). References
/// the parser would keep as they stand, or read otherwise, end the pass.
std::uint32_t ReferencedCharacter(std::string_view reference) {
  if (reference == "lt") return '<';
  if (reference == "gt") return '>';
  if (reference == "amp") return '&';
  if (reference == "apos") return '\'';
  if (reference == "quot") return '"';
  if (reference.size() < 2 || reference[0] != '#') Irregular();
  const bool hex = reference[1] == 'x';
  const std::string_view digits = reference.substr(hex ? 2 : 1);
  if (digits.empty() || digits.size() > 7) Irregular();
  std::uint32_t value = 0;
  for (const char c : digits) {
    std::uint32_t digit;
    if (c >= '0' && c <= '9') {
      digit = static_cast<std::uint32_t>(c - '0');
    } else if (hex && c >= 'a' && c <= 'f') {
      digit = static_cast<std::uint32_t>(c - 'a' + 10);
    } else if (hex && c >= 'A' && c <= 'F') {
      digit = static_cast<std::uint32_t>(c - 'A' + 10);
    } else {
      Irregular();
    }
    value = value * (hex ? 16 : 10) + digit;
  }
  // The character check before the pass refused U+0000, surrogates and values past U+10FFFF.
  if (value == 0 || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) Irregular();
  return value;
}

/// Appends `raw` as the parser reads it: CR LF and lone CRs become LF, and in character data
/// (not in CDATA sections) references are expanded.
void AppendDecoded(std::string_view raw, bool character_data, std::string& out) {
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c == '\r') {
      out += '\n';
      if (i + 1 < raw.size() && raw[i + 1] == '\n') ++i;
    } else if (c == '&' && character_data) {
      const std::size_t semicolon = raw.find(';', i + 1);
      if (semicolon == std::string_view::npos) Irregular();
      EncodeUtf8(ReferencedCharacter(raw.substr(i + 1, semicolon - i - 1)), out);
      i = semicolon;
    } else {
      out += c;
    }
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
      : at_(text.data()), end_(text.data() + text.size()), budget_(budget) {}

  void ReadDocument(xqb_Query& query) {
    Take("\xEF\xBB\xBF");
    if (Take("<?xml")) SkipDeclaration();  // the parser drops it
    SkipSpace();
    Expect('<');  // other processing instructions are left to the general reading
    StartTag bag;
    ReadStartTag(bag);
    if (bag.name != "PropertyBag" || bag.closed) Irregular();
    bool has_query = false;
    StartTag tag;
    while (NextChild(bag, tag)) {
      if (tag.name == DefinitionShape<xqb_Query>::kElement) {
        if (has_query) Irregular();
        has_query = true;
        ReadObject(query, tag);
      } else {
        ReadUnknown(tag);
      }
    }
    SkipSpace();
    if (!has_query || at_ != end_) Irregular();
  }

 private:
  // --- characters and tags ---

  // The loops below move a local copy of the position, which the compiler keeps in a register.
  void SkipSpace() {
    const char* at = at_;
    while (at < end_ && Is(*at, kSpace)) ++at;
    at_ = at;
  }

  bool Take(std::string_view text) {
    if (static_cast<std::size_t>(end_ - at_) < text.size() ||
        !SameBytes(at_, text.data(), text.size())) {
      return false;
    }
    at_ += text.size();
    return true;
  }

  bool Take(char c) {
    if (at_ == end_ || *at_ != c) return false;
    ++at_;
    return true;
  }

  void Expect(char c) {
    if (at_ == end_ || *at_ != c) Irregular();
    ++at_;
  }

  const char* Find(char c) const {
    const void* found = std::memchr(at_, c, static_cast<std::size_t>(end_ - at_));
    if (!found) Irregular();
    return static_cast<const char*>(found);
  }

  const char* Find(std::string_view text) const {
    const std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
    const std::size_t found = rest.find(text);
    if (found == std::string_view::npos) Irregular();
    return at_ + found;
  }

  /// An ASCII name; any other name ends the pass.
  std::string_view Name() {
    const char* start = at_;
    if (start == end_ || !Is(*start, kNameStart)) Irregular();
    const char* at = start + 1;
    while (at < end_ && Is(*at, kNameChar)) ++at;
    at_ = at;
    return {start, static_cast<std::size_t>(at - start)};
  }

  /// The XML declaration after its "<?xml": only at the very start, beginning with the version.
  void SkipDeclaration() {
    if (at_ == end_ || !Is(*at_, kSpace)) Irregular();
    SkipSpace();
    if (!Take("version")) Irregular();
    at_ = Find("?>") + 2;
  }

  /// The tag after its "<": a name and at most two attributes (more are left to the general
  /// reading, which checks that names do not repeat).
  void ReadStartTag(StartTag& tag, std::string_view expected = {}) {
    // A saved document names its elements in a known order: trying the expected name first
    // spares scanning the name and looking it up.
    const std::size_t size = expected.size();
    tag.expected = size != 0 && static_cast<std::size_t>(end_ - at_) > size &&
                   SameBytes(at_, expected.data(), size) && !Is(at_[size], kNameChar);
    if (tag.expected) {
      tag.name = {at_, size};
      at_ += size;
    } else {
      tag.name = Name();
    }
    tag.attribute_count = 0;
    tag.closed = false;
    if (Take('>')) return;
    for (;;) {
      const char* before = at_;
      SkipSpace();
      if (Take("/>")) {
        tag.closed = true;
        return;
      }
      if (Take('>')) return;
      if (at_ == before || tag.attribute_count == tag.attributes.size()) Irregular();
      Attribute& attribute = tag.attributes[tag.attribute_count++];
      attribute.name = Name();
      SkipSpace();
      Expect('=');
      SkipSpace();
      if (at_ == end_ || (*at_ != '"' && *at_ != '\'')) Irregular();
      const char quote = *at_++;
      const char* close = Find(quote);
      attribute.value = {at_, static_cast<std::size_t>(close - at_)};
      CheckAttributeValue(attribute.value);
      at_ = close + 1;
      // A repeated name makes the document malformed: the general reading refuses it.
      if (tag.attribute_count == 2 && tag.attributes[0].name == attribute.name) Irregular();
    }
  }

  /// Values hold no "<", and only references XML defines (the reader uses none of them as
  /// text: those it reads hold none).
  static void CheckAttributeValue(std::string_view value) {
    std::uint8_t any_classes = 0;  // one pass over the short value instead of two searches
    for (const char c : value) any_classes |= kClasses[static_cast<unsigned char>(c)];
    if (!(any_classes & kInValue)) return;
    if (value.find('<') != std::string_view::npos) Irregular();
    for (std::size_t amp = value.find('&'); amp != std::string_view::npos;
         amp = value.find('&', amp + 1)) {
      const std::size_t semicolon = value.find(';', amp);
      if (semicolon == std::string_view::npos ||
          !IsDefinedReference(value.substr(amp + 1, semicolon - amp - 1))) {
        Irregular();
      }
    }
  }

  /// Reads the end tag of `name` after its "</".
  void ReadEndTag(std::string_view name) {
    if (static_cast<std::size_t>(end_ - at_) < name.size() ||
        !SameBytes(at_, name.data(), name.size())) {
      Irregular();
    }
    at_ += name.size();
    SkipSpace();
    Expect('>');
  }

  /// Reads the next child element's start tag into `child` and returns true, or reads the end
  /// tag of `parent` and returns false. Only white space may stand between the children.
  bool NextChild(const StartTag& parent, StartTag& child, std::string_view expected = {}) {
    if (parent.closed) return false;
    SkipSpace();
    Expect('<');
    if (Take('/')) {
      ReadEndTag(parent.name);
      return false;
    }
    ReadStartTag(child, expected);
    return true;
  }

  // --- values ---

  /// The value of a property element whose start tag was read, through its end tag.
  PropertyValue ReadValue(const StartTag& tag) {
    PropertyValue value;
    if (tag.attribute_count == 2) {
      if (tag.attributes != kBinBase64Attributes) Irregular();
      value.kind = PropertyValue::kBytes;
    } else if (tag.attribute_count == 1) {
      const Attribute& marker = tag.attributes[0];
      // The parser turns white space in values into blanks and expands references.
      if (marker.name != "vartype" ||
          marker.value.find_first_of("&\t\n\r") != std::string_view::npos) {
        Irregular();
      }
      const std::string kind = UpperAscii(marker.value);
      value.kind = kind == "NULL"      ? PropertyValue::kNull
                   : kind == "EMPTY"   ? PropertyValue::kEmpty
                   : kind == "NOTHING" ? PropertyValue::kNothing
                                       : PropertyValue::kMarkedText;
    }
    if (!tag.closed) value.text = ReadContent(tag.name);
    return value;
  }

  /// The text of an element's content: its character data and CDATA sections in order, white
  /// space alone between them dropped, as the parser reads them. Nested markup ends the pass.
  std::string_view ReadContent(std::string_view name) {
    std::string_view single;
    bool in_scratch = false;
    auto add = [&](std::string_view raw, bool character_data, bool plain) {
      if (!in_scratch && single.empty() && plain) {
        single = raw;
        return;
      }
      if (!in_scratch) scratch_.assign(single);
      in_scratch = true;
      if (plain) {
        scratch_.append(raw);
      } else {
        AppendDecoded(raw, character_data, scratch_);
      }
    };
    for (;;) {
      // One pass finds the next markup and what the parser would change on the way.
      const char* start = at_;
      const char* at = start;
      std::uint8_t all_classes = kSpace;  // kSpace stays while every character is white space
      std::uint8_t any_classes = 0;
      while (at < end_ && *at != '<') {
        const std::uint8_t classes = kClasses[static_cast<unsigned char>(*at++)];
        all_classes &= classes;
        any_classes |= classes;
      }
      if (at == end_) Irregular();
      if ((any_classes & kBracket) &&
          std::string_view(start, static_cast<std::size_t>(at - start)).find("]]>") !=
              std::string_view::npos) {
        Irregular();  // not XML: the general reading refuses it
      }
      if (!(all_classes & kSpace)) {
        add({start, static_cast<std::size_t>(at - start)}, true, !(any_classes & kDecoded));
      }
      at_ = at + 1;
      if (Take('/')) {
        ReadEndTag(name);
        break;
      }
      if (!Take("![CDATA[")) Irregular();
      const std::string_view section(at_, static_cast<std::size_t>(Find("]]>") - at_));
      add(section, false, section.find('\r') == std::string_view::npos);
      at_ += section.size() + 3;
    }
    return in_scratch ? std::string_view(scratch_) : single;
  }

  /// An element no row reads: skipped when it holds text alone. Markup inside it could hold
  /// another "PropertyBag" path that the bag's document-wide lookups would see.
  void ReadUnknown(const StartTag& tag) {
    if (tag.name == "PropertyBag") Irregular();
    ReadValue(tag);
  }

  // --- objects ---

  /// Reads an object: its rows as they come and, when it owns a collection, its children in the
  /// order of their numbers, then a new collection holding child 1 to the count (a number
  /// without an element gives a child at its defaults).
  template <class T>
  void ReadObject(T& object, const StartTag& tag) {
    using Shape = DefinitionShape<T>;
    RowFiller<T> filler(object, Shape::Rows(), budget_);
    if constexpr (OwnsChildren<T>) {
      ReadOwner(object, tag, filler);
    } else {
      StartTag child;
      while (NextChild(tag, child, filler.Expected())) {
        const PropertyValue value = ReadValue(child);
        if (!filler.Take(child.name, value, child.expected) && child.name == "PropertyBag") {
          Irregular();
        }
      }
      filler.Finish();
    }
  }

  template <class T>
  void ReadOwner(T& owner, const StartTag& tag, RowFiller<T>& filler) {
    using Shape = DefinitionShape<T>;
    using Child = typename Shape::Child;
    constexpr std::string_view child_element = DefinitionShape<Child>::kElement;
    constexpr ChildNaming naming = Shape::kChildren;
    std::vector<std::shared_ptr<Child>> children;
    std::optional<std::int32_t> count;
    StartTag child;
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
      } else if (child.name == "PropertyBag") {
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
  static void CheckNumber(const StartTag& tag, std::string_view prefix, std::size_t number) {
    const Attribute& attribute = tag.OnlyAttribute();
    if (attribute.name != "name") Irregular();
    const std::string_view name = attribute.value;
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    if (!name.starts_with(prefix) ||
        name.substr(prefix.size()) != std::string_view(digits, end - digits)) {
      Irregular();
    }
  }

  const char* at_;
  const char* end_;
  XMLReadBudget& budget_;
  std::string scratch_;  // a value that had to be decoded, until the next one
};

}  // namespace

bool ReadRegularDefinition(std::string_view xml_text, xqb_Query& query, XMLReadBudget& budget) {
  try {
    std::string decoded;
    const std::string_view text = DecodeXmlText(xml_text, decoded);
    if (!ForbiddenCharacters(text).empty()) return false;
    DefinitionTextReader(text, budget).ReadDocument(query);
    return true;
  } catch (const IrregularShape&) {
    return false;
  } catch (const Error& error) {
    if (error.Number() == kErrLoadLimit) throw;
    return false;  // the general reading raises it again, with its own context
  }
}

}  // namespace brix
