// The service's clock: the system time, unless the request being handled on this thread fixed it.
#pragma once

#include "runtime/clock.h"

namespace brix::brixq {

/// Installed once as the library's clock by the server, so that a request's fixed date never
/// leaks into a request that another thread handles at the same time.
class RequestClock final : public Clock {
 public:
  double Now() const override;
};

/// Fixes the time this thread's `RequestClock` answers for the lifetime of the object.
class ScopedRequestDate {
 public:
  explicit ScopedRequestDate(double serial);
  ~ScopedRequestDate();
  ScopedRequestDate(const ScopedRequestDate&) = delete;
  ScopedRequestDate& operator=(const ScopedRequestDate&) = delete;

 private:
  bool had_previous_;
  double previous_;
};

}  // namespace brix::brixq
