// The platform's conversions: number syntax, string forms, rounding, range and kind errors.
#include "runtime/conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "runtime/clock.h"
#include "runtime/dates.h"
#include "runtime/error_numbers.h"
#include "tests/runtime/runtime_test_support.h"

namespace brix {
namespace {

using test_support::ExpectRuntimeError;
using test_support::kInvalidUseOfNull;
using test_support::kOverflow;
using test_support::kTypeMismatch;
using test_support::ObjectWith;
using test_support::ObjectWithoutDefault;

Variant ByteArrayValue() { return Variant(ByteArray{1, 2}); }

TEST(ParseNumber, AcceptsThePlatformNumberSyntax) {
  struct Case {
    const char* text;
    double expected;
  } cases[] = {
      {" 1,234 ", 1234},  {"$5", 5},       {"5$", 5},      {"(3)", -3},        {"( 3 )", -3},
      {"1e3", 1000},      {"1E-3", 0.001}, {"1e+2", 100},  {"1D2", 100},       {"12-", -12},
      {"+12", 12},        {"-$5", -5},     {"1,2,3", 123}, {"12,", 12},        {"1,.5", 1.5},
      {"1.", 1},          {".5", 0.5},     {"\t7\r\n", 7}, {"&H10", 16},       {"&h1f", 31},
      {"&O17", 15},       {"-&H10", -16},  {"&HFFFF", -1}, {"&H8000", -32768}, {"&H10000", 65536},
      {"&HFFFFFFFF", -1}, {"459.-", -459}, {"0.1", 0.1},   {"1e-400", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::optional<double> value = ParseNumber(c.text);
    ASSERT_TRUE(value.has_value());
    EXPECT_DOUBLE_EQ(*value, c.expected);
  }
}

TEST(ParseNumber, RejectsTextThatIsNotOneNumber) {
  for (const char* text :
       {"",      " ",     "abc",   "12abc", "1e",    "1e+", "e5",      ",5",   ".",
        "1.2.3", "459..", "(5",    "5)",    "(-5)",  "+-5", "--5",     "$$5",  "&H",
        "&H1G",  "&O8",   "$&H10", "&H10$", "&H1.5", "1 2", "1,2.3,4", "0x10", "1.5%"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(ParseNumber(text).has_value());
  }
}

TEST(ParseNumber, GivesInfinityBeyondDouble) {
  EXPECT_EQ(ParseNumber("1e400"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(ParseNumber("-1e400"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(ParseNumber("&H100000000"), std::numeric_limits<double>::infinity());
}

TEST(CStr, WritesTheStringFormOfEachKind) {
  struct Case {
    Variant value;
    const char* expected;
  } cases[] = {
      {Variant(), ""},
      {Variant(true), "True"},
      {Variant(false), "False"},
      {Variant(std::int16_t{-5}), "-5"},
      {Variant(2147483647), "2147483647"},
      {Variant(std::uint8_t{255}), "255"},
      {Variant(1e15), "1E+15"},
      {Variant(1e14), "100000000000000"},
      {Variant(0.0001), "0.0001"},
      {Variant(0.00001), "1E-05"},
      {Variant(2.50), "2.5"},
      {Variant(0.1 + 0.2), "0.3"},
      {Variant(1.0 / 3), "0.333333333333333"},
      {Variant(-0.0), "0"},
      {Variant(-1.5), "-1.5"},
      {Variant(123456789012345678.0), "1.23456789012346E+17"},
      {Variant(static_cast<float>(1.0 / 3)), "0.3333333"},
      {Variant(12345678.0f), "1.234568E+07"},
      {Variant(Currency{15000}), "1.5"},
      {Variant(Currency{-12345678}), "-1234.5678"},
      {Variant(Date{0}), "12:00:00 AM"},
      {Variant(Date{0.5}), "12:00:00 PM"},
      {Variant(Date{40239}), "3/2/2010"},
      {Variant(Date{40239 + 9.5 / 24}), "3/2/2010 9:30:00 AM"},
      {Variant(Date{40239 + 13.25 / 24}), "3/2/2010 1:15:00 PM"},
      {Variant(Date{40239.9999999}), "3/3/2010"},
      {Variant(Date{-1.25}), "12/29/1899 6:00:00 AM"},
      {Variant(Date{-657434}), "1/1/100"},
      {Variant("text"), "text"},
      {Variant(ErrorValue{static_cast<std::int32_t>(0x800A0005u)}), "Error 5"},
      {Variant::Missing(), "Error 448"},
      {Variant(ErrorValue{7}), "Error 7"},
      {ObjectWith(Variant(2.5)), "2.5"},
      {ObjectWith(ObjectWith(Variant("inner"))), "inner"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    EXPECT_EQ(CStr(c.value), c.expected);
  }
}

TEST(CStr, RaisesForValuesWithoutAStringForm) {
  ExpectRuntimeError([] { CStr(Variant::Null()); }, 94, kInvalidUseOfNull);
  ExpectRuntimeError([] { CStr(Variant::Nothing()); }, 91,
                     "Object variable or With block variable not set");
  ExpectRuntimeError([] { CStr(ObjectWithoutDefault()); }, 438,
                     "Object doesn't support this property or method");
  ExpectRuntimeError([] { CStr(ByteArrayValue()); }, 13, kTypeMismatch);
  EXPECT_EQ(ConcatText(Variant::Null()), "");
  EXPECT_EQ(ConcatText(Variant(7)), "7");
}

TEST(WholeNumberConversions, RoundHalfToEven) {
  struct Case {
    Variant value;
    std::int32_t expected;
  } cases[] = {
      {Variant(0.5), 0},
      {Variant(1.5), 2},
      {Variant(2.5), 2},
      {Variant(-2.5), -2},
      {Variant(-0.5), 0},
      {Variant(3.5), 4},
      {Variant(2.4999), 2},
      {Variant(-1.5), -2},
      {Variant("2.5"), 2},
      {Variant(" 1,234 "), 1234},
      {Variant("$5"), 5},
      {Variant("(3)"), -3},
      {Variant("&H10"), 16},
      {Variant(Currency{25000}), 2},
      {Variant(true), -1},
      {Variant(), 0},
      {Variant(Date{2.5}), 2},
      {Variant(1.5f), 2},
      {ObjectWith(Variant("12")), 12},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(CStr(c.value));
    EXPECT_EQ(CLng(c.value), c.expected);
    EXPECT_EQ(CInt(c.value), c.expected);
  }
  EXPECT_EQ(RoundHalfEven(-3.5), -4);
  EXPECT_EQ(CLng(Variant(Date{40238.75})), 40239);
  EXPECT_EQ(CByte(Variant(254.5)), 254);
}

TEST(WholeNumberConversions, RangeLimitsAfterRounding) {
  EXPECT_EQ(CInt(Variant(-32768.5)), -32768);
  EXPECT_EQ(CInt(Variant(32766.5)), 32766);
  EXPECT_EQ(CLng(Variant(-2147483648.5)), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(CLng(Variant("-2147483648")), std::numeric_limits<std::int32_t>::min());
  std::function<void()> overflows[] = {
      [] { CInt(Variant(32767.5)); },      [] { CInt(Variant("40000")); },
      [] { CInt(Variant(-32769)); },       [] { CLng(Variant(2147483647.5)); },
      [] { CLng(Variant("2147483648")); }, [] { CLng(Variant("1e400")); },
      [] { CLng(Variant(1e300)); },        [] { CByte(Variant(-1)); },
      [] { CByte(Variant(255.5)); },       [] { CSng(Variant(1e39)); },
      [] { CDbl(Variant("-1e400")); },     [] { CCur(Variant(1e15)); },
      [] { CDate(Variant(2958466.0)); },   [] { CDate(Variant(-657435.0)); },
  };
  for (auto& action : overflows) ExpectRuntimeError(action, 6, kOverflow);
}

TEST(Conversions, RaiseTypeMismatchForTextThatIsNotANumberAndForOtherKinds) {
  std::function<void()> mismatches[] = {
      [] { CLng(Variant("")); },         [] { CLng(Variant(" ")); },
      [] { CLng(Variant("abc")); },      [] { CLng(Variant("12abc")); },
      [] { CInt(Variant("3/2/2010")); }, [] { CDbl(Variant("1e")); },
      [] { CLng(Variant::Missing()); },  [] { CDbl(Variant::Missing()); },
      [] { CLng(ByteArrayValue()); },    [] { CBool(Variant("yes")); },
      [] { CBool(Variant("no")); },      [] { CBool(Variant("on")); },
      [] { CBool(Variant("")); },        [] { CBool(Variant(" True ")); },
      [] { CBool(Variant("#true#")); },  [] { CDate(Variant("40238")); },
      [] { CDate(Variant("abc")); },     [] { CDate(Variant::Missing()); },
      [] { CCur(Variant("x")); },        [] { CSng(ByteArrayValue()); },
  };
  for (auto& action : mismatches) ExpectRuntimeError(action, 13, kTypeMismatch);
}

TEST(Conversions, RaiseInvalidUseOfNull) {
  const Variant null = Variant::Null();
  std::function<void()> actions[] = {
      [&] { CInt(null); },  [&] { CLng(null); },
      [&] { CByte(null); }, [&] { CBool(null); },
      [&] { CDbl(null); },  [&] { CSng(null); },
      [&] { CCur(null); },  [&] { CDate(null); },
      [&] { CStr(null); },  [&] { CLng(ObjectWith(Variant::Null())); },
  };
  for (auto& action : actions) ExpectRuntimeError(action, 94, kInvalidUseOfNull);
}

TEST(Conversions, ObjectsConvertThroughTheirDefaultValue) {
  EXPECT_EQ(CLng(ObjectWith(Variant(5))), 5);
  EXPECT_TRUE(CBool(ObjectWith(Variant("True"))));
  ExpectRuntimeError([] { CLng(Variant::Nothing()); }, 91,
                     "Object variable or With block variable not set");
  ExpectRuntimeError([] { CDbl(ObjectWithoutDefault()); }, 438,
                     "Object doesn't support this property or method");
}

TEST(CBool, ReadsWordsAndNumbers) {
  struct Case {
    Variant value;
    bool expected;
  } cases[] = {
      {Variant("True"), true},     {Variant("true"), true},   {Variant("TRUE"), true},
      {Variant("False"), false},   {Variant("false"), false}, {Variant("#TRUE#"), true},
      {Variant("#FALSE#"), false}, {Variant("-1"), true},     {Variant("1"), true},
      {Variant("2.5"), true},      {Variant("1e3"), true},    {Variant("0"), false},
      {Variant("0.0"), false},     {Variant(" 0 "), false},   {Variant(0.1), true},
      {Variant(0.0), false},       {Variant(), false},        {Variant(Currency{1}), true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(CStr(c.value));
    EXPECT_EQ(CBool(c.value), c.expected);
  }
}

TEST(Conversions, DoubleSingleAndCurrency) {
  EXPECT_EQ(CDbl(Variant("1,234.5")), 1234.5);
  EXPECT_EQ(CDbl(Variant(Currency{12345})), 1.2345);
  EXPECT_EQ(CDbl(Variant(Date{40238.5})), 40238.5);
  EXPECT_EQ(CSng(Variant(0.1)), 0.1f);
  EXPECT_EQ(CCur(Variant(1.03125)), Currency{10312});  // half to even at the fourth decimal
  EXPECT_EQ(CCur(Variant(1.09375)), Currency{10938});
  EXPECT_EQ(CCur(Variant("-2.5")), Currency{-25000});
  EXPECT_EQ(CCur(Variant(Currency{7})), Currency{7});
}

TEST(IsNumeric, ClassifiesKindsAndTexts) {
  struct Case {
    Variant value;
    bool expected;
  } cases[] = {
      {Variant(std::int16_t{1}), true},
      {Variant(1), true},
      {Variant(1.5f), true},
      {Variant(1.5), true},
      {Variant(Currency{1}), true},
      {Variant(std::uint8_t{1}), true},
      {Variant(true), true},
      {Variant(), true},
      {Variant(Date{1}), false},
      {Variant::Null(), false},
      {Variant::Missing(), false},
      {ByteArrayValue(), false},
      {Variant::Nothing(), false},
      {Variant("12"), true},
      {Variant(" -1.5e3 "), true},
      {Variant("$1,000"), true},
      {Variant("1d2"), true},
      {Variant("abc"), false},
      {Variant(""), false},
      {Variant("1e400"), false},
      {Variant("459.."), false},
      {Variant("3/2/2010"), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value.IsString() ? c.value.AsString() : std::to_string(c.value.Type()));
    EXPECT_EQ(IsNumeric(c.value), c.expected);
  }
}

TEST(IsDate, AcceptsDatesAndDateTextsOnly) {
  EXPECT_TRUE(IsDate(Variant(Date{40238})));
  EXPECT_TRUE(IsDate(Variant("3/2/2010")));
  EXPECT_TRUE(IsDate(Variant("05-Mar-2010")));
  EXPECT_FALSE(IsDate(Variant("40238")));
  EXPECT_FALSE(IsDate(Variant(40238)));
  EXPECT_FALSE(IsDate(Variant("12.5")));
  EXPECT_FALSE(IsDate(Variant::Null()));
  EXPECT_FALSE(IsDate(Variant()));
  EXPECT_FALSE(IsDate(Variant("abc")));
}

class ParseDateTest : public ::testing::Test {
 protected:
  // Texts without a year take the year of the clock: 15 June 2024.
  ScopedClock clock_{DateSerial(2024, 6, 15) + 0.5};
};

TEST_F(ParseDateTest, ReadsTheEnUsForms) {
  struct Case {
    const char* text;
    double expected;
  } cases[] = {
      {"3/2/2010", 40239},
      {" 03/02/2010 ", 40239},
      {"3-2-2010", 40239},
      {"3.2.2010", 40239},
      {"3 2 2010", 40239},
      {"2010-03-02", 40239},
      {"13/5/2010", DateSerial(2010, 5, 13)},
      {"3/2/10", 40239},
      {"3/2/29", DateSerial(2029, 3, 2)},
      {"3/2/30", DateSerial(1930, 3, 2)},
      {"05-Mar-2010", 40242},
      {"5-MAR-10", 40242},
      {"March 5, 2010", 40242},
      {"5 March 2010", 40242},
      {"Mar. 5, 2010", 40242},
      {"2010 Mar 5", 40242},
      {"Sept 5, 2010", DateSerial(2010, 9, 5)},
      {"Mar 2010", 40238},
      {"3/2010", 40238},
      {"2010/3", 40238},
      {"Mar 5", DateSerial(2024, 3, 5)},
      {"1-2", DateSerial(2024, 1, 2)},
      {"13/5", DateSerial(2024, 5, 13)},
      {"3/2/2010 9:30 AM", 40239 + 9.5 / 24},
      {"3/2/2010 21:30", 40239 + 21.5 / 24},
      {"2010-03-02 14:30:05", 40239 + (14 * 3600 + 30 * 60 + 5) / 86400.0},
      {"9:30 pm 3/2/2010", 40239 + 21.5 / 24},
      {"9:30", 9.5 / 24},
      {"12:00 AM", 0},
      {"12:30 PM", 12.5 / 24},
      {"5 PM", 17.0 / 24},
      {"23:59:59", 86399 / 86400.0},
      {"12/30/1899 6:00", 0.25},
      {"12/29/1899 6:00", -1.25},
      {"1/1/100", -657434},
      {"12/31/9999", 2958465},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::optional<double> serial = ParseDate(c.text);
    ASSERT_TRUE(serial.has_value());
    EXPECT_NEAR(*serial, c.expected, 1e-9);
    EXPECT_NEAR(CDate(Variant(c.text)).serial, c.expected, 1e-9);
  }
}

TEST_F(ParseDateTest, RejectsTextsThatAreNotDates) {
  for (const char* text : {"",
                           "  ",
                           "40238",
                           "12.5",
                           "2010",
                           "Mar",
                           "abc",
                           "Tuesday, March 2, 2010",
                           "2/29/2011",
                           "31/31/2010",
                           "0/1/2010",
                           "3/2/2010 25:00",
                           "13:00 PM",
                           "9:60",
                           "9:30:60",
                           "3//2/2010",
                           "3/2/2010/",
                           "/3/2/2010",
                           "1/1/99999",
                           "12/31/10000",
                           "1/2/3/4",
                           "3/2/2010 9:30 9:45",
                           "3,2,2010",
                           "Mar Apr 5",
                           "5 Mar 6 2010",
                           "3/2/2010 AM",
                           "3/2/2010T9:30",
                           "3/2/2010 9:30:00.5",
                           "3#2#2010"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(ParseDate(text).has_value());
  }
}

}  // namespace
}  // namespace brix
