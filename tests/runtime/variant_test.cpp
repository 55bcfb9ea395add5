// Variant type codes and the platform's comparison of two variant operands.
#include "runtime/variant.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "runtime/conversions.h"
#include "tests/runtime/runtime_test_support.h"

namespace brix {
namespace {

using test_support::ExpectRuntimeError;
using test_support::kTypeMismatch;
using test_support::ObjectWith;
using test_support::ObjectWithoutDefault;

TEST(Variant, ReportsThePlatformTypeCodes) {
  struct Case {
    Variant value;
    std::int32_t code;
  } cases[] = {
      {Variant(), 0},
      {Variant::Null(), 1},
      {Variant(std::int16_t{1}), 2},
      {Variant(1), 3},
      {Variant(1.0f), 4},
      {Variant(1.0), 5},
      {Variant(Currency{1}), 6},
      {Variant(Date{1}), 7},
      {Variant("x"), 8},
      {Variant::Nothing(), 9},
      {Variant::Missing(), 10},
      {Variant(true), 11},
      {Variant(std::uint8_t{1}), 17},
      {Variant(ByteArray{1}), 8209},
      {Variant(VariantArray{}), 8204},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    EXPECT_EQ(c.value.Type(), c.code);
  }
  EXPECT_EQ(Variant::Missing().AsError().code, -2147352572);
  EXPECT_TRUE(Variant::Missing().IsMissing());
  EXPECT_FALSE(Variant(ErrorValue{5}).IsMissing());
  EXPECT_TRUE(Variant::Nothing().IsObject());
  ExpectRuntimeError([] { Variant("5").AsLong(); }, 13, kTypeMismatch);
}

const char* Name(Comparison c) {
  switch (c) {
    case Comparison::kLess:
      return "less";
    case Comparison::kEqual:
      return "equal";
    case Comparison::kGreater:
      return "greater";
    case Comparison::kNull:
      return "null";
  }
  return "?";
}

TEST(Compare, FollowsThePlatformRulesForVariantOperands) {
  struct Case {
    const char* label;
    Variant a;
    Variant b;
    Comparison expected;
  } cases[] = {
      {"5 = \"5\": a number is less than a string", Variant(5), Variant("5"), Comparison::kLess},
      {"\"5\" against 5", Variant("5"), Variant(5), Comparison::kGreater},
      {"Date against text", Variant(Date{1}), Variant("x"), Comparison::kLess},
      {"\"\" = Empty", Variant(""), Variant(), Comparison::kEqual},
      {"0 = Empty", Variant(0), Variant(), Comparison::kEqual},
      {"Empty < 1", Variant(), Variant(1.5), Comparison::kLess},
      {"\"0\" = Empty", Variant("0"), Variant(), Comparison::kGreater},
      {"Empty = Empty", Variant(), Variant(), Comparison::kEqual},
      {"Null = Null", Variant::Null(), Variant::Null(), Comparison::kNull},
      {"Null = 1", Variant::Null(), Variant(1), Comparison::kNull},
      {"missing = Null", Variant::Missing(), Variant::Null(), Comparison::kNull},
      {"True = -1", Variant(true), Variant(-1), Comparison::kEqual},
      {"False = 0", Variant(false), Variant(0.0), Comparison::kEqual},
      {"Date 2 = 2", Variant(Date{2}), Variant(std::int16_t{2}), Comparison::kEqual},
      {"Byte = Integer", Variant(std::uint8_t{255}), Variant(std::int16_t{255}),
       Comparison::kEqual},
      {"\"abc\" = \"ABC\"", Variant("abc"), Variant("ABC"), Comparison::kGreater},
      {"\"B\" < \"a\"", Variant("B"), Variant("a"), Comparison::kLess},
      {"\"z\" < accented", Variant("z"), Variant("\u00C0"), Comparison::kLess},
      {"prefix first", Variant("ab"), Variant("abc"), Comparison::kLess},
      {"UTF-16 order", Variant("\U0001F600"), Variant("\uFFFD"), Comparison::kLess},
      {"missing = missing", Variant::Missing(), Variant::Missing(), Comparison::kEqual},
      {"Single 0.1 = Double 0.1", Variant(0.1f), Variant(0.1), Comparison::kEqual},
      {"Double 0.1 = Single 0.1", Variant(0.1), Variant(0.1f), Comparison::kEqual},
      {"Long against Single is not rounded", Variant(16777217), Variant(16777216.0f),
       Comparison::kGreater},
      {"Currency drops tiny fractions", Variant(Currency{1000}), Variant(0.10000001),
       Comparison::kEqual},
      {"Currency against Long", Variant(Currency{-10000}), Variant(0), Comparison::kLess},
      {"object default value", ObjectWith(Variant(5)), Variant(5), Comparison::kEqual},
      {"object against object", ObjectWith(Variant("a")), ObjectWith(Variant("b")),
       Comparison::kLess},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    EXPECT_STREQ(Name(Compare(c.a, c.b)), Name(c.expected));
    EXPECT_EQ(VarEqual(c.a, c.b), c.expected == Comparison::kEqual);
  }
}

TEST(Compare, RaisesForOperandsWithoutAComparableValue) {
  std::function<void()> mismatches[] = {
      [] { Compare(Variant::Missing(), Variant(1)); },
      [] { Compare(Variant(1), Variant::Missing()); },
      [] { VarEqual(Variant::Missing(), Variant("")); },
      [] { Compare(Variant(ByteArray{1}), Variant(1)); },
      [] { Compare(Variant(VariantArray{}), Variant(VariantArray{})); },
  };
  for (auto& action : mismatches) ExpectRuntimeError(action, 13, kTypeMismatch);
  for (auto action : std::initializer_list<std::function<void()>>{
           [] { Compare(Variant::Nothing(), Variant(1)); },
           [] { VarEqual(Variant(1), Variant::Nothing()); },
           [] { Compare(Variant::Nothing(), Variant::Null()); },
       }) {
    ExpectRuntimeError(action, 91, "Object variable or With block variable not set");
  }
  ExpectRuntimeError([] { Compare(ObjectWithoutDefault(), Variant(1)); }, 438,
                     "Object doesn't support this property or method");
}

}  // namespace
}  // namespace brix
