// The replaceable clock: fixed moments for tests, restored afterwards, and the system clock.
#include "runtime/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <memory>

#include "runtime/dates.h"

namespace brix {
namespace {

constexpr double kMarch1st2010 = 40238;

// Expects the library to read the machine's local date and time, taken here independently.
void ExpectSystemClock() {
  std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  const double local_now = DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
                           (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / 86400.0;
  EXPECT_NEAR(Now(), local_now, 60 / 86400.0);
  EXPECT_EQ(SystemDate(), DatePart(Now()));
}

TEST(Clock, ScopedClocksNestAndRestoreTheSystemClock) {
  {
    ScopedClock outer(kMarch1st2010 + 0.5);
    {
      ScopedClock inner(std::make_shared<FixedClock>(kMarch1st2010 + 3661.25 / 86400.0));
      EXPECT_EQ(Timer(), 3661.25f);
    }
    EXPECT_EQ(Now(), kMarch1st2010 + 0.5);
    EXPECT_EQ(SystemDate(), kMarch1st2010);
  }
  ExpectSystemClock();
  Clock::Set(std::make_shared<FixedClock>(kMarch1st2010));
  EXPECT_EQ(Now(), kMarch1st2010);
  Clock::Set(nullptr);
  ExpectSystemClock();
}

}  // namespace
}  // namespace brix
