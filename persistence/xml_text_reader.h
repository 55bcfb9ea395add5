// Loads XML text into a DOM document, refusing what the platform's parser refuses.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace brix {

/// Parses the document `text` (its encoding read as `DecodeXmlText` reads it; characters XML
/// does not allow refused, see `ForbiddenCharacters`) into `document` with the parser's default
/// options: declarations,
/// comments, processing instructions and whitespace-only text between elements are dropped,
/// CR LF and lone CRs become LF, references are expanded, unknown entity references are kept
/// as they are. Raises `kErrInvalidXMLFile` with the reason and leaves `document` empty: the
/// parser's own text followed by " at line L, column C." (U+0000 gives "An Invalid character
/// was found in text content at ..."), or for a tree the platform refuses "XML document must
/// have a top level element.", "Only one top level element is allowed in an XML document.",
/// "Invalid at the top level of the document." or "Duplicate attribute 'x'.".
/// With `embed_text` an element's leading text is kept as the element's value instead of a
/// text node of its own, which takes a third less memory for documents of short values.
/// Returns the text the parser's offsets (`offset_debug`) count in: a view of `text` past any
/// byte-order mark, or of `converted` when the text had to be converted (UTF-16, 8-bit codes).
std::string_view ReadXmlText(pugi::xml_document& document, std::string_view text, bool embed_text,
                             std::string& converted);

}  // namespace brix
