// Day-number dates: parts, weekdays, date arithmetic and the platform's date formatting.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

/// First day of the week for `Weekday`; `vbUseSystemDayOfWeek` means Sunday (en-US).
enum FirstDayOfWeek : std::int32_t {
  vbUseSystemDayOfWeek = 0,
  vbSunday = 1,
  vbMonday = 2,
  vbTuesday = 3,
  vbWednesday = 4,
  vbThursday = 5,
  vbFriday = 6,
  vbSaturday = 7,
};

/// Interval of `DateAdd`.
enum class DateInterval { kDay, kMonth, kYear };

/// The first and last day of the date range: 1 January 100 and 31 December 9999.
inline constexpr double kFirstDateSerial = -657434;
inline constexpr double kLastDateSerial = 2958465;

struct CivilDate {
  int year = 1899;
  int month = 12;
  int day = 30;
  friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

/// The day number of a calendar date; months and days out of range carry into the next unit
/// (month 13 is January of the next year, day 0 the last day of the previous month). Years 0-29
/// mean 2000-2029 and 30-99 mean 1930-1999 (before any carry). An argument outside
/// -32768..32767 or a result outside 1 Jan 100 .. 31 Dec 9999 raises 6.
double DateSerial(int year, int month, int day);

/// The day number of a whole day number plus a time of day (0 <= time < 1). Before 30 December
/// 1899 the time is subtracted, since there the sign belongs to the day only: day -1 at 06:00
/// is -1.25.
double CombineDateTime(double day, double time);

/// The calendar date of a day number (a negative number's fraction is a time added forward, so
/// -1.25 is 29 December 1899). The time is rounded to the second, so 23:59:59.6 belongs to the
/// next day. Raises 6 outside 1 Jan 100 .. 31 Dec 9999.
CivilDate ToCivil(double serial);

int Year(double serial);
int Month(double serial);
int Day(double serial);

/// 1..7 counted from `first_day`: with `vbMonday` Monday is 1 and Sunday 7. Raises 5 when
/// `first_day` is outside 0..7.
int Weekday(double serial, FirstDayOfWeek first_day = vbSunday);

/// Adds `number` (rounded half to even; beyond a Long raises 6) days, months or years. Months
/// and years keep the time of day and clamp the day to the last day of the target month
/// (31 January + 1 month is 28 or 29 February). A result before year 100 or after 9999 raises 5.
double DateAdd(DateInterval interval, double number, double serial);

/// The en-US name of a month 1..12 ("January").
std::string_view MonthName(int month);

/// The day part of a day number (the platform's `Int` on a date, correct for the dates >= 0).
double DatePart(double serial);

/// The platform's general date text (the string form of a date): "M/d/yyyy h:mm:ss AM", the date
/// alone when the time is midnight, the time alone when the day is 30 December 1899 (day 0).
std::string GeneralDate(double serial);

/// Formats a day number with a date/time pattern as the platform's `Format` does. Tokens are
/// case-insensitive: d dd ddd dddd, ddddd (short date), dddddd (long date), m mm mmm mmmm
/// (m and mm are minutes when the previous token is h or hh), y (day of the year) yy yyyy,
/// q, w, ww, h hh, n nn, s ss, ttttt (long time), c (general date), and AM/PM, am/pm, A/P, a/p
/// (written as the pattern spells them; any of them makes h and hh a 12-hour clock) or AMPM.
/// `\x` copies x, "text" copies text; every other character is copied. yyyy does not pad years
/// below 1000. en-US names ("Mar", "March", "Tue", "Tuesday"). Only date patterns are known:
/// number placeholders such as 0 and # are copied like any other character.
std::string FormatDate(double serial, std::string_view pattern);

}  // namespace brix
