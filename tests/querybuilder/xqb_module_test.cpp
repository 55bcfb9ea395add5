// The platform generator's known sequence, the identity under a fixed clock, and the bounds rule.
#include "querybuilder/xqb_module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/fresh_thread.h"

namespace brix {
namespace {

using test_support::OnFreshThread;
using test_support::RaisesRuntimeError;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(XqbModule, RndAndIdentitiesFollowThePlatformSequence) {
  OnFreshThread([] {
    EXPECT_FLOAT_EQ(xqb_Module::Rnd(), 0.7055475f);
    EXPECT_FLOAT_EQ(xqb_Module::Rnd(), 0.533424f);
    EXPECT_FLOAT_EQ(xqb_Module::Rnd(), 0.5795186f);
  });
  const std::vector<std::pair<double, std::vector<std::int32_t>>> cases = {
      {45000.5, {9229, 4837, 2723}},  // Timer 43200
      {45000.0, {1831, 7440, 7060}},  // Timer 0
  };
  for (const auto& [serial, expected] : cases) {
    ScopedClock clock(serial);
    std::vector<std::int32_t> drawn;
    OnFreshThread([&] {
      for (int i = 0; i < 3; ++i) drawn.push_back(xqb_Module::RandomNumber(0, 10000));
    });
    EXPECT_EQ(drawn, expected) << serial;
  }
}

TEST(XqbModule, BoundsRule) {
  for (double seconds = 0; seconds < 86400; seconds += 0.997) {
    ScopedClock clock(45000 + seconds / 86400);
    std::int32_t id = xqb_Module::RandomNumber(0, 10000);
    ASSERT_TRUE(id >= 0 && id <= 10000) << seconds;
  }
  ScopedClock clock(45000.25);
  // clang-format off
  const std::vector<std::pair<std::int32_t, std::int32_t>> cases = {
      {0, kMax},  // the generator step itself: 1 .. kMax - 1
      {10, 5},    // reversed bounds fold from the upper one: 5 .. 10
      {7, 7},
      {-5, 5},
  };
  // clang-format on
  for (const auto& [low, high] : cases) {
    const std::int32_t min = low == 0 ? 1 : std::min(low, high);
    const std::int32_t max = low == 0 ? kMax - 1 : std::max(low, high);
    for (int i = 0; i < 50; ++i) {
      std::int32_t n = xqb_Module::RandomNumber(low, high);
      ASSERT_TRUE(n >= min && n <= max) << low << ".." << high << ": " << n;
    }
  }
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Module::RandomNumber(0, kMin); }, kErrOverflow));
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Module::RandomNumber(-1, kMax); }, kErrOverflow));
  EXPECT_TRUE(RaisesRuntimeError([] { xqb_Module::RandomNumber(kMax, -1); }, kErrOverflow));
}

}  // namespace
}  // namespace brix
