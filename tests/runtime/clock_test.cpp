// The replaceable clock: fixed moments for tests, restored afterwards, and the system clock.
#include "runtime/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <memory>

#include "runtime/dates.h"

namespace brix {
namespace {

constexpr double kMarch1st2010 = 40238;

class CountingClock final : public Clock {
 public:
  double Now() const override { return kMarch1st2010 + ++calls_ / 86400.0; }

 private:
  mutable int calls_ = 0;
};

// The machine's local date and time, read independently of the library.
double LocalNow() {
  std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  return DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
         (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / 86400.0;
}

TEST(ScopedClock, FixesNowSystemDateAndTimerAndRestoresTheOuterClock) {
  {
    ScopedClock outer(kMarch1st2010 + 0.5);
    EXPECT_EQ(Now(), kMarch1st2010 + 0.5);
    EXPECT_EQ(SystemDate(), kMarch1st2010);
    EXPECT_EQ(Timer(), 43200.0f);
    {
      ScopedClock inner(kMarch1st2010 + (3661.25 / 86400.0));
      EXPECT_EQ(Timer(), 3661.25f);
      EXPECT_EQ(FormatDate(Now(), "hh:mm"), "01:01");
    }
    EXPECT_EQ(Now(), kMarch1st2010 + 0.5);
    {
      ScopedClock custom(std::make_shared<CountingClock>());
      EXPECT_EQ(Now(), kMarch1st2010 + 1 / 86400.0);
      EXPECT_EQ(Now(), kMarch1st2010 + 2 / 86400.0);
    }
    EXPECT_EQ(Now(), kMarch1st2010 + 0.5);
  }
  EXPECT_NEAR(Now(), LocalNow(), 60 / 86400.0);  // back on the system clock
  EXPECT_EQ(SystemDate(), DatePart(Now()));
}

TEST(Clock, SettingNoClockRestoresTheSystemClock) {
  Clock::Set(std::make_shared<FixedClock>(kMarch1st2010));
  EXPECT_EQ(Now(), kMarch1st2010);
  Clock::Set(nullptr);
  EXPECT_NEAR(Now(), LocalNow(), 60 / 86400.0);
}

}  // namespace
}  // namespace brix
