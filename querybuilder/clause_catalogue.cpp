// Display texts and default clause lists of the query model.
#include "querybuilder/clause_catalogue.h"

#include <array>
#include <string_view>

namespace brix {
namespace {

constexpr std::array<std::string_view, 33> kClauseTexts = {
    "",
    "intre ___ si ___",
    "contine",
    "sa fie",
    "este mai mare sau egal cu",
    "este mai mare ca",
    "lipseste",
    "este <NULL>",
    "este mai mic sau egal cu",
    "este mai mic ca",
    "nu contine",
    "nu este",
    "nu incepe cu",
    "incepe cu",
    "astazi",
    "saptamana aceasta",
    "luna aceasta",
    "in lista: ___",
    "din ultimele zile ___",
    "nu este in lista ___",
    "nu lipseste",
    "din ultimele luni ___",
    "din acest an",
    "din anul ___",
    "din ultimii ani ___",
    "contine apropiat cuvintele",
    "contine cuvintele",
    "contine expresia",
    "in urmatoarele ___ zile",
    "peste ___ zile",
    "este ora curenta",
    "este mai mare decat ora curenta",
    "este mai mic decat ora curenta",
};

constexpr std::array<std::string_view, 7> kDataTypeTexts = {
    "", "BLOB", "Boolean", "Date", "Memo", "Numeric", "String",
};

constexpr std::array<std::string_view, 8> kAggregateTexts = {
    "None", "Count", "Sum", "Average", "Min", "Max", "Standard deviation", "Value count",
};

// Position 0 is never used, so an out-of-range value can share the "" answer.
template <std::size_t N>
std::string TextAt(const std::array<std::string_view, N>& texts, std::int32_t value) {
  if (value < 1 || static_cast<std::size_t>(value) >= N) return {};
  return std::string(texts[static_cast<std::size_t>(value)]);
}

constexpr qbe_ClauseOperator kBooleanClauses[] = {qbe_ClauseEqualTo};

constexpr qbe_ClauseOperator kDateClauses[] = {
    qbe_ClauseBetween,     qbe_ClauseEqualTo,   qbe_ClauseGreaterOrEqual, qbe_ClauseGreaterThan,
    qbe_ClauseLessOrEqual, qbe_ClauseLessThan,  qbe_ClauseNotEqual,       qbe_ClauseLastXDays,
    qbe_ClauseToday,       qbe_ClauseThisMonth, qbe_ClauseThisWeek,       qbe_ClauseLastXMonths,
    qbe_ClauseThisYear,    qbe_ClauseYear,      qbe_ClauseLastXYears,     qbe_ClauseNextXDays,
    qbe_ClauseOverXDays,   qbe_ClauseIsEmpty,   qbe_ClauseNotIsEmpty,
};

// The date defaults without qbe_ClauseThisMonth: what a date field's edited list is tested for.
constexpr qbe_ClauseOperator kDateListedClauses[] = {
    qbe_ClauseBetween,     qbe_ClauseEqualTo,    qbe_ClauseGreaterOrEqual, qbe_ClauseGreaterThan,
    qbe_ClauseLessOrEqual, qbe_ClauseLessThan,   qbe_ClauseNotEqual,       qbe_ClauseLastXDays,
    qbe_ClauseToday,       qbe_ClauseThisWeek,   qbe_ClauseLastXMonths,    qbe_ClauseThisYear,
    qbe_ClauseYear,        qbe_ClauseLastXYears, qbe_ClauseNextXDays,      qbe_ClauseOverXDays,
    qbe_ClauseIsEmpty,     qbe_ClauseNotIsEmpty,
};

constexpr qbe_ClauseOperator kTextClauses[] = {
    qbe_ClauseContains,        qbe_ClauseEqualTo,      qbe_ClauseNotContains, qbe_ClauseNotEqual,
    qbe_ClauseNotStartingWith, qbe_ClauseStartingWith, qbe_ClauseInList,      qbe_ClauseNotInList,
    qbe_ClauseGreaterOrEqual,  qbe_ClauseGreaterThan,  qbe_ClauseLessOrEqual, qbe_ClauseLessThan,
    qbe_ClauseIsEmpty,         qbe_ClauseNotIsEmpty,
};

constexpr qbe_ClauseOperator kNumberClauses[] = {
    qbe_ClauseBetween,     qbe_ClauseEqualTo,  qbe_ClauseGreaterOrEqual, qbe_ClauseGreaterThan,
    qbe_ClauseLessOrEqual, qbe_ClauseLessThan, qbe_ClauseNotEqual,       qbe_ClauseInList,
    qbe_ClauseNotInList,   qbe_ClauseIsEmpty,  qbe_ClauseNotIsEmpty,
};

constexpr qbe_ClauseOperator kFullTextClauses[] = {
    qbe_ClauseContainsWordsNear,
    qbe_ClauseContainsWords,
    qbe_ClauseContainsExpression,
};

constexpr qbe_ClauseOperator kTimeClauses[] = {
    qbe_ClauseTimeNow,         qbe_ClauseTimeGreaterThanNow,
    qbe_ClauseTimeLessThanNow, qbe_ClauseBetween,
    qbe_ClauseEqualTo,         qbe_ClauseGreaterOrEqual,
    qbe_ClauseGreaterThan,     qbe_ClauseLessOrEqual,
    qbe_ClauseLessThan,        qbe_ClauseNotEqual,
    qbe_ClauseIsEmpty,         qbe_ClauseNotIsEmpty,
};

}  // namespace

std::string ClauseDescription(qbe_ClauseOperator clause) { return TextAt(kClauseTexts, clause); }

std::string DataTypeDescription(qbe_DataType data_type) {
  return TextAt(kDataTypeTexts, data_type);
}

std::string SortTypeDescription(qbe_SortType sort_type) {
  switch (sort_type) {
    case qbe_SortNone:
      return "None";
    case qbe_SortAscending:
      return "Ascending";
    case qbe_SortDescending:
      return "Descending";
  }
  return {};
}

std::string AggregateFunctionDescription(qbe_AggregateFunctionType aggregate_function) {
  if (aggregate_function < 0 || aggregate_function >= std::ssize(kAggregateTexts)) return {};
  return std::string(kAggregateTexts[static_cast<std::size_t>(aggregate_function)]);
}

std::string WhereClauseLogicDescription(qbe_WhereClauseLogic logic) {
  switch (logic) {
    case qbe_LogicAnd:
      return " AND ";
    case qbe_LogicOr:
      return " OR ";
    default:
      return {};
  }
}

bool IsFullTextClause(qbe_ClauseOperator clause) {
  return clause == qbe_ClauseContainsWordsNear || clause == qbe_ClauseContainsWords ||
         clause == qbe_ClauseContainsExpression;
}

bool IsCountedClause(qbe_ClauseOperator clause) {
  switch (clause) {
    case qbe_ClauseLastXDays:
    case qbe_ClauseLastXMonths:
    case qbe_ClauseYear:
    case qbe_ClauseLastXYears:
    case qbe_ClauseNextXDays:
    case qbe_ClauseOverXDays:
      return true;
    default:
      return false;
  }
}

bool IsRangeClause(qbe_ClauseOperator clause) {
  switch (clause) {
    case qbe_ClauseBetween:
    case qbe_ClauseThisWeek:
    case qbe_ClauseThisMonth:
    case qbe_ClauseThisYear:
    case qbe_ClauseYear:
    case qbe_ClauseLastXDays:
    case qbe_ClauseLastXMonths:
    case qbe_ClauseLastXYears:
    case qbe_ClauseNextXDays:
      return true;
    default:
      return false;
  }
}

std::span<const qbe_ClauseOperator> DefaultAvailableClauses(qbe_DataType show_as_type) {
  switch (show_as_type) {
    case qbe_DataBoolean:
      return kBooleanClauses;
    case qbe_DataDate:
      return kDateClauses;
    case qbe_DataMemo:
    case qbe_DataString:
      return kTextClauses;
    case qbe_DataNumeric:
    case qbe_DataDecimal:
      return kNumberClauses;
    case qbe_DataUserDefined3:
      return kFullTextClauses;
    case qbe_DataTime:
      return kTimeClauses;
    default:
      return {};
  }
}

std::span<const qbe_ClauseOperator> ListingCandidates(qbe_DataType show_as_type,
                                                      bool list_is_empty) {
  if (show_as_type == qbe_DataDate && !list_is_empty) return kDateListedClauses;
  return DefaultAvailableClauses(show_as_type);
}

}  // namespace brix
