// Text helpers with the platform's rules: blanks-only trimming, case folding for keys, UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace brix {

/// Removes leading and trailing blanks (U+0020 only; tabs and line breaks stay), as `Trim`.
std::string_view TrimBlanks(std::string_view text);

/// Upper-cases ASCII letters only.
std::string UpperAscii(std::string_view text);

/// A case-folded form of `text` for case-insensitive key comparison: letters of Latin-1,
/// Latin Extended-A/B (Romanian letters included), Greek and Cyrillic fold to lower case.
std::string FoldCase(std::string_view text);

/// Replaces every occurrence of `what` in `text` by `with`, left to right, in one pass.
std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with);

/// Whether every byte of `text` is ASCII (below 0x80).
bool IsAscii(std::string_view text);

/// Appends the UTF-8 form of the code point `cp` to `out`.
void EncodeUtf8(char32_t cp, std::string& out);

/// UTF-8 to UTF-16; invalid bytes become U+FFFD.
std::u16string ToUtf16(std::string_view text);
/// UTF-16 to UTF-8; unpaired surrogates become U+FFFD.
std::string ToUtf8(std::u16string_view text);

/// Compares two UTF-8 texts in the order of their UTF-16 code units: <0, 0 or >0.
int CompareUtf16Order(std::string_view a, std::string_view b);

}  // namespace brix
