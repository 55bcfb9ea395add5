// A per-thread fixed moment over the system clock.
#include "tools/request_clock.h"

namespace brix::brixq {
namespace {

thread_local bool fixed = false;
thread_local double fixed_serial = 0;

}  // namespace

double RequestClock::Now() const { return fixed ? fixed_serial : SystemClock().Now(); }

ScopedRequestDate::ScopedRequestDate(double serial)
    : had_previous_(fixed), previous_(fixed_serial) {
  fixed = true;
  fixed_serial = serial;
}

ScopedRequestDate::~ScopedRequestDate() {
  fixed = had_previous_;
  fixed_serial = previous_;
}

}  // namespace brix::brixq
