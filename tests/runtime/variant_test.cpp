// Variant type codes and the platform's comparison of two variant operands.
#include "runtime/variant.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

using test_support::ObjectWith;
using test_support::RaisesRuntimeError;

TEST(Variant, ReportsThePlatformTypeCodes) {
  // clang-format off
  struct Case { Variant value; std::int32_t code; };
  const Case cases[] = {
      {Variant(),                 0},
      {Variant::Null(),           1},
      {Variant(std::int16_t{1}),  2},
      {Variant(1),                3},
      {Variant(1.0f),             4},
      {Variant(1.0),              5},
      {Variant(Currency{1}),      6},
      {Variant(Date{1}),          7},
      {Variant("x"),              8},
      {Variant::Nothing(),        9},
      {Variant::Missing(),        10},
      {Variant(true),             11},
      {Variant(std::uint8_t{1}),  17},
      {Variant(ByteArray{1}),     8209},
      {Variant(VariantArray{}),   8204},
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(c.value.Type(), c.code);
  EXPECT_TRUE(Variant::Missing().IsMissing());
  EXPECT_FALSE(Variant(ErrorValue{5}).IsMissing());
  EXPECT_TRUE(RaisesRuntimeError([] { Variant("5").AsLong(); }, 13));
}

TEST(Compare, FollowsThePlatformRulesForVariantOperands) {
  constexpr Comparison kLess = Comparison::kLess, kEqual = Comparison::kEqual,
                       kGreater = Comparison::kGreater, kNull = Comparison::kNull;
  // clang-format off
  struct Case { Variant a, b; Comparison expected; };
  const Case cases[] = {
      {Variant(5),                   Variant("5"),                kLess},  // numbers before text
      {Variant("5"),                 Variant(5),                  kGreater},
      {Variant(""),                  Variant(),                   kEqual},  // Empty is "" for text
      {Variant("0"),                 Variant(),                   kGreater},
      {Variant(0),                   Variant(),                   kEqual},  // and 0 for numbers
      {Variant(),                    Variant(),                   kEqual},
      {Variant(),                    Variant(1.5),                kLess},
      {Variant::Null(),              Variant(1),                  kNull},
      {Variant::Missing(),           Variant::Null(),             kNull},
      {Variant::Missing(),           Variant::Missing(),          kEqual},
      {Variant(true),                Variant(-1),                 kEqual},
      {Variant(false),               Variant(0.0),                kEqual},
      {Variant(Date{2}),             Variant(std::int16_t{2}),    kEqual},
      {Variant(std::uint8_t{255}),   Variant(std::int16_t{255}),  kEqual},
      {Variant("B"),                 Variant("a"),                kLess},  // by UTF-16 code units
      {Variant("\U0001F600"),        Variant("\uFFFD"),           kLess},
      {Variant(0.1f),                Variant(0.1),                kEqual},  // rounded to Single
      {Variant(0.1),                 Variant(0.1f),               kEqual},
      {Variant(16777217),            Variant(16777216.0f),        kGreater},  // but not a Long
      {Variant(Currency{1000}),      Variant(0.10000001),         kEqual},
      {Variant(0.10000001),          Variant(Currency{1000}),     kEqual},
      {ObjectWith(Variant("a")),     ObjectWith(Variant("b")),    kLess},
  };
  // clang-format on
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Compare(cases[i].a, cases[i].b), cases[i].expected);
    EXPECT_EQ(VarEqual(cases[i].a, cases[i].b), cases[i].expected == kEqual);
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
