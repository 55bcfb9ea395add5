// Running a statement on SQLite and printing its rows as an aligned text table.
#include "tools/result_table.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include "runtime/error.h"
#include "tools/brixq_errors.h"

namespace brix::brixq {
namespace {

constexpr const char* kSource = "brixq";

[[noreturn]] void RaiseSqlite(int code, std::string description) {
  Raise(kErrSqliteBase + (code & 0xff), kSource, std::move(description));
}

std::string CellText(sqlite3_stmt* statement, int column, int type) {
  if (type == SQLITE_NULL) return "NULL";
  const unsigned char* text = sqlite3_column_text(statement, column);
  std::string cell(reinterpret_cast<const char*>(text),
                   static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
  // A line break or tab inside a value would break the alignment.
  std::replace_if(
      cell.begin(), cell.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return cell;
}

// Width on screen: UTF-8 characters, not bytes.
std::size_t Width(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void AppendLine(std::string& out, const std::vector<std::string>& cells,
                const std::vector<std::size_t>& widths, const std::vector<bool>& right_aligned) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += "  ";
    std::string padding(widths[i] - Width(cells[i]), ' ');
    line += right_aligned[i] ? padding + cells[i] : cells[i] + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out += line + "\n";
}

}  // namespace

ResultTable RunStatement(const std::string& database_path, const std::string& sql) {
  sqlite3* raw_db = nullptr;
  int code = sqlite3_open_v2(database_path.c_str(), &raw_db, SQLITE_OPEN_READONLY, nullptr);
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> db(raw_db, sqlite3_close);
  if (code != SQLITE_OK) {
    RaiseSqlite(code, "cannot open the database " + database_path + ": " + sqlite3_errstr(code));
  }
  sqlite3_stmt* raw_statement = nullptr;
  const char* tail = nullptr;
  code = sqlite3_prepare_v2(db.get(), sql.c_str(), static_cast<int>(sql.size()) + 1, &raw_statement,
                            &tail);
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(raw_statement,
                                                                       sqlite3_finalize);
  if (code != SQLITE_OK) {
    RaiseSqlite(code, std::string("SQLite cannot run the statement: ") + sqlite3_errmsg(db.get()));
  }
  if (!statement) RaiseSqlite(SQLITE_ERROR, "there is no statement to run (no tables)");
  if (std::string_view(tail).find_first_not_of(" \t\r\n") != std::string_view::npos) {
    RaiseSqlite(SQLITE_ERROR, "the statement text holds more than one statement");
  }
  ResultTable table;
  int count = sqlite3_column_count(statement.get());
  for (int i = 0; i < count; ++i)
    table.columns.emplace_back(sqlite3_column_name(statement.get(), i));
  table.numeric.assign(table.columns.size(), true);
  while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
    std::vector<std::string>& row = table.rows.emplace_back();
    for (int i = 0; i < count; ++i) {
      // The type is read before the text, which may convert the value.
      int type = sqlite3_column_type(statement.get(), i);
      if (type == SQLITE_TEXT || type == SQLITE_BLOB) {
        table.numeric[static_cast<std::size_t>(i)] = false;
      }
      row.push_back(CellText(statement.get(), i, type));
    }
  }
  if (code != SQLITE_DONE) {
    RaiseSqlite(code, std::string("SQLite failed while reading rows: ") + sqlite3_errmsg(db.get()));
  }
  return table;
}

std::string FormatTable(const ResultTable& table) {
  std::vector<std::size_t> widths;
  for (const std::string& column : table.columns) widths.push_back(Width(column));
  for (const auto& row : table.rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  std::vector<std::string> rule;
  for (std::size_t width : widths) rule.emplace_back(width, '-');
  std::vector<bool> header_alignment(table.columns.size(), false);
  std::string out;
  AppendLine(out, table.columns, widths, table.numeric);
  AppendLine(out, rule, widths, header_alignment);
  for (const auto& row : table.rows) AppendLine(out, row, widths, table.numeric);
  std::size_t n = table.rows.size();
  out += '(';
  out += std::to_string(n);
  out += n == 1 ? " row)" : " rows)";
  return out;
}

}  // namespace brix::brixq
