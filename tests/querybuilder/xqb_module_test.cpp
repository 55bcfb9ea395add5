// The platform generator's known sequence, the identity under a fixed clock, and the bounds rule.
#include "querybuilder/xqb_module.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::RaisesRuntimeError;

// Runs `draw` on a new thread, whose generator starts from its initial state.
template <class Draw>
auto OnFreshThread(Draw draw) {
  decltype(draw()) result{};
  std::thread([&] { result = draw(); }).join();
  return result;
}

TEST(XqbModule, RndStartsWithThePlatformSequence) {
  auto values = OnFreshThread([] {
    return std::vector<float>{xqb_Module::Rnd(), xqb_Module::Rnd(), xqb_Module::Rnd()};
  });
  EXPECT_FLOAT_EQ(values[0], 0.7055475f);
  EXPECT_FLOAT_EQ(values[1], 0.533424f);
  EXPECT_FLOAT_EQ(values[2], 0.5795186f);
}

TEST(XqbModule, IdentitiesAreDeterminedByTheClock) {
  struct Case {
    double serial;
    std::vector<std::int32_t> expected;
  } const cases[] = {
      {45000.5, {9229, 4837, 2723}},  // Timer 43200
      {45000.0, {1831, 7440, 7060}},  // Timer 0
  };
  for (const auto& c : cases) {
    ScopedClock clock(c.serial);
    auto drawn = OnFreshThread([] {
      std::vector<std::int32_t> ids;
      for (int i = 0; i < 3; ++i) ids.push_back(xqb_Module::RandomNumber(0, 10000));
      return ids;
    });
    EXPECT_EQ(drawn, c.expected) << c.serial;
  }
}

TEST(XqbModule, IdentityStaysWithinItsBoundsAllDayLong) {
  for (double seconds = 0; seconds < 86400; seconds += 0.997) {
    ScopedClock clock(45000 + seconds / 86400);
    std::int32_t id = xqb_Module::RandomNumber(0, 10000);
    ASSERT_GE(id, 0) << seconds;
    ASSERT_LE(id, 10000) << seconds;
  }
}

TEST(XqbModule, BoundsRule) {
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  ScopedClock clock(45000.25);
  struct Case {
    std::int32_t low;
    std::int32_t high;
    std::int32_t min;
    std::int32_t max;
  } const cases[] = {
      {0, kMax, 1, kMax - 1},  // the generator step itself
      {10, 5, 5, 10},          // reversed bounds fold from the upper one
      {7, 7, 7, 7},
      {-5, 5, -5, 5},
  };
  for (const auto& c : cases) {
    for (int i = 0; i < 50; ++i) {
      std::int32_t n = xqb_Module::RandomNumber(c.low, c.high);
      ASSERT_GE(n, c.min) << c.low << ".." << c.high;
      ASSERT_LE(n, c.max) << c.low << ".." << c.high;
    }
  }
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Module::RandomNumber(0, kMin); }, kErrOverflow));
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Module::RandomNumber(-1, kMax); }, kErrOverflow));
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Module::RandomNumber(kMax, -1); }, kErrOverflow));
}

}  // namespace
}  // namespace brix
