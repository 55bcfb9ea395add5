// The library-wide clock: system time unless a test or the command line fixes it.
#include "runtime/clock.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <mutex>

#include "runtime/dates.h"

namespace brix {
namespace {

std::mutex& ClockMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<const Clock>& CurrentClock() {
  static std::shared_ptr<const Clock> clock = std::make_shared<SystemClock>();
  return clock;
}

}  // namespace

std::shared_ptr<const Clock> Clock::Current() {
  std::lock_guard lock(ClockMutex());
  return CurrentClock();
}

void Clock::Set(std::shared_ptr<const Clock> clock) {
  if (!clock) clock = std::make_shared<SystemClock>();
  std::lock_guard lock(ClockMutex());
  CurrentClock() = std::move(clock);
}

double SystemClock::Now() const {
  using namespace std::chrono;
  auto now = system_clock::now();
  std::time_t seconds = system_clock::to_time_t(now);
  auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  double day = DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  double time =
      (local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec + millis / 1000.0) / 86400.0;
  return day + time;
}

ScopedClock::ScopedClock(std::shared_ptr<const Clock> clock) : previous_(Clock::Current()) {
  Clock::Set(std::move(clock));
}

ScopedClock::ScopedClock(double serial) : ScopedClock(std::make_shared<FixedClock>(serial)) {}

ScopedClock::~ScopedClock() { Clock::Set(previous_); }

double Now() { return Clock::Current()->Now(); }

double SystemDate() { return DatePart(Now()); }

float Timer() {
  double now = Now();
  double seconds = (now - std::floor(now)) * 86400.0;
  return static_cast<float>(std::round(seconds * 1000.0) / 1000.0);
}

}  // namespace brix
