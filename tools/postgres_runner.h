// Running a parameterized statement on a PostgreSQL server through libpq.
#pragma once

#include <string>
#include <string_view>

#include "querybuilder/parameterized_statement.h"
#include "tools/result_table.h"

namespace brix::brixq {

/// Connects with `conninfo` (libpq's "host=/tmp dbname=x" or a postgresql:// URI), runs
/// `statement` (written for PostgreSQL) in a read-only transaction with its parameters sent as
/// text with their types (text, int8, float8, bool, date, timestamp, time), and returns its rows.
/// Numeric columns (int2/4/8, float4/8, numeric) are aligned right. Raises `kErrPostgres` with
/// the server's message when the connection fails or the statement is refused, and for a text
/// holding the NUL character, which PostgreSQL text cannot hold.
ResultTable RunOnPostgres(const std::string& conninfo, const ParameterizedStatement& statement);

/// Raises `kErrPostgres` with "PostgreSQL: " and libpq's message on one line (its line breaks and
/// runs of blanks made single blanks).
[[noreturn]] void RaisePostgres(std::string_view description);

}  // namespace brix::brixq
