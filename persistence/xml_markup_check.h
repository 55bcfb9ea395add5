// The rules of XML's markup that a lenient parser lets pass: what is checked before a document
// is parsed, so that text that is not XML is refused whichever way it is read.
#pragma once

#include <string>
#include <string_view>

namespace brix {

/// Where `text` (UTF-8 whose characters `ForbiddenCharacters` accepted) breaks a rule of XML's
/// markup, with the reason (ending in " at line L, column C."); an empty reason when it breaks
/// none of these:
/// - "&" begins one of the five predefined references or a character reference ("&#" digits
///   ";" or "&#x" hexadecimal digits ";"), in text and in attribute values;
/// - "]]>" stands in no text outside CDATA sections; "<" in no attribute value;
/// - a comment holds no "--" before its end;
/// - the XML declaration stands only at the very start and begins with its version, and no
///   other processing instruction is named "xml" in any letter case;
/// - one DOCTYPE at most, before the first element; no other markup declaration outside it;
/// - element, attribute and processing instruction names are XML names.
/// Structure (tags that do not match, markup cut short) is left to the parser: the check stops
/// where markup does not end.
std::string MalformedMarkup(std::string_view text);

/// Whether `reference` (the text between "&" and ";") is one that XML defines.
bool IsDefinedReference(std::string_view reference);

}  // namespace brix
