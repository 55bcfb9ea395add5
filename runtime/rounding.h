// The platform's rounding of numbers to whole values: half to even, overflow raising 6.
#pragma once

#include <cstdint>
#include <limits>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {

/// Rounds half to even, as the platform's integer and currency conversions do.
double RoundHalfEven(double value);

/// `value` rounded half to even as an `Integer` (16-, 32- or 64-bit); a result outside the type
/// (or NaN) raises 6.
template <class Integer>
Integer RoundToWhole(double value) {
  const double rounded = RoundHalfEven(value);
  // The upper bound of a 64-bit type is not a double: compare against 2^63 exclusively.
  constexpr double kUpper = static_cast<double>(std::numeric_limits<Integer>::max() / 2 + 1) * 2;
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) && rounded < kUpper)) {
    RaiseRuntimeError(kErrOverflow);
  }
  return static_cast<Integer>(rounded);
}

}  // namespace brix
