// The filter of a query for today's engines: the WHERE text with every operand bound.
#pragma once

#include <memory>

#include "querybuilder/parameterized_statement.h"

namespace brix {

class xqb_Query;
class xqb_Table;

/// The filter written by the same walk and the same rules as the compatible text (the same
/// conditions, groups and order, the same days for every relative date kind), spelled for
/// `options.dialect`:
/// - fields are quoted identifiers (`QuotedName`): "field" with `simple_fields`, else
///   "table"."field"; an empty test repeats that same expression;
/// - every operand is a placeholder bound to a typed value (`BindOperand` by the field's
///   `DBType`): ranges and relative kinds on a Date field bind ISO dates, comparisons on a Date
///   field bind the operand's date, the time kinds bind the clock's hour and minute;
/// - contains / starts-with bind "%" + text + "%" / text + "%" with "\", "%" and "_" escaped,
///   followed by ESCAPE '\' (ILIKE ... ESCAPE E'\\' on PostgreSQL, whatever the server's
///   standard_conforming_strings);
/// - IN lists are read by `ReadInList` into one placeholder per item, each bound by the field's
///   type;
/// - a join link that reads as a name is quoted like one; other link text is host SQL, written as
///   it stands or refused with `options.refuse_host_sql` (kErrHostSqlRefused).
/// Parameters are numbered in the order their placeholders appear in the text.
ParameterizedStatement ReturnParameterizedWHERE(const xqb_Query& query,
                                                const StatementOptions& options,
                                                bool simple_fields = true,
                                                std::shared_ptr<xqb_Table> tabela = nullptr,
                                                bool with_join_conditions = false);

}  // namespace brix
