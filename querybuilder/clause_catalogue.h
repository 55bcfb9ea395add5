// The clause catalogue: display texts of clauses, data types, sort types, aggregate functions and
// joining logic, and which clauses a field offers for each presentation type.
#pragma once

#include <span>
#include <string>

#include "querybuilder/xqb_definitions.h"

namespace brix {

/// The Romanian text of a clause, with "___" where its values go; "" outside 1..32.
std::string ClauseDescription(qbe_ClauseOperator clause);

/// The full-text kinds (words near, words, expression): they belong to the full-text request,
/// and the WHERE text leaves their field out.
bool IsFullTextClause(qbe_ClauseOperator clause);

/// The kinds whose operand is a count or a year rather than a value of the field: last X days,
/// months and years, next and over X days, and the year.
bool IsCountedClause(qbe_ClauseOperator clause);

/// The kinds the WHERE text writes as a range "BETWEEN a AND b": between, this week, month and
/// year, the year, last X days, months and years, next X days.
bool IsRangeClause(qbe_ClauseOperator clause);

/// "BLOB", "Boolean", "Date", "Memo", "Numeric" or "String" for 1..6; "" for any other value.
std::string DataTypeDescription(qbe_DataType data_type);

/// "None", "Ascending" or "Descending"; "" for any other value.
std::string SortTypeDescription(qbe_SortType sort_type);

/// "None", "Count", "Sum", "Average", "Min", "Max", "Standard deviation", "Value count" for 0..7;
/// "" for any other value.
std::string AggregateFunctionDescription(qbe_AggregateFunctionType aggregate_function);

/// " AND " for `qbe_LogicAnd`, " OR " for `qbe_LogicOr`, "" for anything else.
std::string WhereClauseLogicDescription(qbe_WhereClauseLogic logic);

/// The clauses a field of this presentation type offers by default, in the order they are added
/// to its available-clause list. Empty for types without default clauses.
std::span<const qbe_ClauseOperator> DefaultAvailableClauses(qbe_DataType show_as_type);

/// The clauses, in order, that the listing of a field's available clauses considers. A Boolean
/// field always lists clause 3, whatever its list holds. With a non-empty list a date field
/// skips `qbe_ClauseThisMonth`: hosts build their clause menus from this listing and never
/// offered that clause once the list was edited, so the gap stays.
std::span<const qbe_ClauseOperator> ListingCandidates(qbe_DataType show_as_type,
                                                      bool list_is_empty);

}  // namespace brix
