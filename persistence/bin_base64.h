// The text form of the DOM's "bin.base64" typed value: bytes to Base64 text and back.
#pragma once

#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

/// The namespace whose "dt" attribute gives an element's data type ("bin.base64").
inline constexpr const char* kDatatypesNamespace = "urn:schemas-microsoft-com:datatypes";

/// Base64 with the standard alphabet and "=" padding, broken into lines of 72 characters by a
/// LF (no LF after the last line), as the DOM lays out its typed values.
std::string EncodeBinBase64(const ByteArray& bytes);

/// Decodes Base64 text, skipping blanks, tabs, CRs and LFs anywhere. Padding is optional, but
/// when present it ends the text. Raises `kErrXMLDomFailure` for any other character, for data
/// after padding and for a last group of a single character.
ByteArray DecodeBinBase64(std::string_view text);

}  // namespace brix
