// The platform's conversions between variant kinds (CStr, CInt, CLng, CBool, CDbl, CDate ...)
// and its numeric and date tests, for the en-US locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

// Every conversion below works on the variant's simple value: an object converts through its
// default value (91 for Nothing, 438 without one). Null raises 94, arrays raise 13 and error
// values raise 13 (except in CStr).

/// The platform's ordinary string form (CStr): Empty "", Boolean "True"/"False", integers plain,
/// Single with up to 7 and Double/Currency with up to 15 significant digits ("1E+15", "1E-05",
/// negative zero "0"), dates "M/d/yyyy h:mm:ss AM" (date or time alone when the other part is
/// zero). An error value gives "Error n": a run-time error n travelling as 0x800A0000 + n shows
/// n, the missing-argument marker shows 448 ("Named argument not found"), any other code shows
/// itself.
std::string CStr(const Variant& v);

/// The text a value contributes to a string concatenation (the platform's `&`): "" for Null,
/// otherwise `CStr`.
std::string ConcatText(const Variant& v);

/// To a 16-bit Integer: halves round to even; outside -32768..32767 raises 6; text that is not a
/// number raises 13; Null raises 94. Empty is 0, True is -1, a date its day number.
std::int16_t CInt(const Variant& v);

/// To a 32-bit Long, with the same rules as `CInt` for its range.
std::int32_t CLng(const Variant& v);

/// To an unsigned byte 0..255, rounding as `CInt`.
std::uint8_t CByte(const Variant& v);

/// To Boolean: numbers are True when not zero; text "True"/"False" in any letter case (the whole
/// text, no blanks around), "#TRUE#"/"#FALSE#" exactly, or a number. Other text raises 13.
/// Empty is False.
bool CBool(const Variant& v);

/// To Double. Text follows the platform's number syntax (`ParseNumber`); other text raises 13, a
/// number text beyond the range of Double raises 6.
double CDbl(const Variant& v);

/// To Single; raises 6 outside its range.
float CSng(const Variant& v);

/// To Currency, rounding half to even at the fourth decimal; raises 6 outside its range.
Currency CCur(const Variant& v);

/// To Date: a number is a day number (accepted from 1 Jan 100 00:00, -657434, up to
/// 31 Dec 9999 23:59:59, just below 2958466; outside raises 6); text is read by `ParseDate`
/// (raises 13 when it is not a date; a plain number text is not a date). Empty is day 0.
Date CDate(const Variant& v);

/// The platform's numeric test (IsNumeric): numbers, Booleans, Empty and number texts within the
/// range of Double are numeric; dates, Null, error values, objects and arrays are not.
bool IsNumeric(const Variant& v);

/// The platform's date test (IsDate): a Date, or text that `ParseDate` accepts. Numbers are not
/// dates.
bool IsDate(const Variant& v);

/// Reads text with the platform's number syntax: blanks around (space, tab, CR, LF, VT, FF), one
/// sign before or after, parentheses for negatives (without a sign), "$" before or after,
/// thousands separators anywhere in the whole part after its first digit ("1,2,3" is 123, "12,"
/// is 12), one decimal point ("1.", ".5"), an exponent with E or D ("1e5", "1D2", at least one
/// digit), "&H" hex and "&O" octal with an optional sign. Hex and octal read as the platform's
/// literals do: up to 16 bits as an Integer and up to 32 bits as a Long, so "&HFFFF" is -1 and
/// "&H10000" is 65536. A second decimal point is not accepted ("459.." is not a number).
/// `std::nullopt` when the text is not a number; a number beyond the range of Double (or a hex
/// number beyond 32 bits) gives an infinity.
std::optional<double> ParseNumber(std::string_view text);

/// Reads text as the platform's date parser does for en-US, as a day number. Accepted: a date,
/// a time, or a date and a time in either order, blanks around.
/// - Numeric dates M/D/Y with "/", "-", "." or blanks between the numbers; when M/D/Y is no valid
///   date, D/M/Y is tried ("13/5/2010" is 13 May). A first part of 3-4 digits or above 31 makes
///   it Y/M/D ("2010-03-02").
/// - Two numbers: M/D of the current year (D/M when M/D is invalid), or M/Y and Y/M when one part
///   is a year (3-4 digits or above 31), day 1. Two numbers joined by "." are not a date, so a
///   decimal number such as "12.5" stays a number.
/// - An English month name, or its first three or more letters, anywhere, with a day and a
///   year ("05-Mar-2010", "March 5, 2010", "5 March 2010", "2010 Mar 5"), a day alone (current
///   year) or a year alone (day 1); "," only in these forms.
/// - Years of one or two digits: 00-29 are 20xx, 30-99 are 19xx. Years 100..9999.
/// - Times h:mm or h:mm:ss, or an hour followed by AM/PM ("5 PM"); AM/PM in any letter case
///   makes the hour 12-hour (1..12, and 0).
/// Weekday names, fractions of seconds and other words are not accepted. `std::nullopt` when the
/// text is not a date. The current year comes from the library's clock.
std::optional<double> ParseDate(std::string_view text);

/// The platform's `Format(value, pattern)` for date patterns: a date or number is formatted as a
/// day number; text is read as a date, else, when the whole text is a number, as a day number,
/// else returned as it stands. Null and Empty give "". A number outside the date range and an
/// error value give their string form. An empty pattern gives the string form (`CStr`). An
/// object is formatted by its default value (91 for Nothing, 438 without one); arrays raise 13.
std::string Format(const Variant& value, std::string_view pattern);

}  // namespace brix
