// Shared routines of the query model: the platform's pseudo-random generator and the random
// identity drawn for new conditions.
#pragma once

#include <cstdint>

namespace brix::xqb_Module {

/// Re-seeds this thread's generator as the platform's `Randomize` without argument does: the
/// middle 16 bits of the 24-bit state are replaced from the bit pattern of `Timer()` (the
/// library clock), the low byte is kept.
void Randomize();

/// The platform's `Rnd`: advances this thread's 24-bit linear congruential generator (initial
/// state 0x50000) and returns the state / 2^24, a Single in [0, 1).
float Rnd();

/// A pseudo-random integer from `low` to `high`: re-seeds from the clock, draws a start value
/// from `Rnd`, takes one minimal-standard (48271, 2^31 - 1) step and folds it into the bounds
/// (`low` > `high` folds from `high` upwards). With `low` 0 and `high` 2147483647 the step itself
/// is returned. Overflow of any intermediate 32-bit result raises error 6.
std::int32_t RandomNumber(std::int32_t low, std::int32_t high);

}  // namespace brix::xqb_Module
