// The operands of the clause kinds: stored values, and the days of ranges and relative kinds.
#include "querybuilder/where_walk.h"

#include "querybuilder/operand_dates.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace brix {
namespace {

struct DayRange {
  double first;
  double last;
};

DayRange WeekOf(double day) {
  double monday = DateAdd(DateInterval::kDay, 1 - Weekday(day, vbMonday), day);
  return {monday, DateAdd(DateInterval::kDay, 6, monday)};
}

DayRange MonthOf(double day) {
  double first = DateSerial(Year(day), Month(day), 1);
  return {first, DateAdd(DateInterval::kDay, -1, DateAdd(DateInterval::kMonth, 1, first))};
}

DayRange YearOf(double day) {
  double first = DateSerial(Year(day), 1, 1);
  return {first, DateAdd(DateInterval::kDay, -1, DateAdd(DateInterval::kYear, 1, first))};
}

// The clock's date moved to the year the condition names.
double InRequestedYear(const Variant& year) {
  double date = SystemDate();
  return DateAdd(DateInterval::kYear, static_cast<double>(CLng(year)) - Year(date), date);
}

// `today` moved back by X units: the range from there to `today`.
DayRange Last(DateInterval interval, const Variant& x, double today) {
  return {DateAdd(interval, -CDbl(x), today), today};
}

DayRange DateRange(const xqb_Condition& condition, double today) {
  const Variant& value = condition.Value();
  switch (condition.Clause()) {
    case qbe_ClauseBetween: {
      double first = OperandDay(value);
      return {first, OperandDay(condition.SecondaryValue())};
    }
    case qbe_ClauseThisWeek:
      return WeekOf(SystemDate());
    case qbe_ClauseThisMonth:
      return MonthOf(SystemDate());
    case qbe_ClauseThisYear:
      return YearOf(SystemDate());
    case qbe_ClauseYear:
      return YearOf(InRequestedYear(value));
    case qbe_ClauseLastXDays:
      return Last(DateInterval::kDay, value, today);
    case qbe_ClauseLastXMonths:
      return Last(DateInterval::kMonth, value, today);
    case qbe_ClauseLastXYears:
      return Last(DateInterval::kYear, value, today);
    default:  // qbe_ClauseNextXDays
      return {today, DateAdd(DateInterval::kDay, CDbl(value), today)};
  }
}

ClauseOperand DayOperand(double serial) { return {ClauseOperand::Kind::kDay, nullptr, serial}; }

}  // namespace

std::pair<ClauseOperand, ClauseOperand> RangeOperands(const xqb_Field& field,
                                                      const xqb_Condition& condition,
                                                      double today) {
  if (field.DBType() != qbe_DataDate) {
    return {{ClauseOperand::Kind::kStored, &condition.Value()},
            {ClauseOperand::Kind::kStored, &condition.SecondaryValue()}};
  }
  DayRange range = DateRange(condition, today);
  return {DayOperand(range.first), DayOperand(range.last)};
}

ClauseOperand SingleOperand(const xqb_Field& field, const xqb_Condition& condition, double today) {
  qbe_ClauseOperator kind = condition.Clause();
  if (kind >= qbe_ClauseTimeNow && kind <= qbe_ClauseTimeLessThanNow) {
    return {ClauseOperand::Kind::kTimeOfDay, nullptr, Now()};
  }
  if (field.DBType() == qbe_DataDate) {
    switch (kind) {
      case qbe_ClauseEqualTo:
      case qbe_ClauseGreaterOrEqual:
      case qbe_ClauseGreaterThan:
      case qbe_ClauseLessOrEqual:
      case qbe_ClauseLessThan:
      case qbe_ClauseNotEqual:
        return {ClauseOperand::Kind::kDateOperand, &condition.Value()};
      case qbe_ClauseToday:
        return DayOperand(today);
      case qbe_ClauseOverXDays:
        return DayOperand(DateAdd(DateInterval::kDay, CDbl(condition.Value()), today));
      default:
        break;
    }
  }
  return {ClauseOperand::Kind::kStored, &condition.Value()};
}

}  // namespace brix
