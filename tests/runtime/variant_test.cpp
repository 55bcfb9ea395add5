// Variant type codes, which kinds count as numbers or dates, and the platform's comparison.
#include "runtime/variant.h"

#include <gtest/gtest.h>

#include "runtime/conversions.h"
#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

using test_support::ObjectWith;
using test_support::RaisesRuntimeError;

TEST(Variant, ReportsThePlatformTypeCodesAndWhichKindsAreNumbersOrDates) {
  // clang-format off
  struct Case { Variant value; std::int32_t code; bool numeric, date; };
  const Case cases[] = {
      {Variant(),                 0,    true,  false},
      {Variant::Null(),           1,    false, false},
      {Variant(std::int16_t{1}),  2,    true,  false},
      {Variant(1),                3,    true,  false},
      {Variant(1.5f),             4,    true,  false},
      {Variant(1.5),              5,    true,  false},
      {Variant(Currency{1}),      6,    true,  false},
      {Variant(Date{1}),          7,    false, true},
      {Variant("x"),              8,    false, false},
      {Variant::Nothing(),        9,    false, false},
      {Variant::Missing(),        10,   false, false},
      {Variant(true),             11,   true,  false},
      {Variant(std::uint8_t{1}),  17,   true,  false},
      {Variant(ByteArray{1}),     8209, false, false},
      {Variant(VariantArray{}),   8204, false, false},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    EXPECT_EQ(c.value.Type(), c.code);
    EXPECT_EQ(IsNumeric(c.value), c.numeric);
    EXPECT_EQ(IsDate(c.value), c.date);
  }
  EXPECT_TRUE(Variant::Missing().IsMissing() && !Variant(ErrorValue{5}).IsMissing());
  EXPECT_TRUE(RaisesRuntimeError([] { Variant("5").AsLong(); }, 13));
}

TEST(Compare, FollowsThePlatformRulesForVariantOperandsInEitherOrder) {
  constexpr Comparison kLess = Comparison::kLess, kEqual = Comparison::kEqual,
                       kGreater = Comparison::kGreater, kNull = Comparison::kNull;
  // clang-format off
  struct Case { Variant a, b; Comparison expected; };
  const Case cases[] = {
      {Variant(5),                   Variant("5"),                kLess},  // numbers before text
      {Variant(""),                  Variant(),                   kEqual},  // Empty is "" for text
      {Variant("0"),                 Variant(),                   kGreater},
      {Variant(0),                   Variant(),                   kEqual},  // and 0 for numbers
      {Variant(),                    Variant(1.5),                kLess},
      {Variant::Null(),              Variant(1),                  kNull},
      {Variant::Missing(),           Variant::Null(),             kNull},
      {Variant::Missing(),           Variant::Missing(),          kEqual},
      {Variant(true),                Variant(-1),                 kEqual},
      {Variant(Date{2}),             Variant(std::int16_t{2}),    kEqual},
      {Variant(std::uint8_t{255}),   Variant(std::int16_t{255}),  kEqual},
      {Variant("B"),                 Variant("a"),                kLess},  // by UTF-16 code units
      {Variant("\U0001F600"),        Variant("\uFFFD"),           kLess},
      {Variant(0.1f),                Variant(0.1),                kEqual},  // rounded to Single
      {Variant(16777217),            Variant(16777216.0f),        kGreater},  // but not a Long
      {Variant(Currency{1000}),      Variant(0.10000001),         kEqual},
      {ObjectWith(Variant("a")),     ObjectWith(Variant("b")),    kLess},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    const Comparison reversed = c.expected == kLess      ? kGreater
                                : c.expected == kGreater ? kLess
                                                         : c.expected;
    EXPECT_EQ(Compare(c.a, c.b), c.expected);
    EXPECT_EQ(Compare(c.b, c.a), reversed);
    EXPECT_EQ(VarEqual(c.a, c.b), c.expected == kEqual);
  }
}

TEST(Compare, RaisesForOperandsWithoutAComparableValue) {
  // clang-format off
  struct Case { Variant a, b; std::int32_t error; };
  const Case cases[] = {
      {Variant::Missing(),            Variant(1),                13},
      {Variant(1),                    Variant::Missing(),        13},
      {Variant(ByteArray{1}),         Variant(1),                13},
      {Variant(VariantArray{}),       Variant(VariantArray{}),   13},
      {Variant::Nothing(),            Variant::Null(),           91},
      {Variant(1),                    Variant::Nothing(),        91},
      {test_support::ObjectWithoutDefault(), Variant(1),         438},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_TRUE(RaisesRuntimeError([&] { Compare(c.a, c.b); }, c.error));
    EXPECT_TRUE(RaisesRuntimeError([&] { VarEqual(c.a, c.b); }, c.error));
  }
}

}  // namespace
}  // namespace brix
