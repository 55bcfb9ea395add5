// Day-number dates: parts, weekdays, date arithmetic and the platform's date formatting.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

/// First day of the week for `Weekday`.
enum FirstDayOfWeek : std::int32_t { vbSunday = 1, vbMonday = 2 };

/// Interval of `DateAdd`.
enum class DateInterval { kDay, kMonth, kYear };

struct CivilDate {
  int year = 1899;
  int month = 12;
  int day = 30;
};

/// The day number of a calendar date; months and days out of range carry into the next unit
/// (month 13 is January of the next year, day 0 the last day of the previous month). Years 0-29
/// mean 2000-2029 and 30-99 mean 1930-1999. A result outside 1 Jan 100 .. 31 Dec 9999 raises 6.
double DateSerial(int year, int month, int day);

/// The calendar date of the day part of a day number (a negative number's fraction is a time
/// added forward, so -1.25 is 29 December 1899).
CivilDate ToCivil(double serial);

int Year(double serial);
int Month(double serial);
int Day(double serial);

/// 1..7 counted from `first_day`: with `vbMonday` Monday is 1 and Sunday 7.
int Weekday(double serial, FirstDayOfWeek first_day = vbSunday);

/// Adds `number` (rounded half to even) days, months or years. Months and years keep the time of
/// day and clamp the day to the last day of the target month (31 January + 1 month is 28 or 29
/// February). A result before year 100 or after 9999 raises 5.
double DateAdd(DateInterval interval, double number, double serial);

/// The day part of a day number (the platform's `Int` on a date, correct for the dates >= 0).
double DatePart(double serial);

/// Formats a day number with a date/time pattern as the platform's `Format` does. Tokens are
/// case-insensitive: d dd ddd dddd, m mm mmm mmmm (minutes right after h/hh), yy yyyy, h hh,
/// n nn, s ss, AM/PM and am/pm; other characters are copied. en-US month and day names.
std::string FormatDate(double serial, std::string_view pattern);

/// The platform's `Format(value, pattern)` for date patterns: a date or number is formatted as a
/// day number; text is read as a date, else, when it is a number, as a day number, else returned
/// as it stands; Null gives "".
std::string Format(const Variant& value, std::string_view pattern);

}  // namespace brix
