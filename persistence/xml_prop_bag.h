// A keyed store of named variant values kept as an XML document, and the saving of whole object
// trees into it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "persistence/ixml_prop_bag.h"
#include "persistence/xml_read_limits.h"
#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

class SharedDocument;
struct PathSelection;

/// A valid element name, checked when it is made; raises kErrXMLDomFailure (0x80004005) under
/// the bag's source, "'name' is not a valid element name.", for any other text. It keeps its
/// start and end tags written out, for writers that write the same names many times.
class ElementName {
 public:
  explicit ElementName(std::string_view name);
  std::string_view View() const { return std::string_view(tags_).substr(1, size_); }
  /// "<name>" and "</name>".
  std::string_view StartTag() const { return std::string_view(tags_).substr(0, size_ + 2); }
  std::string_view EndTag() const { return std::string_view(tags_).substr(size_ + 2); }

 private:
  std::string tags_;  // "<name></name>"
  std::size_t size_;
};

/// The XML property bag. A document holds a "PropertyBag" element with one element per saved
/// root object (named by its `TypeName()`, attribute "name" = the instance name when given);
/// under an object element, one element per property in writing order, and one element per
/// nested persistable object (named by its class, attribute "name" = the property name).
///
/// Values are written as: Empty, Null and Nothing as an empty element with attribute "vartype"
/// = "empty", "null" or "nothing"; a byte array as typed "bin.base64" text; a number, Boolean or
/// date, or anything the numeric test accepts, as its string form; any other value with a string
/// form as text, or as a CDATA section when the text holds "<" or ">". Reading gives back
/// strings (types are not restored), Empty, Null, Nothing or byte arrays.
///
/// Errors of the bag carry the source "brixobjects4.kelpXMLPBag". Errors of the document itself
/// (an invalid element name, an XPath expression that does not compile, undecodable Base64 text,
/// U+0000 in a text, a second document element) are `kErrXMLDomFailure` under the same source.
/// Using the bag before it has a document or a current node raises 91.
class XMLPropBag : public Object {
 public:
  static std::shared_ptr<XMLPropBag> Create();
  XMLPropBag(const XMLPropBag&) = delete;
  XMLPropBag& operator=(const XMLPropBag&) = delete;
  ~XMLPropBag() override;

  std::string TypeName() const override { return "XMLPropBag"; }

  /// Appends `PropertyValue` as a child element named `PropertyName` of the current node (a
  /// persistable object as an element named by its class, filled by its `WriteProperties`).
  /// Writing a name twice leaves two elements. `DefaultValue` is accepted and ignored. A value
  /// without a string form (error values, arrays other than byte arrays) raises
  /// -2147191005 "Invalid PropertyValue type." and adds nothing; no current node raises 91.
  void WriteProperty(std::string_view PropertyName, const Variant& PropertyValue,
                     const Variant& DefaultValue = Variant::Missing());

  /// Writes `text` exactly as `WriteProperty(PropertyName, Variant(text))` does, without making
  /// a variant; for writers that hold plain text.
  void WriteText(std::string_view PropertyName, std::string_view text);
  /// The same with a name checked beforehand, for writers that write the same names many times.
  void WriteText(const ElementName& PropertyName, std::string_view text);

  /// With a persistable object as `DefaultValue`: fills that object in place from the first
  /// element in the document at this bag's path with the object's class and "name" =
  /// `PropertyName`, and returns Empty (also when none matches). Otherwise: the value of the
  /// first child of the current node that `PropertyName` selects as an XPath expression (a
  /// plain name is a child element of that name), or `DefaultValue` when there is none; a
  /// selected node that is not an element raises 13. The text of an element is the text of all
  /// its descendants, untrimmed.
  Variant ReadProperty(std::string_view PropertyName,
                       const Variant& DefaultValue = Variant::Missing());

  /// The value `ReadProperty` gives for a property held in `element`.
  static Variant ElementValue(pugi::xml_node element);

  /// Saves `RootObject` (null: nothing happens) as a root element named by its class, replacing
  /// the first saved element of that class (and `sName`, when not empty), then lets the object
  /// write its properties. Creates the document and its "PropertyBag" element on first use.
  void SaveState(IXMLPropBag* RootObject, std::string_view sName = {});

  /// The text that `Contents` gives after `SaveState(&RootObject, sName)` on a new bag, written
  /// straight from the objects without building a document. The objects may only write
  /// properties: a read from the bag while it writes raises 91. `expected_size` reserves room
  /// for the text up front: a large text then grows without being copied.
  static std::string SaveStateText(IXMLPropBag& RootObject, std::string_view sName = {},
                                   std::size_t expected_size = 0);

  /// Positions the bag on the first saved element of `RootObject`'s class (and `sName`, when
  /// not empty) and lets the object read its properties; does nothing when there is none or
  /// `RootObject` is null.
  void RestoreState(IXMLPropBag* RootObject, std::string_view sName = {});

  /// The bounds that each `RestoreState` holds the document to, the nested objects' reads
  /// included (see `XMLReadLimits` for the defaults): past them a read raises kErrLoadLimit.
  const XMLReadLimits& LoadLimits() const;
  void SetLoadLimits(const XMLReadLimits& value);

  /// Removes the first saved element of type `sTypeName` (and `sName`, when not empty); no
  /// match is no error.
  void DeleteObject(std::string_view sTypeName, std::string_view sName = {});

  /// The document as text: no declaration, no whitespace between elements, CR LF after the
  /// document element; "" when the bag has no document.
  std::string Contents() const;

  /// Replaces the document by `text` parsed as XML (UTF-8). Declarations, comments and
  /// processing instructions are dropped, and text made only of whitespace between elements.
  /// Text that does not load, holds U+0000, several top-level elements, text at the top level
  /// or a repeated attribute raises -2147191004 with the reason; the bag then holds an empty
  /// document. The current node and path are kept.
  void SetContents(std::string_view text);

  /// `SetContents` for a document that is only read through this bag: an element's leading text
  /// is kept in the element itself (a third less memory for documents of short values), so an
  /// XPath expression that selects text nodes finds none; `Contents` still gives the text.
  void SetContentsForReading(std::string_view text);

  /// The DOM document, or nullptr when the bag has none.
  const pugi::xml_document* Document() const;
  /// Accepted and ignored: the bag keeps its document.
  void SetDocument(const pugi::xml_document* document);

 private:
  struct State;

  XMLPropBag();

  void SetCurrentNode(const std::shared_ptr<SharedDocument>& owner, pugi::xml_node element);
  void SetPath(std::string xpath);
  void KeepSelection(std::optional<PathSelection*> selection);

  SharedDocument& RequireDocument() const;
  pugi::xml_node CurrentParent();
  void WriteObject(std::string_view PropertyName, IXMLPropBag& object);
  pugi::xml_node SelectPath(const std::string& xpath,
                            std::optional<PathSelection*> selection) const;
  std::optional<PathSelection*> SelectStep(std::string_view type, std::string_view PropertyName,
                                           const std::string& xpath) const;
  Variant ReadObject(std::string_view PropertyName, IXMLPropBag& object);
  Variant ReadValue(std::string_view PropertyName, const Variant& DefaultValue);
  pugi::xml_node SelectChild(std::string_view PropertyName);
  pugi::xml_node FindChildElement(pugi::xml_node parent, std::string_view name);

  std::unique_ptr<State> state_;
};

}  // namespace brix
