// The `run` command's result: the rows a statement selects from SQLite, printed as a text table.
#pragma once

#include <string>
#include <vector>

namespace brix::brixq {

/// The columns and rows of a result; a cell holds SQLite's text of the value, "NULL" for null.
struct ResultTable {
  std::vector<std::string> columns;
  std::vector<bool> numeric;  ///< Per column: every non-null value is an integer or a real.
  std::vector<std::vector<std::string>> rows;
};

/// Runs the one statement `sql` on the database at `database_path`, opened read-only. Raises
/// `kErrSqliteBase` + SQLite's result code when the database does not open or the statement
/// does not compile or run, and `kErrSqliteBase` + 1 for an empty text or more than one statement.
ResultTable RunStatement(const std::string& database_path, const std::string& sql);

/// A header line, a rule of dashes and one line per row, the columns two blanks apart and padded
/// to their widest text in characters (numeric columns aligned right), no blanks at line ends;
/// then "(1 row)" or "(N rows)". Line breaks and tabs inside values print as blanks.
std::string FormatTable(const ResultTable& table);

}  // namespace brix::brixq
