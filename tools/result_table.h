// The `run` command's result: the rows a statement selects, printed as a text table.
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

/// A value's text as a cell: line breaks and tabs, which would break the alignment, become
/// blanks.
std::string CellText(std::string value);

/// A header line, a rule of dashes and one line per row, the columns two blanks apart and padded
/// to their widest text in characters (numeric columns aligned right), no blanks at line ends;
/// then "(1 row)" or "(N rows)". Line breaks and tabs inside values print as blanks.
std::string FormatTable(const ResultTable& table);

}  // namespace brix::brixq
