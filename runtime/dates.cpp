// Day-number dates: the proleptic Gregorian calendar from 1 Jan 100 to 31 Dec 9999, date
// arithmetic and the platform's date formatting (en-US).
#include "runtime/dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/rounding.h"

namespace brix {
namespace {

constexpr auto kFirstDay = static_cast<std::int64_t>(kFirstDateSerial);
constexpr auto kLastDay = static_cast<std::int64_t>(kLastDateSerial);
constexpr std::int64_t kSecondsPerDay = 86400;
// Days from 1 Jan 1970 back to day 0, 30 Dec 1899.
constexpr std::int64_t kUnixEpochDay = 25569;

constexpr std::array<std::string_view, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<std::string_view, 7> kDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) { return a / b - (a % b != 0 && (a < 0)); }

// Day number of a proleptic Gregorian date; the day carries (0 is the last day of the month
// before). `year` stays within the calendar's reach (+-32767), which covers every argument the
// date functions accept once their results are checked against the date range.
std::int64_t DaysFromCivil(std::int64_t year, int month, std::int64_t day) {
  using namespace std::chrono;
  const sys_days first{year_month_day{std::chrono::year{static_cast<int>(year)},
                                      std::chrono::month{static_cast<unsigned>(month)},
                                      std::chrono::day{1}}};
  return first.time_since_epoch().count() + day - 1 + kUnixEpochDay;
}

CivilDate CivilFromDays(std::int64_t serial_day) {
  using namespace std::chrono;
  const year_month_day date{sys_days{days{serial_day - kUnixEpochDay}}};
  return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day()))};
}

int DaysInMonth(std::int64_t year, int month) {
  using namespace std::chrono;
  const year_month_day_last last{std::chrono::year{static_cast<int>(year)},
                                 month_day_last{std::chrono::month{static_cast<unsigned>(month)}}};
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

// A day number as its whole day (the sign belongs to the day) and its time of day.
struct DayAndTime {
  std::int64_t day;
  double time;
};

DayAndTime SplitExact(double serial) {
  if (!(serial > kFirstDay - 1 && serial < kLastDay + 1)) RaiseRuntimeError(kErrOverflow);
  double day = std::trunc(serial);
  return {static_cast<std::int64_t>(day), std::fabs(serial - day)};
}

// The calendar parts of a day number, the time rounded to the second.
struct DateTimeParts {
  std::int64_t day;
  CivilDate date;
  int hour;
  int minute;
  int second;
  int DayOfWeek() const { return static_cast<int>((day % 7 + 13) % 7); }  // 0 = Sunday
};

DateTimeParts Split(double serial) {
  DayAndTime exact = SplitExact(serial);
  std::int64_t seconds = std::llround(exact.time * kSecondsPerDay);
  std::int64_t day = exact.day;
  if (seconds >= kSecondsPerDay) {  // rounds up to the next midnight
    seconds -= kSecondsPerDay;
    ++day;
  }
  auto s = static_cast<int>(seconds);
  return {day, CivilFromDays(day), s / 3600, s / 60 % 60, s % 60};
}

std::string TwoDigits(int value) {
  std::string text = std::to_string(value);
  return text.size() < 2 ? "0" + text : text;
}

int TwelveHour(int hour) { return hour % 12 == 0 ? 12 : hour % 12; }

std::string ShortDate(const DateTimeParts& p) {
  return std::to_string(p.date.month) + "/" + std::to_string(p.date.day) + "/" +
         std::to_string(p.date.year);
}

std::string LongDate(const DateTimeParts& p) {
  return std::string(kDayNames[p.DayOfWeek()]) + ", " + std::string(kMonthNames[p.date.month - 1]) +
         " " + std::to_string(p.date.day) + ", " + std::to_string(p.date.year);
}

std::string LongTime(const DateTimeParts& p) {
  return std::to_string(TwelveHour(p.hour)) + ":" + TwoDigits(p.minute) + ":" +
         TwoDigits(p.second) + (p.hour < 12 ? " AM" : " PM");
}

std::string General(const DateTimeParts& p) {
  bool has_time = p.hour != 0 || p.minute != 0 || p.second != 0;
  if (p.day == 0) return LongTime(p);
  if (!has_time) return ShortDate(p);
  return ShortDate(p) + " " + LongTime(p);
}

int DayOfYear(const DateTimeParts& p) {
  return static_cast<int>(p.day - DaysFromCivil(p.date.year, 1, 1)) + 1;
}

enum class Field {
  kLiteral,
  kDay,
  kDay2,
  kDayAbbreviation,
  kDayName,
  kShortDate,
  kLongDate,
  kMonth,
  kMonth2,
  kMonthAbbreviation,
  kMonthName,
  kDayOfYear,
  kYear2,
  kYear4,
  kQuarter,
  kWeekday,
  kWeekOfYear,
  kHour,
  kHour2,
  kMinute,
  kMinute2,
  kSecond,
  kSecond2,
  kHalfDay,  // text holds the pattern's own morning and afternoon spellings
  kLongTime,
  kGeneral,
};

struct PatternToken {
  Field field;
  std::string text;  // literal text, or "AM" and "PM" joined by '/' for kHalfDay
};

bool StartsWithNoCase(std::string_view text, std::size_t pos, std::string_view prefix) {
  if (text.size() - pos < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    char c = text[pos + i];
    if ((c >= 'A' && c <= 'Z' ? c + 32 : c) != prefix[i]) return false;
  }
  return true;
}

// Splits a pattern into fields and literal text. Letter runs are matched longest first.
class PatternReader {
 public:
  explicit PatternReader(std::string_view pattern) : pattern_(pattern) {}

  std::vector<PatternToken> Read() {
    while (pos_ < pattern_.size()) ReadOne();
    return std::move(tokens_);
  }

 private:
  void ReadOne() {
    if (ReadHalfDay()) return;
    char c = pattern_[pos_];
    char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    std::size_t run = 1;
    while (pos_ + run < pattern_.size() && (pattern_[pos_ + run] | 0x20) == lower) ++run;
    switch (lower) {
      case 'd':
        return Add(Pick(run, {Field::kDay, Field::kDay2, Field::kDayAbbreviation, Field::kDayName,
                              Field::kShortDate, Field::kLongDate}));
      case 'm':
        if (run <= 2 && after_hour_) {
          return Add(Pick(run, {Field::kMinute, Field::kMinute2}));
        }
        return Add(Pick(
            run, {Field::kMonth, Field::kMonth2, Field::kMonthAbbreviation, Field::kMonthName}));
      case 'y':
        if (run >= 4) return Add(Field::kYear4, 4);
        return run >= 2 ? Add(Field::kYear2, 2) : Add(Field::kDayOfYear, 1);
      case 'h':
        Add(Pick(run, {Field::kHour, Field::kHour2}));
        after_hour_ = true;
        return;
      case 'n':
        return Add(Pick(run, {Field::kMinute, Field::kMinute2}));
      case 's':
        return Add(Pick(run, {Field::kSecond, Field::kSecond2}));
      case 'w':
        return Add(Pick(run, {Field::kWeekday, Field::kWeekOfYear}));
      case 'q':
        return Add(Field::kQuarter, 1);
      case 'c':
        return Add(Field::kGeneral, 1);
      case 't':
        if (run >= 5) return Add(Field::kLongTime, 5);
        break;
      case '\\':
        if (pos_ + 1 < pattern_.size()) {
          Literal(pattern_.substr(pos_ + 1, 1));
          pos_ += 2;
          return;
        }
        break;
      case '"':
        return Quoted();
      default:
        break;
    }
    Literal(pattern_.substr(pos_, 1));
    ++pos_;
  }

  // AM/PM, A/P (in the pattern's letter case) and AMPM (the locale's "AM"/"PM").
  bool ReadHalfDay() {
    for (std::string_view form : {"am/pm", "a/p"}) {
      if (StartsWithNoCase(pattern_, pos_, form)) {
        std::size_t half = form.size() / 2;
        std::string text(pattern_.substr(pos_, half));
        text += '/';
        text += pattern_.substr(pos_ + half + 1, half);
        AddText(Field::kHalfDay, std::move(text), form.size());
        return true;
      }
    }
    if (StartsWithNoCase(pattern_, pos_, "ampm")) {
      AddText(Field::kHalfDay, "AM/PM", 4);
      return true;
    }
    return false;
  }

  struct Choice {
    Field field;
    std::size_t length;
  };
  // The longest field a run of `run` equal letters starts with: fields[i] is i + 1 letters.
  static Choice Pick(std::size_t run, std::initializer_list<Field> fields) {
    std::size_t length = std::min(run, fields.size());
    return {*(fields.begin() + static_cast<std::ptrdiff_t>(length - 1)), length};
  }

  void Add(Choice choice) { Add(choice.field, choice.length); }
  void Add(Field field, std::size_t length) { AddText(field, {}, length); }
  void AddText(Field field, std::string text, std::size_t length) {
    tokens_.push_back({field, std::move(text)});
    pos_ += length;
    after_hour_ = false;
  }

  void Literal(std::string_view text) {
    if (tokens_.empty() || tokens_.back().field != Field::kLiteral) {
      tokens_.push_back({Field::kLiteral, {}});
    }
    tokens_.back().text += text;
  }

  void Quoted() {
    std::size_t close = pattern_.find('"', pos_ + 1);
    std::size_t end = close == std::string_view::npos ? pattern_.size() : close;
    Literal(pattern_.substr(pos_ + 1, end - pos_ - 1));
    pos_ = close == std::string_view::npos ? end : end + 1;
  }

  std::string_view pattern_;
  std::size_t pos_ = 0;
  bool after_hour_ = false;
  std::vector<PatternToken> tokens_;
};

std::string Render(const PatternToken& token, const DateTimeParts& p, bool twelve_hour) {
  int hour = twelve_hour ? TwelveHour(p.hour) : p.hour;
  std::string_view month = kMonthNames[p.date.month - 1];
  std::string_view weekday = kDayNames[p.DayOfWeek()];
  switch (token.field) {
    case Field::kLiteral:
      return token.text;
    case Field::kDay:
      return std::to_string(p.date.day);
    case Field::kDay2:
      return TwoDigits(p.date.day);
    case Field::kDayAbbreviation:
      return std::string(weekday.substr(0, 3));
    case Field::kDayName:
      return std::string(weekday);
    case Field::kShortDate:
      return ShortDate(p);
    case Field::kLongDate:
      return LongDate(p);
    case Field::kMonth:
      return std::to_string(p.date.month);
    case Field::kMonth2:
      return TwoDigits(p.date.month);
    case Field::kMonthAbbreviation:
      return std::string(month.substr(0, 3));
    case Field::kMonthName:
      return std::string(month);
    case Field::kDayOfYear:
      return std::to_string(DayOfYear(p));
    case Field::kYear2:
      return TwoDigits(p.date.year % 100);
    case Field::kYear4:
      return std::to_string(p.date.year);
    case Field::kQuarter:
      return std::to_string((p.date.month + 2) / 3);
    case Field::kWeekday:
      return std::to_string(p.DayOfWeek() + 1);
    case Field::kWeekOfYear: {
      int january_first = (p.DayOfWeek() - (DayOfYear(p) - 1) % 7 + 7) % 7;
      return std::to_string((DayOfYear(p) - 1 + january_first) / 7 + 1);
    }
    case Field::kHour:
      return std::to_string(hour);
    case Field::kHour2:
      return TwoDigits(hour);
    case Field::kMinute:
      return std::to_string(p.minute);
    case Field::kMinute2:
      return TwoDigits(p.minute);
    case Field::kSecond:
      return std::to_string(p.second);
    case Field::kSecond2:
      return TwoDigits(p.second);
    case Field::kHalfDay: {
      std::size_t slash = token.text.find('/');
      return p.hour < 12 ? token.text.substr(0, slash) : token.text.substr(slash + 1);
    }
    case Field::kLongTime:
      return LongTime(p);
    case Field::kGeneral:
      return General(p);
  }
  return {};
}

}  // namespace

double DateSerial(int year, int month, int day) {
  for (int argument : {year, month, day}) {
    if (argument < std::numeric_limits<std::int16_t>::min() ||
        argument > std::numeric_limits<std::int16_t>::max()) {
      RaiseRuntimeError(kErrOverflow);
    }
  }
  if (year >= 0 && year < 30) year += 2000;
  if (year >= 30 && year < 100) year += 1900;
  std::int64_t months = std::int64_t{year} * 12 + (month - 1);
  std::int64_t carried_year = FloorDiv(months, 12);
  // Beyond the calendar's reach the days (at most 32767) cannot bring the date back into range.
  if (carried_year < -32767 || carried_year > 32767) RaiseRuntimeError(kErrOverflow);
  auto carried_month = static_cast<int>(months - carried_year * 12 + 1);
  std::int64_t serial = DaysFromCivil(carried_year, carried_month, day);
  if (serial < kFirstDay || serial > kLastDay) RaiseRuntimeError(kErrOverflow);
  return static_cast<double>(serial);
}

double CombineDateTime(double day, double time) { return day < 0 ? day - time : day + time; }

CivilDate ToCivil(double serial) { return Split(serial).date; }

int Year(double serial) { return ToCivil(serial).year; }
int Month(double serial) { return ToCivil(serial).month; }
int Day(double serial) { return ToCivil(serial).day; }

int Weekday(double serial, FirstDayOfWeek first_day) {
  if (first_day < vbUseSystemDayOfWeek || first_day > vbSaturday) {
    RaiseRuntimeError(kErrInvalidProcedureCall);
  }
  int first = first_day == vbUseSystemDayOfWeek ? vbSunday : first_day;
  return (Split(serial).DayOfWeek() - (first - 1) + 7) % 7 + 1;
}

double DateAdd(DateInterval interval, double number, double serial) {
  const auto count = RoundToWhole<std::int32_t>(number);
  DayAndTime start = SplitExact(serial);
  std::int64_t day = start.day + count;
  if (interval != DateInterval::kDay) {
    CivilDate date = CivilFromDays(start.day);
    std::int64_t months = std::int64_t{date.year} * 12 + (date.month - 1) +
                          std::int64_t{count} * (interval == DateInterval::kYear ? 12 : 1);
    std::int64_t year = FloorDiv(months, 12);
    if (year < 100 || year > 9999) RaiseRuntimeError(kErrInvalidProcedureCall);
    auto month = static_cast<int>(months - year * 12 + 1);
    int clamped = std::min(date.day, DaysInMonth(year, month));
    day = DaysFromCivil(year, month, clamped);
  }
  if (day < kFirstDay || day > kLastDay) RaiseRuntimeError(kErrInvalidProcedureCall);
  return CombineDateTime(static_cast<double>(day), start.time);
}

std::string_view MonthName(int month) { return kMonthNames.at(month - 1); }

double DatePart(double serial) { return std::floor(serial); }

std::string GeneralDate(double serial) { return General(Split(serial)); }

std::string FormatDate(double serial, std::string_view pattern) {
  DateTimeParts parts = Split(serial);
  std::vector<PatternToken> tokens = PatternReader(pattern).Read();
  bool twelve_hour = false;
  for (const PatternToken& token : tokens) twelve_hour |= token.field == Field::kHalfDay;
  std::string out;
  for (const PatternToken& token : tokens) out += Render(token, parts, twelve_hour);
  return out;
}

}  // namespace brix
