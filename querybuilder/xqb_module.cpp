// The platform's Rnd/Randomize pair and the random number routine built on it.
#include "querybuilder/xqb_module.h"

#include <bit>
#include <cmath>
#include <limits>

#include "runtime/clock.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix::xqb_Module {
namespace {

constexpr std::uint32_t kInitialState = 0x50000;
constexpr std::uint32_t kStateMask = 0xFFFFFF;
constexpr std::int64_t kModulus = 2147483647;
constexpr std::int64_t kMultiplier = 48271;
constexpr std::int64_t kQuotient = 44488;  // kModulus / kMultiplier
constexpr std::int64_t kRemainder = 3399;  // kModulus % kMultiplier

thread_local std::uint32_t rnd_state = kInitialState;

// A result of 32-bit arithmetic: raises the overflow error when it leaves the Long range.
std::int64_t Long(std::int64_t value) {
  if (value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max()) {
    RaiseRuntimeError(kErrOverflow);
  }
  return value;
}

}  // namespace

void Randomize() {
  std::uint32_t h = std::bit_cast<std::uint32_t>(Timer());
  rnd_state = (rnd_state & 0xFF0000FFu) | (((h & 0xFFFFu) << 8) ^ ((h >> 8) & 0xFFFF00u));
}

float Rnd() {
  rnd_state = (rnd_state * 0x43FD43FDu + 0xC39EC3u) & kStateMask;
  return static_cast<float>(rnd_state) / 16777216.0f;
}

std::int32_t RandomNumber(std::int32_t low, std::int32_t high) {
  Randomize();
  double r = Rnd();
  // Single times Long is computed in Double; the integer part is stored in a Long.
  double start = std::floor(r * static_cast<double>(Long(std::int64_t{high} - 1)) + 1);
  if (!(start >= std::numeric_limits<std::int32_t>::min() &&
        start <= std::numeric_limits<std::int32_t>::max())) {
    RaiseRuntimeError(kErrOverflow);
  }
  auto s = static_cast<std::int64_t>(start);
  std::int64_t x = Long(Long(kMultiplier * (s % kQuotient)) - Long(kRemainder * (s / kQuotient)));
  if (x < 1) x = Long(x + kModulus);
  if (low == 0 && high == kModulus) return static_cast<std::int32_t>(x);
  if (low >= high) {
    return static_cast<std::int32_t>(Long(x % Long(Long(std::int64_t{low} - high) + 1) + high));
  }
  return static_cast<std::int32_t>(Long(x % Long(Long(std::int64_t{high} - low) + 1) + low));
}

}  // namespace brix::xqb_Module
