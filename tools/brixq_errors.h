// Error numbers of the brixq command's own failures (the library's errors keep their numbers).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace brix::brixq {

/// A file that does not exist: the platform's "File not found".
inline constexpr std::int32_t kErrFileNotFound = 53;
/// A file that exists but cannot be read (a folder, no permission): the platform's
/// "Path/File access error".
inline constexpr std::int32_t kErrFileAccess = 75;
/// --table names no table of the definition: the number the tables collection raises for an
/// unknown key.
inline constexpr std::int32_t kErrNoSuchTable = 5;
/// --param names no parameter condition of the definition.
inline constexpr std::int32_t kErrNoSuchParameter = 5;
/// SQLite failures: this base plus SQLite's primary result code (20001 for SQL that does not
/// compile, 20014 for a database that cannot be opened).
inline constexpr std::int32_t kErrSqliteBase = 20000;
/// PostgreSQL failures: a server that cannot be reached, a statement it refuses (the message
/// carries the server's SQLSTATE), a value it cannot take.
inline constexpr std::int32_t kErrPostgres = 21000;

/// An error number as brixq prints it: the library's object errors (negative as 32-bit numbers)
/// in hexadecimal, "0x80042775" for -2147211403; others in decimal.
inline std::string ErrorNumberText(std::int32_t number) {
  if (number >= 0) return std::to_string(number);
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08X", static_cast<std::uint32_t>(number));
  return hex;
}

}  // namespace brix::brixq
