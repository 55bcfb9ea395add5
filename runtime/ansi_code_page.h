// The system's 8-bit ("ANSI") code page: Windows-1250, the Central European code page.
#pragma once

#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

/// `text` (UTF-8) as Windows-1250 bytes, one byte per character. U+0000..U+007F keep their
/// code; the letters and signs of the code page take their byte (Romanian "ă", "â", "î" and the
/// cedilla forms "ş", "ţ"; the comma-below forms "ș", "ț" are not in the code page); the five
/// unassigned bytes 0x81, 0x83, 0x88, 0x90 and 0x98 stand for U+0081, U+0083, U+0088, U+0090 and
/// U+0098, so that every byte reads back as itself. Any other character, a character outside
/// the Basic Multilingual Plane included, becomes one "?".
ByteArray ToAnsiBytes(std::string_view text);

/// Windows-1250 `bytes` as UTF-8 text: every byte is one character, as the table above reads it.
std::string FromAnsiBytes(std::string_view bytes);

}  // namespace brix
