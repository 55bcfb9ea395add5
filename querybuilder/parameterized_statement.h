// Statements for today's engines: the query's SQL with every operand bound as a typed parameter,
// in the dialect of SQLite or PostgreSQL.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace brix {

/// The engines a parameterized statement is written for.
enum class SqlDialect {
  kSQLite,      ///< Placeholders ?1, ?2, ...; LIKE (ASCII letter case ignored by the engine).
  kPostgreSQL,  ///< Placeholders $1, $2, ...; ILIKE, so that letter case is ignored as in SQLite.
};

/// The type of a bound value.
enum class SqlType { kText, kInteger, kReal, kBoolean, kDate, kDateTime, kTime };

/// One bound value: its type and its canonical text.
/// - kText: the text itself (UTF-8, any byte, NUL included);
/// - kInteger: decimal digits with an optional "-" (64-bit range);
/// - kReal: the shortest decimal text that reads back to the same double ("12.5", "1e+300");
/// - kBoolean: "true" or "false";
/// - kDate "YYYY-MM-DD", kDateTime "YYYY-MM-DD HH:MM:SS", kTime "HH:MM:SS" (ISO 8601).
struct SqlParameter {
  SqlType type = SqlType::kText;
  std::string text;
  friend bool operator==(const SqlParameter&, const SqlParameter&) = default;
};

/// A statement and the values of its placeholders: `parameters[i]` binds placeholder i + 1.
struct ParameterizedStatement {
  std::string text;
  std::vector<SqlParameter> parameters;
};

/// What a parameterized rendering writes.
struct StatementOptions {
  SqlDialect dialect = SqlDialect::kSQLite;
  /// Rows at most, written " LIMIT n"; 0 means all. A negative count raises 5.
  std::int32_t top_records = 0;
  /// Calculated fields (`CalculatedFormula`) and join links (`LinksWithField`) that do not read
  /// as a name are SQL the host wrote; they pass into the statement as they stand. With this
  /// option set, a statement that would hold such text raises instead.
  bool refuse_host_sql = false;
};

/// "text", "integer", "real", "boolean", "date", "datetime" or "time".
const char* SqlTypeName(SqlType type);

/// The placeholder of parameter `number` (from 1): "?n" for SQLite, "$n" for PostgreSQL.
std::string Placeholder(SqlDialect dialect, std::size_t number);

/// "sqlite" or "postgresql".
const char* SqlDialectName(SqlDialect dialect);

}  // namespace brix
