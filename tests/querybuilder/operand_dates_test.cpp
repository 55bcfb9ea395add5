// Date operands: every operand kind read as a whole day, as a 32-bit day number and as
// "dd-MMM-yyyy" text.
#include "querybuilder/operand_dates.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

using test_support::ObjectWith;
using test_support::ObjectWithoutDefault;
using test_support::Outcome;
using V = Variant;

constexpr const char* kMismatch = "13 brixobjects4: Type mismatch";
constexpr const char* kOverflow = "6 brixobjects4: Overflow";
constexpr const char* kNull = "94 brixobjects4: Invalid use of Null";
constexpr const char* kNothing = "91 brixobjects4: Object variable or With block variable not set";

std::string Text(double day) { return std::to_string(static_cast<long long>(day)); }

TEST(OperandDates, EveryOperandKind) {
  // The clock fixes the year of a date text without one.
  ScopedClock clock(43060);
  const std::string nov12 = "12-Nov-2017";
  // clang-format off
  // operand, whole day (ranges), 32-bit day number (numeric fields), "dd-MMM-yyyy" text
  const std::vector<std::tuple<V, std::string, std::string, std::string>> cases = {
      {V(),                     "0",       "0",       ""},
      {V::Null(),               kNull,     kNull,     ""},
      {V(true),                 "-1",      "-1",      "29-Dec-1899"},
      {V(false),                "0",       "0",       "30-Dec-1899"},
      {V(std::uint8_t{2}),      "2",       "2",       "01-Jan-1900"},
      {V(std::int16_t{-2}),     "-2",      "-2",      "28-Dec-1899"},
      {V(43051),                "43051",   "43051",   nov12},
      // Halves round to even for the day number; the whole day drops the time.
      {V(43051.5f),             "43051",   "43052",   nov12},
      {V(43050.5),              "43050",   "43050",   "11-Nov-2017"},
      {V(Currency{430517500}),  "43051",   "43052",   nov12},
      {V(Date{43051.75}),       "43051",   "43052",   nov12},
      // Before day 0 the sign belongs to the day: -1.25 is 29 December at 06:00.
      {V(Date{-1.25}),          "-1",      "-1",      "29-Dec-1899"},
      {V(-657434.0),            "-657434", "-657434", "01-Jan-100"},
      {V(2958465.5),            "2958465", "2958466", "31-Dec-9999"},
      // Beyond the date range: only the day number of a numeric field keeps it.
      {V(-657435.0),            kOverflow, "-657435", "-657435"},
      {V(3e6),                  kOverflow, "3000000", "3000000"},
      {V(1e10),                 kOverflow, kOverflow, "10000000000"},
      // Day-number texts, as documents hold saved dates.
      {V("43051"),              "43051",   "43051",   nov12},
      {V("43051.75"),           "43051",   "43052",   nov12},
      {V(" 43,051 "),           "43051",   "43051",   nov12},
      {V("-1.5"),               "-1",      "-2",      "29-Dec-1899"},
      // A hex text of up to 16 bits is an Integer, so &HA82B is negative.
      {V("&HA82B"),             "-22485",  "-22485",  "08-Jun-1838"},
      {V("3000000"),            kOverflow, "3000000", "3000000"},
      {V("1e400"),              kOverflow, kOverflow, "1e400"},
      // Date texts; a date after noon counts as the next day for the day number.
      {V("11/12/2017"),         "43051",   "43051",   nov12},
      {V("12-Nov-2017 18:00"),  "43051",   "43052",   nov12},
      {V("Nov 12"),             "43051",   "43051",   nov12},
      {V("13/11/2017"),         "43052",   "43052",   "13-Nov-2017"},
      // Other texts: the formatted text keeps them, the day readings refuse them.
      {V(""),                   kMismatch, kMismatch, ""},
      {V("abc"),                kMismatch, kMismatch, "abc"},
      {V("43051x"),             kMismatch, kMismatch, "43051x"},
      {ObjectWith(V("43051")),  "43051",   "43051",   nov12},
      {V::Nothing(),            kNothing,  kNothing,  kNothing},
      {V(VariantArray{}),       kMismatch, kMismatch, kMismatch},
      {V::Missing(),            kMismatch, kMismatch, "Error 448"},
  };
  // clang-format on
  for (const auto& [operand, day, day_number, text] : cases) {
    SCOPED_TRACE(Outcome([&] { return CStr(operand); }));
    EXPECT_EQ(Outcome([&] { return Text(OperandDay(operand)); }), day);
    EXPECT_EQ(Outcome([&] { return std::to_string(OperandDayNumber(operand)); }), day_number);
    EXPECT_EQ(Outcome([&] { return OperandDateText(operand); }), text);
  }
}

TEST(OperandDates, ObjectWithoutDefaultValue) {
  const std::string expected = "438 brixobjects4: Object doesn't support this property or method";
  const V operand = ObjectWithoutDefault();
  EXPECT_EQ(Outcome([&] { return Text(OperandDay(operand)); }), expected);
  EXPECT_EQ(Outcome([&] { return OperandDateText(operand); }), expected);
}

}  // namespace
}  // namespace brix
