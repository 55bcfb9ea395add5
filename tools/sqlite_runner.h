// Running a parameterized statement on an SQLite database.
#pragma once

#include <string>

#include "querybuilder/parameterized_statement.h"
#include "tools/result_table.h"

namespace brix::brixq {

/// Runs `statement` (written for SQLite) on the database at `database_path`, opened read-only,
/// with its parameters bound: texts, dates and times as text, integers as 64-bit integers, reals
/// as doubles, Booleans as 1 and 0. Double-quoted names never fall back to string literals: a
/// name the database does not have is an error. Raises `kErrSqliteBase` + SQLite's result code
/// when the database does not open or the statement does not compile or run, and
/// `kErrSqliteBase` + 1 for an empty text or more than one statement.
ResultTable RunOnSqlite(const std::string& database_path, const ParameterizedStatement& statement);

}  // namespace brix::brixq
