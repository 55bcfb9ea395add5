// The clause enumerators' names, in the order of their values.
#include "tools/clause_names.h"

#include <array>

namespace brix::brixq {

std::string_view ClauseName(std::int32_t number) {
  static constexpr std::array<std::string_view, kClauseCount> kNames = {
      "qbe_ClauseBetween",
      "qbe_ClauseContains",
      "qbe_ClauseEqualTo",
      "qbe_ClauseGreaterOrEqual",
      "qbe_ClauseGreaterThan",
      "qbe_ClauseIsEmpty",
      "qbe_ClauseIsNull",
      "qbe_ClauseLessOrEqual",
      "qbe_ClauseLessThan",
      "qbe_ClauseNotContains",
      "qbe_ClauseNotEqual",
      "qbe_ClauseNotStartingWith",
      "qbe_ClauseStartingWith",
      "qbe_ClauseToday",
      "qbe_ClauseThisWeek",
      "qbe_ClauseThisMonth",
      "qbe_ClauseInList",
      "qbe_ClauseLastXDays",
      "qbe_ClauseNotInList",
      "qbe_ClauseNotIsEmpty",
      "qbe_ClauseLastXMonths",
      "qbe_ClauseThisYear",
      "qbe_ClauseYear",
      "qbe_ClauseLastXYears",
      "qbe_ClauseContainsWordsNear",
      "qbe_ClauseContainsWords",
      "qbe_ClauseContainsExpression",
      "qbe_ClauseNextXDays",
      "qbe_ClauseOverXDays",
      "qbe_ClauseTimeNow",
      "qbe_ClauseTimeGreaterThanNow",
      "qbe_ClauseTimeLessThanNow"};
  return number >= 1 && number <= kClauseCount ? kNames[number - 1] : std::string_view();
}

}  // namespace brix::brixq
