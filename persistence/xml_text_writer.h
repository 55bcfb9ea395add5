// Writes a DOM document as text, byte for byte the way the platform's DOM serialises it.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace brix {

/// Writes elements, attributes and text in document order, in the form `WriteXmlText` gives a
/// document, without building one. A start tag stays open until the element gets content or
/// ends, so an element that ends without content is written as `<name/>`.
class XmlTextWriter {
 public:
  explicit XmlTextWriter(std::string& out) : out_(out) {}

  /// Starts an element; `name` must stay valid until the element ends.
  void StartElement(std::string_view name);
  /// An attribute of the element just started.
  void Attribute(std::string_view name, std::string_view value);
  void Text(std::string_view text);
  void CData(std::string_view text);
  /// A whole element holding `text` (or none, written `<name/>`), inside the open element: what
  /// StartElement, Text and EndElement write, in one step.
  void TextElement(std::string_view name, std::string_view text);
  /// The same for an element whose tags are written out: "<name>" and "</name>".
  void TextElement(std::string_view start_tag, std::string_view text, std::string_view end_tag);
  /// Ends the innermost open element; a top-level element is followed by CR LF.
  void EndElement();
  /// How many elements are open.
  std::size_t Depth() const { return open_names_.size(); }

 private:
  void CloseStartTag();

  std::string& out_;
  std::vector<std::string_view> open_names_;
  bool start_tag_open_ = false;
};

/// The text of `document`: each top-level element followed by CR LF, no declaration and no
/// indentation; an element without children as `<name/>`; attributes in their order, in double
/// quotes. Text escapes & < > and writes a LF as CR LF; a CDATA section is written verbatim with
/// LF as CR LF.
///
/// So that every text reads back exactly, characters the parser would alter are written as
/// character references: a CR as "&#13;" (a parser turns CR and CR LF into LF), other control
/// characters except tab and LF as "&#n;", and the first character of a text made only of
/// blanks, tabs and line breaks (a parser drops such text). In attribute values tab, LF and CR
/// are references too. Inside CDATA, such a character closes the section, follows as a
/// reference and a new section continues the content; "]]>" is split the same way, "]]" ending
/// one section and ">" starting the next. Comments and processing instructions are not written.
std::string WriteXmlText(const pugi::xml_document& document);

}  // namespace brix
