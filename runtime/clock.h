// The one replaceable clock that answers "the system date" and "now" for the whole library.
#pragma once

#include <memory>

namespace brix {

/// A source of the local date and time as a day number (see `Date`).
class Clock {
 public:
  virtual ~Clock() = default;
  /// The current local date and time as a day number with the time as a fraction.
  virtual double Now() const = 0;

  /// The clock the library reads; the system clock unless replaced.
  static std::shared_ptr<const Clock> Current();
  /// Replaces the library's clock; a null pointer restores the system clock.
  static void Set(std::shared_ptr<const Clock> clock);
};

/// The machine's local time.
class SystemClock final : public Clock {
 public:
  double Now() const override;
};

/// A clock that always answers the same moment.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(double serial) : serial_(serial) {}
  double Now() const override { return serial_; }

 private:
  double serial_;
};

/// Sets a clock for the lifetime of the object and restores the previous one afterwards.
class ScopedClock {
 public:
  explicit ScopedClock(std::shared_ptr<const Clock> clock);
  /// Fixes the clock at `serial`.
  explicit ScopedClock(double serial);
  ~ScopedClock();
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;

 private:
  std::shared_ptr<const Clock> previous_;
};

/// Now: the clock's date and time.
double Now();
/// The system date: the clock's date, time of day 0.
double SystemDate();
/// Seconds since local midnight, as the platform's `Timer` (Single, millisecond fraction).
float Timer();

}  // namespace brix
