// The platform's conversions: number syntax, string forms, rounding, range and kind errors.
#include "runtime/conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "runtime/clock.h"
#include "runtime/dates.h"
#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

using test_support::ObjectWith;
using test_support::RaisesRuntimeError;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kMarch2nd2010 = 40239;
Variant Bytes() { return Variant(ByteArray{1, 2}); }

// Texts grouped by what they read as; no value means "not a number" or "not a date".
struct TextCase {
  std::optional<double> expected;
  std::vector<const char*> texts;
};

TEST(ParseNumber, ReadsThePlatformNumberSyntax) {
  // clang-format off
  const TextCase cases[] = {
      {5,            {"$5", "5$", "+5", "\t5\r\n", "5.", "5,", "0.5e1", "50D-1", "&H5", "&O5"}},
      {-3,           {"(3)", "( 3 )", "3-", "-$3", "-&H3", "3.-"}},
      {123.5,        {" 1,2,3.5 ", "1,23.5", "1.235E+2"}},
      {0.5,          {".5", "0,.5"}},
      {-1,           {"&HFFFF", "&HFFFFFFFF"}},
      {-32768,       {"&H8000"}},
      {65536,        {"&H10000"}},
      {0,            {"1e-400"}},
      {kInfinity,    {"1e400", "&H100000000"}},
      {-kInfinity,   {"-1e400"}},
      {std::nullopt, {"", " ", "12abc", "1e", "1e+", "e5", ",5", ".", "1.2.3", "459..", "(5", "5)",
                      "(-5)", "+-5", "--5", "$$5", "&H", "&H1G", "&O8", "$&H10", "&H10$", "&H1.5",
                      "1 2", "1,2.3,4", "0x10", "1.5%"}},
  };
  // clang-format on
  for (const TextCase& c : cases) {
    for (const char* text : c.texts) {
      EXPECT_EQ(ParseNumber(text), c.expected) << text;
      EXPECT_EQ(IsNumeric(Variant(text)), c.expected && std::isfinite(*c.expected)) << text;
    }
  }
}

TEST(ParseDate, ReadsTheEnUsFormsWithTheClocksYearAsDefault) {
  ScopedClock clock(DateSerial(2024, 6, 15) + 0.5);
  const double march2nd = DateSerial(2010, 3, 2);
  // clang-format off
  const TextCase cases[] = {
      {march2nd,                 {"3/2/2010", " 03/02/2010 ", "3-2-2010", "3.2.2010", "3 2 2010",
                                  "2010-03-02"}},
      {DateSerial(2010, 3, 5),   {"05-Mar-2010", "5-MAR-10", "March 5, 2010", "Mar. 5, 2010",
                                  "Marc 5, 2010", "2010 Mar 5"}},
      {DateSerial(2010, 3, 1),   {"Mar 2010", "3/2010", "2010/3"}},
      {DateSerial(2010, 5, 13),  {"13/5/2010"}},
      {DateSerial(2029, 3, 2),   {"3/2/29"}},
      {DateSerial(1930, 3, 2),   {"3/2/30"}},
      {DateSerial(2024, 3, 5),   {"Mar 5"}},
      {DateSerial(2024, 1, 2),   {"1-2"}},
      {DateSerial(2024, 5, 13),  {"13/5"}},
      {march2nd + 9.5 / 24,      {"3/2/2010 9:30 AM"}},
      {march2nd + 21.5 / 24,     {"9:30 pm 3/2/2010", "3/2/2010 21:30"}},
      {march2nd + 52205.0 / 86400, {"2010-03-02 14:30:05"}},
      {9.5 / 24,                 {"9:30"}},
      {0,                        {"12:00 AM"}},
      {12.5 / 24,                {"12:30 PM"}},
      {17.0 / 24,                {"5 PM"}},
      {-1.25,                    {"12/29/1899 6:00"}},
      {-657434,                  {"1/1/100"}},
      {2958465,                  {"12/31/9999"}},
      {std::nullopt,             {"", "  ", "40238", "12.5", "2010", "Mar", "2/29/2011", "9:60",
                                  "Tuesday, March 2, 2010", "31/31/2010", "0/1/2010", "13:00 PM",
                                  "3/2/2010 25:00", "9:30:60", "3//2/2010", "3/2/2010/", "3#2#2010",
                                  "/3/2/2010", "12/31/10000", "1/2/3/4", "3/2/2010 9:30 9:45",
                                  "3,2,2010", "Mar Apr 5", "5 Mar 6 2010", "3/2/2010 AM",
                                  "3/2/2010T9:30", "3/2/2010 9:30:00.5"}},
  };
  // clang-format on
  for (const TextCase& c : cases) {
    for (const char* text : c.texts) {
      ASSERT_EQ(ParseDate(text).has_value(), c.expected.has_value()) << text;
      EXPECT_EQ(IsDate(Variant(text)), c.expected.has_value()) << text;
      if (!c.expected) continue;
      EXPECT_NEAR(*ParseDate(text), *c.expected, 1e-9) << text;
      EXPECT_NEAR(CDate(Variant(text)).serial, *c.expected, 1e-9) << text;
    }
  }
}

TEST(CStr, WritesTheStringFormOfEachKind) {
  // clang-format off
  struct Case { Variant value; const char* expected; };
  const Case cases[] = {
      {Variant(),                                ""},
      {Variant(true),                            "True"},
      {Variant(1e15),                            "1E+15"},
      {Variant(1e14),                            "100000000000000"},
      {Variant(0.0001),                          "0.0001"},
      {Variant(0.00001),                         "1E-05"},
      {Variant(0.1 + 0.2),                       "0.3"},
      {Variant(-0.0),                            "0"},
      {Variant(123456789012345678.0),            "1.23456789012346E+17"},
      {Variant(static_cast<float>(1.0 / 3)),     "0.3333333"},
      {Variant(12345678.0f),                     "1.234568E+07"},
      {Variant(Currency{-12345678}),             "-1234.5678"},
      {Variant(Date{0}),                         "12:00:00 AM"},
      {Variant(Date{0.5}),                       "12:00:00 PM"},
      {Variant(Date{40239}),                     "3/2/2010"},
      {Variant(Date{40239 + 13.25 / 24}),        "3/2/2010 1:15:00 PM"},
      {Variant(Date{40239.9999999}),             "3/3/2010"},
      {Variant(Date{-1.25}),                     "12/29/1899 6:00:00 AM"},
      {Variant(ErrorValue{static_cast<std::int32_t>(0x800A0005u)}), "Error 5"},
      {Variant::Missing(),                       "Error 448"},
      {Variant(ErrorValue{7}),                   "Error 7"},
      {ObjectWith(ObjectWith(Variant("inner"))), "inner"},
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(CStr(c.value), c.expected);
  EXPECT_EQ(ConcatText(Variant::Null()) + ConcatText(Variant(7)), "7");  // Null is "" here
}

TEST(Conversions, RoundHalfToEvenAndReadWordsAsBooleans) {
  // clang-format off
  struct Case { std::int32_t expected; std::vector<Variant> values; };
  const Case cases[] = {
      {0,      {Variant(0.5), Variant()}},
      {2,      {Variant(1.5), Variant(2.5), Variant(1.5f), Variant("2.5"), Variant(Currency{25000}),
                ObjectWith(Variant("2"))}},
      {-2,     {Variant(-1.5), Variant(-2.5)}},
      {-1,     {Variant(true)}},
      {3,      {Variant(Date{2.75})}},
      {-32768, {Variant(-32768.5)}},
  };
  // clang-format on
  for (const Case& c : cases) {
    for (const Variant& value : c.values) {
      EXPECT_EQ(CInt(value), c.expected) << CStr(value);
      EXPECT_EQ(CLng(value), c.expected) << CStr(value);
    }
  }
  EXPECT_EQ(CLng(Variant(-2147483648.5)), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(CByte(Variant(254.5)), 254);
  EXPECT_EQ(CDbl(Variant(Currency{12345})), 1.2345);
  EXPECT_EQ(CCur(Variant(1.03125)), Currency{10312});  // half to even at the fourth decimal
  EXPECT_EQ(CCur(Variant(1.09375)), Currency{10938});
  EXPECT_EQ(CCur(Variant("-2.5")), Currency{-25000});
  for (const char* text : {"true", "TRUE", "#TRUE#", "2.5"}) EXPECT_TRUE(CBool(Variant(text)));
  for (const char* text : {"False", "#FALSE#", " 0 "}) EXPECT_FALSE(CBool(Variant(text)));
  EXPECT_TRUE(CBool(Variant(0.1)) && CBool(Variant(Currency{1})) && !CBool(Variant()));
}

using Conversion = void (*)(const Variant&);
template <auto kConvert>
void Call(const Variant& value) {
  static_cast<void>(kConvert(value));
}

TEST(Conversions, RaiseOverflowTypeMismatchAndTheErrorsOfNullAndObjects) {
  // clang-format off
  struct Case { Conversion convert; std::int32_t error; std::vector<Variant> values; };
  const Case cases[] = {
      {Call<CInt>,  6,  {Variant(32767.5), Variant(-32769)}},
      {Call<CLng>,  6,  {Variant(2147483647.5), Variant("1e400")}},
      {Call<CByte>, 6,  {Variant(-1), Variant(255.5)}},
      {Call<CSng>,  6,  {Variant(1e39)}},
      {Call<CDbl>,  6,  {Variant("-1e400")}},
      {Call<CCur>,  6,  {Variant(1e15)}},
      {Call<CDate>, 6,  {Variant(2958466.0), Variant(-657435.0)}},
      {Call<CLng>,  13, {Variant(""), Variant("3/2/2010"), Variant::Missing(), Bytes()}},
      {Call<CBool>, 13, {Variant("yes"), Variant(""), Variant(" True "), Variant("#true#")}},
      {Call<CDate>, 13, {Variant("40238"), Variant::Missing()}},
      {Call<CStr>,  13, {Bytes()}},
  };
  const Conversion all[] = {Call<CStr>, Call<CInt>, Call<CLng>, Call<CByte>, Call<CBool>,
                            Call<CDbl>, Call<CSng>, Call<CCur>, Call<CDate>};
  // clang-format on
  for (const Case& c : cases) {
    for (const Variant& value : c.values) {
      EXPECT_TRUE(RaisesRuntimeError([&] { c.convert(value); }, c.error));
    }
  }
  for (Conversion convert : all) {
    EXPECT_TRUE(RaisesRuntimeError([&] { convert(Variant::Null()); }, 94));
    EXPECT_TRUE(RaisesRuntimeError([&] { convert(ObjectWith(Variant::Null())); }, 94));
    EXPECT_TRUE(RaisesRuntimeError([&] { convert(Variant::Nothing()); }, 91));
    EXPECT_TRUE(RaisesRuntimeError([&] { convert(test_support::ObjectWithoutDefault()); }, 438));
  }
}

TEST(Format, ReadsTextAsADateThenAsADayNumberThenLeavesIt) {
  // clang-format off
  struct Case { Variant value; const char *pattern, *expected; };
  const Case cases[] = {
      {Variant(40239),                "YYYYMM",      "201003"},
      {Variant("3/2/2010"),           "dd-MMM-yyyy", "02-Mar-2010"},
      {Variant(" 40239.5 "),          "dd hh",       "02 12"},
      {Variant("abc"),                "yyyymm",      "abc"},
      {Variant("99999999"),           "yyyy",        "99999999"},
      {Variant(1e10),                 "yyyy",        "10000000000"},
      {Variant::Null(),               "yyyy",        ""},
      {Variant(),                     "yyyy",        ""},
      {Variant(true),                 "dd-MMM-yyyy", "29-Dec-1899"},
      {Variant(ErrorValue{static_cast<std::int32_t>(0x800A0005u)}), "yyyy", "Error 5"},
      {Variant(Date{kMarch2nd2010}),  "",            "3/2/2010"},
      {test_support::ObjectWith(Variant("3/2/2010")), "yyyy", "2010"},
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(Format(c.value, c.pattern), c.expected) << c.expected;
}

}  // namespace
}  // namespace brix
