// How a condition's operand reads as a date: its day number and its "dd-MMM-yyyy" text. The WHERE
// text, the full-text request and the condition descriptions all read date operands here.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/variant.h"

namespace brix {

/// The day number an operand stands for, the time of day as its fraction. It reads as the
/// platform's date conversion (`CDate`) does: Empty is day 0, Null raises 94, a date is its day
/// number, a date text ("3/2/2010", "05-Mar-2010 14:30") its date, an array or error value
/// raises 13, an object reads through its default value. Two readings go beyond `CDate`:
/// - text holding a number (`ParseNumber`: "43051", "31809.40", " 1,000 ") is that day number,
///   as the platform's formatting reads it; definitions loaded from a document hold their
///   operands as text, and a saved date is often its day number. A text that reads both ways is
///   taken as a date first. Other text raises 13;
/// - numbers and Booleans (True is -1, False 0) are their value, not checked against the date
///   range here: each use below applies its own range.
double OperandSerial(const Variant& operand);

/// The whole day of an operand, for ranges written as day numbers: `OperandSerial` with the time
/// of day dropped (-1.25, 29 December 1899 at 06:00, is day -1). Raises 6 outside 1 Jan 100 ..
/// 31 Dec 9999, and what `OperandSerial` raises.
double OperandDay(const Variant& operand);

/// The operand as a 32-bit day number, for numeric fields that hold dates: `OperandSerial`
/// rounded half to even as `CLng` rounds, so a date after noon counts as the next day. Raises 6
/// outside the range of a Long (a number beyond the date range is kept), and what
/// `OperandSerial` raises.
std::int32_t OperandDayNumber(const Variant& operand);

/// The operand as "dd-MMM-yyyy" text ("12-Nov-2017"), as the platform's `Format` writes it: it
/// reads what `OperandSerial` reads and the same way, but never refuses a value: Empty and Null
/// give "", and text that is neither a date nor a number in the date range ("abc", "3000000")
/// and numbers beyond that range give their string form. Raises only for arrays (13) and objects
/// without a default value (91 for Nothing, 438).
std::string OperandDateText(const Variant& operand);

}  // namespace brix
