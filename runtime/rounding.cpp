// Half-to-even rounding.
#include "runtime/rounding.h"

#include <cmath>

namespace brix {

double RoundHalfEven(double value) {
  double lower = std::floor(value);
  double rest = value - lower;
  if (rest < 0.5) return lower;
  if (rest > 0.5) return lower + 1;
  return std::fmod(lower, 2.0) == 0 ? lower : lower + 1;
}

}  // namespace brix
