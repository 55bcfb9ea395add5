// The XML property bag: values to elements and back, and whole object trees saved by class name.
#include "persistence/xml_prop_bag.h"

#include <algorithm>
#include <unordered_map>

#include "persistence/bin_base64.h"
#include "persistence/shared_xml_document.h"
#include "persistence/xml_prop_bag_errors.h"
#include "persistence/xml_read_budget.h"
#include "persistence/xml_text_reader.h"
#include "persistence/xml_text_writer.h"
#include "persistence/xml_tree_walk.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace brix {
namespace {

/// How a value is written, decided in this order: Empty, Null, objects, error values, numbers,
/// dates, text, byte arrays.
enum class ValueKind { kObject, kEmpty, kNull, kNothing, kBytes, kText, kMarkup, kInvalid };

/// A value sorted for writing. A text value is borrowed from the variant being written, which
/// outlives the write; any other string form is made and owned here.
struct ClassifiedValue {
  ClassifiedValue() = default;
  ClassifiedValue(ValueKind k, std::string owned = {},
                  std::shared_ptr<IXMLPropBag> persistable = {})
      : kind(k), owned_text(std::move(owned)), object(std::move(persistable)) {}

  ValueKind kind = ValueKind::kInvalid;
  std::string owned_text;
  std::shared_ptr<IXMLPropBag> object;
  std::optional<std::string_view> borrowed_text;

  std::string_view Text() const { return borrowed_text.value_or(owned_text); }
};

/// The persistence interface of the object `value` refers to, sharing the object's ownership.
std::shared_ptr<IXMLPropBag> PersistableObject(const Variant& value) {
  const std::shared_ptr<Object>& object = value.AsObject();
  IXMLPropBag* persistable = object ? object->PersistenceInterface() : nullptr;
  return persistable ? std::shared_ptr<IXMLPropBag>(object, persistable) : nullptr;
}

[[noreturn]] void RaiseDomError(std::string description) {
  RaiseXMLPropBagError(kErrXMLDomFailure, std::move(description));
}

[[noreturn]] void RaiseUnstorable(const char* character = "U+0000") {
  RaiseDomError(std::string("Text that holds the character ") + character +
                " cannot be stored in an XML document.");
}

/// U+FFFE and U+FFFF (EF BF BE, EF BF BF) are no XML characters, raw or as references: a
/// document holding one would not load again.
void CheckNonCharacter(std::string_view text, std::size_t at) {
  if (at + 2 < text.size() && text[at + 1] == '\xBF' &&
      (static_cast<unsigned char>(text[at + 2]) & 0xFE) == 0xBE) {
    RaiseUnstorable(text[at + 2] == '\xBE' ? "U+FFFE" : "U+FFFF");
  }
}

/// Text goes into a CDATA section when it holds "<" or ">". The document keeps NUL-terminated
/// strings, so a U+0000 would silently cut the text: it is refused in the same pass.
ValueKind TextKind(std::string_view text) {
  bool markup = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\0') RaiseUnstorable();
    if (c == '\xEF') CheckNonCharacter(text, i);
    markup |= c == '<' || c == '>';
  }
  return markup ? ValueKind::kMarkup : ValueKind::kText;
}

ClassifiedValue ClassifyText(std::string text) {
  const ValueKind kind = TextKind(text);
  return {kind, std::move(text), nullptr};
}

ClassifiedValue BorrowedText(std::string_view text) {
  ClassifiedValue value{TextKind(text), {}, nullptr};
  value.borrowed_text = text;
  return value;
}

/// Values whose string form fails (an object without a default value, ...) cannot be written.
ClassifiedValue ClassifyByStringForm(const Variant& value) {
  std::string text;
  try {
    text = CStr(value);
  } catch (const Error&) {
    return {};
  }
  return ClassifyText(std::move(text));
}

ClassifiedValue Classify(const Variant& value) {
  if (value.IsEmpty()) return {ValueKind::kEmpty, {}, nullptr};
  if (value.IsNull()) return {ValueKind::kNull, {}, nullptr};
  if (value.IsObject()) {
    if (value.IsNothing()) return {ValueKind::kNothing, {}, nullptr};
    if (auto object = PersistableObject(value)) return {ValueKind::kObject, {}, std::move(object)};
    return ClassifyByStringForm(value);
  }
  if (value.IsError()) return {};
  // A text is its own string form; numeric and date texts never hold "<" or ">".
  if (value.Type() == vbString) {
    return BorrowedText(value.AsString());
  }
  // Numbers, Booleans, dates and numeric or date texts are written as their string form, which
  // never holds "<" or ">".
  if (IsNumeric(value) || IsDate(value)) return {ValueKind::kText, CStr(value), nullptr};
  if (!value.IsArray()) return ClassifyByStringForm(value);
  return value.IsByteArray() ? ClassifiedValue{ValueKind::kBytes, {}, nullptr} : ClassifiedValue{};
}

void CheckStorable(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) RaiseUnstorable();
}

void CheckElementName(std::string_view name) {
  if (!IsXmlName(name)) RaiseDomError("'" + std::string(name) + "' is not a valid element name.");
}

void SetAttribute(pugi::xml_node element, const char* name, std::string_view value) {
  element.append_attribute(name).set_value(value.data(), value.size());
}

void AppendText(pugi::xml_node element, pugi::xml_node_type type, std::string_view text) {
  element.append_child(type).set_value(text.data(), text.size());
}

std::string NameFilter(std::string_view name) {
  return name.empty() ? std::string() : "[@name=\"" + std::string(name) + "\"]";
}

bool IsText(pugi::xml_node node) {
  const pugi::xml_node_type type = node.type();
  return type == pugi::node_pcdata || type == pugi::node_cdata;
}

/// The text of an element: all text and CDATA below it, in document order, untrimmed (leading
/// text the parser kept in the element itself first).
std::string ElementText(pugi::xml_node element) {
  pugi::xml_node first = element.first_child();
  if (!first) return element.value();
  if (IsText(first) && !first.next_sibling() && !*element.value()) return first.value();
  std::string text = element.value();
  for (pugi::xml_node node = first; node; node = NextInDocumentOrder(node, element)) {
    // Text nodes, and the leading text a parser kept in an element itself.
    if (IsText(node) || node.type() == pugi::node_element) text += node.value();
  }
  return text;
}

/// The element's data type: the value of its "dt" attribute in the datatypes namespace,
/// whatever the prefix. The prefixes are resolved in one walk up the ancestors.
std::string_view DataTypeOf(pugi::xml_node element) {
  std::unordered_map<std::string_view, std::string_view> values_by_prefix;
  for (pugi::xml_attribute attribute : element.attributes()) {
    const std::string_view name = attribute.name();
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos && name.substr(colon + 1) == "dt") {
      values_by_prefix.emplace(name.substr(0, colon), attribute.value());
    }
  }
  for (pugi::xml_node node = element;
       !values_by_prefix.empty() && node.type() == pugi::node_element; node = node.parent()) {
    for (pugi::xml_attribute declaration : node.attributes()) {
      const std::string_view name = declaration.name();
      if (!name.starts_with("xmlns:")) continue;
      auto found = values_by_prefix.find(name.substr(6));
      if (found == values_by_prefix.end()) continue;
      if (std::string_view(declaration.value()) == kDatatypesNamespace) return found->second;
      values_by_prefix.erase(found);  // bound to another namespace here, nearer ones win
    }
  }
  return {};
}

/// Appends an element, its attributes and its text to the DOM, for `WriteValueElement`.
class DomElementSink {
 public:
  explicit DomElementSink(pugi::xml_node parent) : parent_(parent) {}

  void StartElement(std::string_view name) {
    element_ = parent_.append_child(std::string(name).c_str());
  }
  void Attribute(const char* name, std::string_view value) { SetAttribute(element_, name, value); }
  void Text(std::string_view text) { AppendText(element_, pugi::node_pcdata, text); }
  void CData(std::string_view text) { AppendText(element_, pugi::node_cdata, text); }
  void EndElement() {}

  pugi::xml_node Element() const { return element_; }

 private:
  pugi::xml_node parent_;
  pugi::xml_node element_;
};

/// Writes a value that is not an object as an element named `name`, into the DOM or as text.
template <class Sink>
void WriteValueElement(Sink& sink, std::string_view name, const ClassifiedValue& value,
                       const Variant& original) {
  sink.StartElement(name);
  switch (value.kind) {
    case ValueKind::kEmpty:
      sink.Attribute("vartype", "empty");
      break;
    case ValueKind::kNull:
      sink.Attribute("vartype", "null");
      break;
    case ValueKind::kNothing:
      sink.Attribute("vartype", "nothing");
      break;
    case ValueKind::kBytes: {
      sink.Attribute("xmlns:dt", kDatatypesNamespace);
      sink.Attribute("dt:dt", "bin.base64");
      const std::string encoded = EncodeBinBase64(original.AsByteArray());
      if (!encoded.empty()) sink.Text(encoded);
      break;
    }
    case ValueKind::kText:
      // Empty text leaves the element without children, written as <Name/>.
      if (!value.Text().empty()) sink.Text(value.Text());
      break;
    case ValueKind::kMarkup:
      sink.CData(value.Text());
      break;
    default:
      break;
  }
  sink.EndElement();
}

/// Writes a value that is not an object as a child element named `name`: into the text being
/// written when there is one, else under the DOM node `parent()` gives.
template <class Parent>
void WriteValue(XmlTextWriter* stream, Parent parent, std::string_view name,
                const ClassifiedValue& value, const Variant& original) {
  CheckElementName(name);
  if (stream && value.kind == ValueKind::kText) {
    stream->TextElement(name, value.Text());  // most values: one step
  } else if (stream) {
    WriteValueElement(*stream, name, value, original);
  } else {
    DomElementSink sink(parent());
    WriteValueElement(sink, name, value, original);
  }
}

}  // namespace

/// What a bag holds: its current node and document, and what it remembers of its lookups.
struct XMLPropBag::State {
  NodeHold current_;
  std::shared_ptr<SharedDocument> document_;
  // Set while the bag writes text straight from the objects instead of into a document.
  XmlTextWriter* stream_ = nullptr;
  // The whole-document XPath ("//" first) that selected the bag's element, and its selection
  // in the document's index while the index keeps that generation.
  std::string path_ = "//";
  PathSelection* selection_ = nullptr;
  std::uint64_t selection_generation_ = 0;
  // The current node's child elements by name, listed as far as reads have needed while the
  // document keeps its version, so that reading an object's properties visits each child once.
  struct ListedChild {
    std::string_view name;
    pugi::xml_node node;
  };
  std::vector<ListedChild> listed_children_;
  pugi::xml_node listed_parent_;
  pugi::xml_node unlisted_child_;
  std::uint64_t listed_version_ = 0;
  // The bounds of a read: a root bag's own, which nested bags share while it reads.
  XMLReadBudget own_budget_;
  XMLReadBudget* budget_ = &own_budget_;
};

XMLPropBag::XMLPropBag() : state_(std::make_unique<State>()) {}

XMLPropBag::~XMLPropBag() = default;

std::shared_ptr<XMLPropBag> XMLPropBag::Create() {
  return std::shared_ptr<XMLPropBag>(new XMLPropBag());
}

void XMLPropBag::WriteProperty(std::string_view PropertyName, const Variant& PropertyValue,
                               const Variant& /*DefaultValue*/) {
  ClassifiedValue value = Classify(PropertyValue);
  if (value.kind == ValueKind::kInvalid) {
    RaiseXMLPropBagError(kErrInvalidVariantType, "Invalid PropertyValue type.");
  }
  if (value.kind == ValueKind::kObject) {
    CheckStorable(PropertyName);
    WriteObject(PropertyName, *value.object);
    return;
  }
  WriteValue(
      state_->stream_, [this] { return CurrentParent(); }, PropertyName, value, PropertyValue);
}

ElementName::ElementName(std::string_view name) : size_(name.size()) {
  CheckElementName(name);
  tags_.append("<").append(name).append("></").append(name).append(">");
}

void XMLPropBag::WriteText(std::string_view PropertyName, std::string_view text) {
  if (state_->stream_ && TextKind(text) == ValueKind::kText) {
    state_->stream_->TextElement(ElementName(PropertyName).View(), text);
    return;
  }
  WriteValue(
      state_->stream_, [this] { return CurrentParent(); }, PropertyName, BorrowedText(text),
      Variant());
}

void XMLPropBag::WriteText(const ElementName& PropertyName, std::string_view text) {
  if (state_->stream_ && TextKind(text) == ValueKind::kText) {
    state_->stream_->TextElement(PropertyName.StartTag(), text, PropertyName.EndTag());
  } else {
    WriteText(PropertyName.View(), text);
  }
}

// A persistable object becomes an element named by its class with the property name as its
// "name" attribute; its own properties go inside through a bag positioned there.
void XMLPropBag::WriteObject(std::string_view PropertyName, IXMLPropBag& object) {
  const std::string type = object.TypeName();
  CheckElementName(type);
  XMLPropBag nested;
  if (state_->stream_) {
    state_->stream_->StartElement(type);
    state_->stream_->Attribute("name", PropertyName);
    nested.state_->stream_ = state_->stream_;
    object.WriteProperties(nested);
    state_->stream_->EndElement();
    return;
  }
  DomElementSink sink(CurrentParent());
  sink.StartElement(type);
  sink.Attribute("name", PropertyName);
  nested.SetCurrentNode(state_->current_.Owner(), sink.Element());
  object.WriteProperties(nested);
}

pugi::xml_node XMLPropBag::CurrentParent() {
  pugi::xml_node parent = state_->current_.Node();
  if (!parent) RaiseRuntimeError(kErrObjectVariableNotSet);
  state_->current_.Owner()->Changed();
  return parent;
}

Variant XMLPropBag::ReadProperty(std::string_view PropertyName, const Variant& DefaultValue) {
  if (DefaultValue.IsObject() && !DefaultValue.IsNothing()) {
    if (auto object = PersistableObject(DefaultValue)) {
      return ReadObject(PropertyName, *object);
    }
  }
  return ReadValue(PropertyName, DefaultValue);
}

// The selection runs over the whole document from this bag's path, not from the current node:
// with several matching parents the first match in the document wins.
Variant XMLPropBag::ReadObject(std::string_view PropertyName, IXMLPropBag& object) {
  const std::string type = object.TypeName();
  std::string xpath;
  xpath.reserve(state_->path_.size() + type.size() + PropertyName.size() + 14);
  xpath.append(state_->path_).append("/").append(type);
  xpath.append("[@name = \"").append(PropertyName).append("\"]");
  const std::optional<PathSelection*> selection = SelectStep(type, PropertyName, xpath);
  pugi::xml_node element = SelectPath(xpath, selection);
  state_->budget_->TakeObjects(1);  // a missing element still gives the caller's object
  if (element) {
    XMLPropBag nested;
    nested.state_->budget_ = state_->budget_;
    nested.SetCurrentNode(state_->document_, element);
    nested.SetPath(std::move(xpath));
    nested.KeepSelection(selection);
    object.ReadProperties(nested);
  }
  return Variant();
}

// A bag that still holds the index's selection of its own path takes one step from it instead
// of having the whole path parsed and followed again.
std::optional<PathSelection*> XMLPropBag::SelectStep(std::string_view type,
                                                     std::string_view PropertyName,
                                                     const std::string& xpath) const {
  PathIndex& index = RequireDocument().Index();
  if (state_->selection_ && state_->selection_generation_ == index.Generation()) {
    return index.Step(*state_->selection_, {type, PropertyName});
  }
  return index.Select(xpath);
}

/// The first element of an indexed selection, or what XPath selects when the path is not
/// indexable.
pugi::xml_node XMLPropBag::SelectPath(const std::string& xpath,
                                      std::optional<PathSelection*> selection) const {
  if (!selection) return SelectFirstByXPath(RequireDocument().Dom(), xpath);
  return *selection ? PathIndex::First(**selection) : pugi::xml_node();
}

Variant XMLPropBag::ReadValue(std::string_view PropertyName, const Variant& DefaultValue) {
  pugi::xml_node element = SelectChild(PropertyName);
  if (!element) return DefaultValue;
  Variant value = ElementValue(element);
  if (value.IsString()) state_->budget_->CheckValue(value.AsString());
  return value;
}

Variant XMLPropBag::ElementValue(pugi::xml_node element) {
  if (!element.first_attribute()) return Variant(ElementText(element));  // no marker, no type
  if (pugi::xml_attribute vartype = element.attribute("vartype")) {
    const std::string kind = UpperAscii(vartype.value());
    if (kind == "NULL") return Variant::Null();
    if (kind == "EMPTY") return Variant();
    if (kind == "NOTHING") return Variant::Nothing();
  } else if (DataTypeOf(element) == "bin.base64") {
    return Variant(DecodeBinBase64(ElementText(element)));
  }
  return Variant(ElementText(element));
}

// A plain name selects the first child element of that name; anything else goes to XPath.
pugi::xml_node XMLPropBag::SelectChild(std::string_view PropertyName) {
  pugi::xml_node parent = state_->current_.Node();
  if (!parent) RaiseRuntimeError(kErrObjectVariableNotSet);
  if (!IsXmlName(PropertyName)) return SelectFirstByXPath(parent, PropertyName);
  return FindChildElement(parent, PropertyName);
}

pugi::xml_node XMLPropBag::FindChildElement(pugi::xml_node parent, std::string_view name) {
  const std::uint64_t version = state_->current_.Owner()->Version();
  if (parent != state_->listed_parent_ || version != state_->listed_version_) {
    state_->listed_children_.clear();
    state_->listed_children_.reserve(16);  // most objects have fewer properties
    state_->listed_parent_ = parent;
    state_->unlisted_child_ = parent.first_child();
    state_->listed_version_ = version;
  }
  for (const State::ListedChild& child : state_->listed_children_) {
    if (child.name == name) return child.node;
  }
  while (pugi::xml_node child = state_->unlisted_child_) {
    state_->unlisted_child_ = child.next_sibling();
    if (child.type() != pugi::node_element) continue;
    state_->listed_children_.push_back({child.name(), child});
    if (state_->listed_children_.back().name == name) return child;
  }
  return {};
}

void XMLPropBag::SaveState(IXMLPropBag* RootObject, std::string_view sName) {
  if (!RootObject) return;
  if (!state_->document_) state_->document_ = std::make_shared<SharedDocument>();
  SharedDocument& document = *state_->document_;
  pugi::xml_node bag = document.SelectFirst("//PropertyBag");
  if (!bag) {
    if (document.Dom().document_element()) {
      RaiseDomError("Only one top level element is allowed in an XML document.");
    }
    bag = document.Dom().append_child("PropertyBag");
    document.Changed();
  }
  const std::string type = RootObject->TypeName();
  SetPath("//" + type);
  CheckElementName(type);
  CheckStorable(sName);
  pugi::xml_node replaced = document.SelectFirst("//PropertyBag/" + type + NameFilter(sName));
  if (replaced && replaced.parent() != bag) {
    RaiseDomError("The element to replace is not a child of the PropertyBag element.");
  }
  pugi::xml_node element =
      replaced ? bag.insert_child_before(type.c_str(), replaced) : bag.append_child(type.c_str());
  if (!sName.empty()) SetAttribute(element, "name", sName);
  if (replaced) {
    document.Remove(replaced);
  } else {
    document.Changed();
  }
  SetCurrentNode(state_->document_, element);
  RootObject->WriteProperties(*this);
}

std::string XMLPropBag::SaveStateText(IXMLPropBag& RootObject, std::string_view sName,
                                      std::size_t expected_size) {
  const std::string type = RootObject.TypeName();
  CheckElementName(type);
  CheckStorable(sName);
  std::string text;
  text.reserve(expected_size);
  XmlTextWriter writer(text);
  writer.StartElement("PropertyBag");
  writer.StartElement(type);
  if (!sName.empty()) writer.Attribute("name", sName);
  XMLPropBag bag;
  bag.state_->stream_ = &writer;
  RootObject.WriteProperties(bag);
  writer.EndElement();
  writer.EndElement();
  return text;
}

void XMLPropBag::RestoreState(IXMLPropBag* RootObject, std::string_view sName) {
  if (!RootObject) return;
  SetPath("//PropertyBag/" + RootObject->TypeName() + NameFilter(sName));
  const std::optional<PathSelection*> selection = RequireDocument().Index().Select(state_->path_);
  pugi::xml_node element = SelectPath(state_->path_, selection);
  if (!element) return;
  SetCurrentNode(state_->document_, element);
  KeepSelection(selection);
  state_->own_budget_.Restart(state_->own_budget_.Limits());
  RootObject->ReadProperties(*this);
}

const XMLReadLimits& XMLPropBag::LoadLimits() const { return state_->own_budget_.Limits(); }

void XMLPropBag::SetLoadLimits(const XMLReadLimits& value) { state_->own_budget_.Restart(value); }

void XMLPropBag::DeleteObject(std::string_view sTypeName, std::string_view sName) {
  SetPath("//PropertyBag/" + std::string(sTypeName) + NameFilter(sName));
  SharedDocument& document = RequireDocument();
  pugi::xml_node element = document.SelectFirst(state_->path_);
  if (!element) return;
  if (element.parent() != document.SelectFirst("//PropertyBag")) {
    RaiseDomError("The element to delete is not a child of the PropertyBag element.");
  }
  document.Remove(element);
}

std::string XMLPropBag::Contents() const {
  return state_->document_ ? WriteXmlText(state_->document_->Dom()) : std::string();
}

void XMLPropBag::SetContents(std::string_view text) {
  state_->document_ = std::make_shared<SharedDocument>();
  std::string converted;
  ReadXmlText(state_->document_->Dom(), text, false, converted);
}

void XMLPropBag::SetContentsForReading(std::string_view text) {
  state_->document_ = std::make_shared<SharedDocument>();
  std::string converted;
  const std::string_view parsed = ReadXmlText(state_->document_->Dom(), text, true, converted);
  state_->document_->KeepSourceText(parsed, std::move(converted));
}

XMLPropBag::Place XMLPropBag::PlaceOf(std::string_view PropertyName) const {
  Place place;
  pugi::xml_node node = state_->current_.Node();
  if (!node) return place;
  std::vector<std::string_view> names;
  for (; node.parent().type() == pugi::node_element &&
         std::string_view(node.parent().name()) != "PropertyBag";
       node = node.parent()) {
    names.push_back(node.attribute("name").value());
  }
  place.path = node.name();
  for (auto name = names.rbegin(); name != names.rend(); ++name)
    place.path.append("/").append(*name);
  const pugi::xml_node element = state_->current_.Node().child(std::string(PropertyName).c_str());
  const std::string_view text = state_->current_.Owner()->SourceText();
  const std::ptrdiff_t offset = element ? element.offset_debug() : -1;
  if (offset >= 0 && static_cast<std::size_t>(offset) <= text.size()) {
    place.line =
        1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + offset, '\n'));
  }
  return place;
}

const pugi::xml_document* XMLPropBag::Document() const {
  return state_->document_ ? &state_->document_->Dom() : nullptr;
}

void XMLPropBag::SetDocument(const pugi::xml_document* /*document*/) {}

void XMLPropBag::SetCurrentNode(const std::shared_ptr<SharedDocument>& owner,
                                pugi::xml_node element) {
  state_->current_.Set(owner, element);
  state_->document_ = owner;
}

void XMLPropBag::SetPath(std::string xpath) {
  state_->path_ = std::move(xpath);
  state_->selection_ = nullptr;
}

void XMLPropBag::KeepSelection(std::optional<PathSelection*> selection) {
  state_->selection_ = selection.value_or(nullptr);
  if (state_->selection_) state_->selection_generation_ = RequireDocument().Index().Generation();
}

SharedDocument& XMLPropBag::RequireDocument() const {
  if (!state_->document_) RaiseRuntimeError(kErrObjectVariableNotSet);
  return *state_->document_;
}

}  // namespace brix
