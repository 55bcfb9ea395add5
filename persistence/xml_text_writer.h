// Writes a DOM document as text, byte for byte the way the platform's DOM serialises it.
#pragma once

#include <pugixml.hpp>
#include <string>

namespace brix {

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
