// The value/caption lists that hosts fill their combo boxes from, in their published order.
#pragma once

#include "runtime/variant.h"

namespace brix {

// Each returns a variant holding an array (lower bound 0) of two-element arrays (lower bound 0):
// the value as a Long and its English caption. The order is not by value and must stay as it is.

/// 1 "BLOB", 2 "Boolean", 3 "Date", 12 "Decimal", 4 "Memo", 5 "Numeric", 6 "String", 11 "Time",
/// 8 "User defined data type 1", 9 "User defined data type 2", 10 "Large Text",
/// 7 "User defined date".
Variant DataTypeList();
/// 1 "Combo box", 2 "Date", 0 "Text box", 3 "Time".
Variant ControlTypeList();
/// 1 "Ascending", -1 "Descending", 0 "None".
Variant SortTypeList();
/// 3 "Average", 1 "Count", 5 "Max", 4 "Min", 0 "None", 6 "Standard deviation", 2 "Sum",
/// 7 "Value count".
Variant AggregateFunctionList();

}  // namespace brix
