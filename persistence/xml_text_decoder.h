// The bytes of an XML document as UTF-8 text the parser can take, and the characters XML forbids.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brix {

/// The document `bytes` as UTF-8: UTF-8 (with or without its byte-order mark) as it is; UTF-16
/// with a byte-order mark, or recognised by its first "<", converted; text whose declaration
/// names ISO-8859-1 (Latin-1) or Windows-1250 converted from that code page. Converted text is
/// kept in `storage`. Any other declared encoding raises `kErrInvalidXMLFile` naming it, and so
/// does UTF-16 that is cut short or holds an unpaired surrogate.
std::string_view DecodeXmlText(std::string_view bytes, std::string& storage);

/// Where `text` breaks a rule of XML's characters, with the reason (ending in " at line L,
/// column C."); an empty reason when it breaks none: bytes that are not UTF-8, characters XML
/// does not allow as they stand (U+0000 and the other control characters but tab, line feed and
/// carriage return, surrogates, U+FFFE and U+FFFF), and character references to U+0000, to a
/// surrogate, to U+FFFE or U+FFFF, or past U+10FFFF. References to the other control characters are
/// accepted, as XML 1.1 accepts them: the bag writes control characters that way so that every text
/// reads back. Text inside comments, CDATA sections and processing instructions is not read for
/// references.
std::string ForbiddenCharacters(std::string_view text);

/// " at line L, column C." for byte `offset` of `text` (lines end at LF; columns count bytes).
std::string Location(std::string_view text, std::size_t offset);

}  // namespace brix
