// Date operands: the day number and the "dd-MMM-yyyy" text of a condition's operand.
#include "querybuilder/operand_dates.h"

#include <cmath>
#include <optional>

#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {

double OperandSerial(const Variant& operand) {
  Variant value = SimpleValue(operand);
  if (value.IsString()) {
    if (std::optional<double> date = ParseDate(value.AsString())) return *date;
    if (std::optional<double> number = ParseNumber(value.AsString())) return *number;
    RaiseRuntimeError(kErrTypeMismatch);
  }
  if (value.IsNumericKind()) return value.NumericValue();
  return CDate(value).serial;  // Empty is day 0, Null raises 94, arrays and error values 13
}

double OperandDay(const Variant& operand) {
  // CDate checks the range; before day 0 the sign belongs to the day alone, so truncation keeps
  // the day.
  return std::trunc(CDate(Variant(OperandSerial(operand))).serial);
}

std::int32_t OperandDayNumber(const Variant& operand) {
  return CLng(Variant(OperandSerial(operand)));
}

std::string OperandDateText(const Variant& operand) { return Format(operand, "dd-MMM-yyyy"); }

}  // namespace brix
