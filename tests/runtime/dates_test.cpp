// Day-number dates: carries, negative day numbers, month arithmetic, weekdays and Format.
#include "runtime/dates.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "runtime/conversions.h"
#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

constexpr double kMarch1st2010 = 40238;  // a Monday
constexpr double kMarch2nd2010 = 40239;

TEST(DateSerial, CarriesOutOfRangePartsIntoTheNextUnit) {
  // clang-format off
  struct Case { int year, month, day; CivilDate expected; };
  const Case cases[] = {
      {2010, 13, 1,   {2011, 1, 1}},
      {2010, 0,  1,   {2009, 12, 1}},
      {2012, 3,  0,   {2012, 2, 29}},
      {2010, 1,  -31, {2009, 11, 30}},
      {29,   1,  1,   {2029, 1, 1}},  // two-digit years, mapped before any carry
      {30,   1,  1,   {1930, 1, 1}},
      {0,    1,  1,   {2000, 1, 1}},
      {99,   13, 1,   {2000, 1, 1}},
      {100,  1,  1,   {100, 1, 1}},
      {9999, 12, 31,  {9999, 12, 31}},
      {1900, 2,  29,  {1900, 3, 1}},
      {2000, 2,  29,  {2000, 2, 29}},
  };
  // clang-format on
  for (const Case& c : cases) {
    const double serial = DateSerial(c.year, c.month, c.day);
    EXPECT_EQ((CivilDate{Year(serial), Month(serial), Day(serial)}), c.expected) << c.year;
  }
  EXPECT_EQ(DateSerial(1900, 1, 1), 2);
  EXPECT_EQ(DateSerial(2010, 3, 1), kMarch1st2010);
  EXPECT_EQ(Year(2958465.5), 9999);
  EXPECT_EQ(DatePart(kMarch1st2010 + 0.75), kMarch1st2010);
  EXPECT_EQ(DatePart(-1.25), -2);  // the platform's Int, wrong below 0 on purpose
}

TEST(Dates, RaiseOutsideTheDateRange) {
  // clang-format off
  const std::pair<std::int32_t, void (*)()> cases[] = {
      {6,  [] { DateSerial(100, 1, 0); }},
      {6,  [] { DateSerial(9999, 13, 1); }},
      {6,  [] { DateSerial(2010, 40000, 1); }},  // an argument beyond an Integer
      {6,  [] { DateSerial(2010, 1, -40000); }},
      {6,  [] { DateSerial(-1, 1, 1); }},
      {6,  [] { ToCivil(2958466); }},
      {6,  [] { ToCivil(-657435); }},
      {5,  [] { Weekday(0, static_cast<FirstDayOfWeek>(8)); }},
      {5,  [] { DateAdd(DateInterval::kYear, -1, DateSerial(100, 6, 1)); }},
      {5,  [] { DateAdd(DateInterval::kMonth, 1, DateSerial(9999, 12, 1)); }},
      {5,  [] { DateAdd(DateInterval::kDay, 1, 2958465); }},
      {6,  [] { DateAdd(DateInterval::kDay, 1e10, 0); }},
      {13, [] { Format(Variant(ByteArray{1}), "yyyy"); }},
      {91, [] { Format(Variant::Nothing(), "yyyy"); }},
  };
  // clang-format on
  for (const auto& [error, action] : cases) {
    EXPECT_TRUE(test_support::RaisesRuntimeError(action, error));
  }
}

TEST(Weekday, CountsFromTheFirstDayOfTheWeek) {
  EXPECT_EQ(Weekday(kMarch1st2010 + 5), 7);                    // Saturday
  EXPECT_EQ(Weekday(kMarch1st2010, vbUseSystemDayOfWeek), 2);  // as from Sunday
  EXPECT_EQ(Weekday(kMarch1st2010 + 6.9, vbMonday), 7);        // Sunday evening
  EXPECT_EQ(Weekday(-1.25, vbMonday), 5);                      // 29 Dec 1899, a Friday
  EXPECT_EQ(Weekday(kMarch1st2010, vbSaturday), 3);
}

TEST(DateAdd, ClampsToTheLastDayOfTheMonthAndKeepsTheTime) {
  constexpr DateInterval kDay = DateInterval::kDay, kMonth = DateInterval::kMonth,
                         kYear = DateInterval::kYear;
  // clang-format off
  struct Case { DateInterval interval; double number, from, expected; };
  const Case cases[] = {
      {kMonth, 1,   DateSerial(2010, 1, 31), DateSerial(2010, 2, 28)},
      {kMonth, 1,   DateSerial(2012, 1, 31), DateSerial(2012, 2, 29)},
      {kMonth, -3,  DateSerial(2010, 2, 15), DateSerial(2009, 11, 15)},
      {kMonth, 1,   kMarch1st2010 + 0.75,    DateSerial(2010, 4, 1) + 0.75},
      {kMonth, 1.5, kMarch1st2010,           DateSerial(2010, 5, 1)},  // half to even
      {kMonth, 2.5, kMarch1st2010,           DateSerial(2010, 5, 1)},
      {kMonth, -1,  -1.25,                   DateSerial(1899, 11, 29) - 0.25},
      {kYear,  1,   DateSerial(1996, 2, 29), DateSerial(1997, 2, 28)},
      {kDay,   1,   -1.25,                   0.25},  // the time counts forward from day -1
      {kDay,   -2,  0.25,                    -2.25},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_DOUBLE_EQ(DateAdd(c.interval, c.number, c.from), c.expected)
        << GeneralDate(c.from) << " + " << c.number;
  }
}

TEST(FormatDate, WritesPatternTokens) {
  const double morning = kMarch2nd2010 + 9 / 24.0 + 7 / 1440.0;  // Tuesday 9:07 AM
  const double evening = kMarch2nd2010 + (21 * 3600 + 5 * 60 + 3) / 86400.0;
  // clang-format off
  struct Case { double serial; const char *pattern, *expected; };
  const Case cases[] = {
      {kMarch2nd2010,           "dd-MMM-yyyy d-mmm-yy DD YYYYMM", "02-Mar-2010 2-Mar-10 02 201003"},
      {kMarch2nd2010,           "\\d\\d \"yyyy\" x! mmmmm",   "dd yyyy x! March3"},
      {DateSerial(2005, 11, 9), "yy/m/d",                     "05/11/9"},
      {DateSerial(100, 1, 1),   "yyyy",                       "100"},
      {-1.25,                   "dd-MMM-yyyy hh:nn",          "29-Dec-1899 06:00"},
      {morning,                 "HH:MM mm/dd/yyyy hh \\a\\t mm", "09:07 03/02/2010 09 at 07"},
      {morning,                 "h:mm AM/PM",                 "9:07 AM"},
      {evening,                 "hh:nn:ss am/pm",             "09:05:03 pm"},
      {evening,                 "h A/P h AMPM",               "9 P 9 PM"},
      {evening,                 "h:n:s",                      "21:5:3"},
      {kMarch2nd2010,           "h AM/PM",                    "12 AM"},
      {kMarch2nd2010 + 0.5,     "h AM/PM",                    "12 PM"},
      {kMarch2nd2010,           "hh:mm",                      "00:00"},
      {morning,                 "mmmm dddd ddd q y w ww",     "March Tuesday Tue 1 61 3 10"},
      {morning,                 "ddddd dddddd",               "3/2/2010 Tuesday, March 2, 2010"},
      {morning,                 "ttttt c",                    "9:07:00 AM 3/2/2010 9:07:00 AM"},
      {DateSerial(2010, 1, 2),  "ww",                         "1"},
      {DateSerial(2010, 1, 3),  "ww",                         "2"},  // weeks start on Sunday
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(FormatDate(c.serial, c.pattern), c.expected) << c.pattern;
}

}  // namespace
}  // namespace brix
