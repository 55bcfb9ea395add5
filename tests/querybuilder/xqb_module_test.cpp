// The platform's pseudo-random generator and the random identities of new conditions.
#include "querybuilder/xqb_module.h"

#include <gtest/gtest.h>

#include <limits>

#include "runtime/clock.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/fresh_thread.h"

namespace brix {
namespace {

using test_support::OnFreshThread;
using test_support::RaisesRuntimeError;

TEST(XqbModule, RndAndIdentitiesFollowThePlatformSequence) {
  OnFreshThread([] {
    EXPECT_FLOAT_EQ(xqb_Module::Rnd(), 0.7055475f);
    EXPECT_FLOAT_EQ(xqb_Module::Rnd(), 0.533424f);
    EXPECT_FLOAT_EQ(xqb_Module::Rnd(), 0.5795186f);
  });
  using Ids = std::vector<std::int32_t>;
  // At Timer 43200 and at Timer 0.
  for (const auto& [serial, expected] :
       {std::pair{45000.5, Ids{9229, 4837, 2723}}, std::pair{45000.0, Ids{1831, 7440, 7060}}}) {
    ScopedClock clock(serial);
    Ids drawn;
    OnFreshThread([&] {
      for (int i = 0; i < 3; ++i) drawn.push_back(xqb_Module::RandomNumber(0, 10000));
    });
    EXPECT_EQ(drawn, expected) << serial;
  }
}

TEST(XqbModule, BoundsRule) {
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  // low, high, and the range of the results: the generator step itself for 0 .. kMax, reversed
  // bounds folded from the upper one.
  // clang-format off
  const std::vector<std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t>> cases = {
      {0,  10000, 0, 10000},
      {0,  kMax,  1, kMax - 1},
      {10, 5,     5, 10},
      {7,  7,     7, 7},
      {-5, 5,     -5, 5},
  };
  // clang-format on
  for (double seconds = 0; seconds < 86400; seconds += 0.997) {
    ScopedClock clock(45000 + seconds / 86400);
    for (const auto& [low, high, min, max] : cases) {
      std::int32_t n = xqb_Module::RandomNumber(low, high);
      ASSERT_TRUE(n >= min && n <= max) << low << ".." << high << " at " << seconds << ": " << n;
    }
  }
  for (const auto& [low, high] : {std::pair{0, -kMax - 1}, {-1, kMax}, {kMax, -1}}) {
    EXPECT_TRUE(RaisesRuntimeError([&] { xqb_Module::RandomNumber(low, high); }, kErrOverflow));
  }
}

}  // namespace
}  // namespace brix
