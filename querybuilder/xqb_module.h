// Shared routines of the query model: the platform's pseudo-random generator and the random
// identity drawn for new conditions. The generator's state belongs to whoever draws from it (a
// conditions collection keeps its own), so nothing is shared between objects or threads.
#pragma once

#include <cstdint>

namespace brix::xqb_Module {

/// The state of a generator that has drawn nothing yet.
inline constexpr std::uint32_t kRndInitialState = 0x50000;

/// Re-seeds the generator `state` as the platform's `Randomize` without argument does: the
/// middle 16 bits of the 24-bit state are replaced from the bit pattern of `Timer()` (the
/// library clock), the low byte is kept.
void Randomize(std::uint32_t& state);

/// The platform's `Rnd`: advances the 24-bit linear congruential generator `state` and returns
/// the new state / 2^24, a Single in [0, 1).
float Rnd(std::uint32_t& state);

/// A pseudo-random integer from `low` to `high`: re-seeds `state` from the clock, draws a start
/// value from `Rnd`, takes one minimal-standard (48271, 2^31 - 1) step and folds it into the bounds
/// (`low` > `high` folds from `high` upwards). With `low` 0 and `high` 2147483647 the step itself
/// is returned. Overflow of any intermediate 32-bit result raises error 6.
std::int32_t RandomNumber(std::uint32_t& state, std::int32_t low, std::int32_t high);

}  // namespace brix::xqb_Module
