// The platform's conversions between variant kinds (CStr, CInt, CLng, CBool, CDbl, CDate ...)
// and its numeric and date tests, for the en-US locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

/// The platform's ordinary string form (CStr): Empty "", Boolean "True"/"False", integers plain,
/// Single with up to 7 and Double/Currency with up to 15 significant digits ("1E+15", "1E-05"),
/// dates "M/d/yyyy h:mm:ss AM" (date or time alone when the other part is zero), error values
/// "Error n". Raises 94 for Null, 91 for Nothing, 438 for an object without a default value and
/// 13 for arrays.
std::string CStr(const Variant& v);

/// The text a value contributes to a string concatenation (the platform's `&`): "" for Null,
/// otherwise `CStr`.
std::string ConcatText(const Variant& v);

/// To a 16-bit Integer: halves round to even; outside -32768..32767 raises 6; text that is not a
/// number raises 13; Null raises 94.
std::int16_t CInt(const Variant& v);

/// To a 32-bit Long, with the same rules as `CInt` for its range.
std::int32_t CLng(const Variant& v);

/// To an unsigned byte 0..255, rounding as `CInt`.
std::uint8_t CByte(const Variant& v);

/// To Boolean: numbers are True when not zero; text "True"/"False" in any letter case,
/// "#TRUE#"/"#FALSE#", or a number. Other text raises 13; Null raises 94.
bool CBool(const Variant& v);

/// To Double. Text follows the platform's number syntax; other text raises 13.
double CDbl(const Variant& v);

/// To Single; raises 6 outside its range.
float CSng(const Variant& v);

/// To Currency; raises 6 outside its range.
Currency CCur(const Variant& v);

/// To Date: a number is a day number (outside -657434..2958466 raises 6); text is read as a date
/// or time in the en-US forms (raises 13 when it is not one; a plain number text is not a date).
Date CDate(const Variant& v);

/// The platform's numeric test (IsNumeric): numbers, Booleans, Empty and number texts are
/// numeric; dates, Null, error values, objects and arrays are not.
bool IsNumeric(const Variant& v);

/// The platform's date test (IsDate): a Date, or text that `CDate` accepts.
bool IsDate(const Variant& v);

/// Reads text with the platform's number syntax (blanks around, one sign before or after,
/// parentheses for negatives, "$", thousands separators after the first digit, one decimal
/// point, an exponent, "&H" hex and "&O" octal). `std::nullopt` when the text is not a number.
std::optional<double> ParseNumber(std::string_view text);

/// Reads text as the platform's date parser does for en-US (month/day/year order first, month
/// names and abbreviations, two-digit years 00-29 as 20xx, times with AM/PM). `std::nullopt`
/// when it is not a date.
std::optional<double> ParseDate(std::string_view text);

/// Rounds half to even, as the platform's integer conversions do.
double RoundHalfEven(double value);

}  // namespace brix
