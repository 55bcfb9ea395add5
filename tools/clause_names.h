// The enumerator names of the 32 clauses, for lists that show a clause's number and name.
#pragma once

#include <cstdint>
#include <string_view>

namespace brix::brixq {

/// "qbe_ClauseBetween" for 1 ... "qbe_ClauseTimeLessThanNow" for 32; "" for any other number.
std::string_view ClauseName(std::int32_t number);

/// The number of clauses: 32.
inline constexpr std::int32_t kClauseCount = 32;

}  // namespace brix::brixq
