// SQLite: open read-only, bind each parameter by its type, read every row.
#include "tools/sqlite_runner.h"

#include <sqlite3.h>

#include <charconv>
#include <memory>
#include <string_view>

#include "runtime/error.h"
#include "tools/brixq_errors.h"

namespace brix::brixq {
namespace {

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

[[noreturn]] void RaiseSqlite(int code, std::string description) {
  Raise(kErrSqliteBase + (code & 0xff), "brixq", std::move(description));
}

Database Open(const std::string& path) {
  sqlite3* raw = nullptr;
  int code = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
  Database db(raw, sqlite3_close);
  if (code != SQLITE_OK) {
    RaiseSqlite(code, "cannot open the database " + path + ": " + sqlite3_errstr(code));
  }
  // Without this, SQLite reads a double-quoted name that names no column as a text literal.
  sqlite3_db_config(db.get(), SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  return db;
}

Statement Prepare(sqlite3* db, const std::string& sql) {
  sqlite3_stmt* raw = nullptr;
  const char* tail = nullptr;
  int code = sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()) + 1, &raw, &tail);
  Statement statement(raw, sqlite3_finalize);
  if (code != SQLITE_OK) {
    RaiseSqlite(code, std::string("SQLite cannot run the statement: ") + sqlite3_errmsg(db));
  }
  if (!statement) RaiseSqlite(SQLITE_ERROR, "there is no statement to run (no tables)");
  if (std::string_view(tail).find_first_not_of(" \t\r\n") != std::string_view::npos) {
    RaiseSqlite(SQLITE_ERROR, "the statement text holds more than one statement");
  }
  return statement;
}

template <class Number>
Number Parse(const std::string& text) {
  Number value{};
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

int BindOne(sqlite3_stmt* statement, int index, const SqlParameter& parameter) {
  switch (parameter.type) {
    case SqlType::kInteger:
      return sqlite3_bind_int64(statement, index, Parse<sqlite3_int64>(parameter.text));
    case SqlType::kReal:
      return sqlite3_bind_double(statement, index, Parse<double>(parameter.text));
    case SqlType::kBoolean:
      return sqlite3_bind_int(statement, index, parameter.text == "true" ? 1 : 0);
    default:
      return sqlite3_bind_text64(statement, index, parameter.text.data(), parameter.text.size(),
                                 SQLITE_TRANSIENT, SQLITE_UTF8);
  }
}

void Bind(sqlite3* db, sqlite3_stmt* statement, const std::vector<SqlParameter>& parameters) {
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    int code = BindOne(statement, static_cast<int>(i + 1), parameters[i]);
    if (code != SQLITE_OK) {
      RaiseSqlite(code, "SQLite cannot bind parameter " + std::to_string(i + 1) + ": " +
                            sqlite3_errmsg(db));
    }
  }
}

}  // namespace

ResultTable RunOnSqlite(const std::string& database_path, const ParameterizedStatement& statement) {
  Database db = Open(database_path);
  Statement prepared = Prepare(db.get(), statement.text);
  Bind(db.get(), prepared.get(), statement.parameters);
  ResultTable table;
  int count = sqlite3_column_count(prepared.get());
  for (int i = 0; i < count; ++i) table.columns.emplace_back(sqlite3_column_name(prepared.get(), i));
  table.numeric.assign(table.columns.size(), true);
  int code;
  while ((code = sqlite3_step(prepared.get())) == SQLITE_ROW) {
    std::vector<std::string>& row = table.rows.emplace_back();
    for (int i = 0; i < count; ++i) {
      // The type is read before the text, which may convert the value.
      int type = sqlite3_column_type(prepared.get(), i);
      if (type == SQLITE_TEXT || type == SQLITE_BLOB) table.numeric[std::size_t(i)] = false;
      if (type == SQLITE_NULL) {
        row.emplace_back("NULL");
        continue;
      }
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared.get(), i));
      row.push_back(CellText(std::string(text, std::size_t(sqlite3_column_bytes(prepared.get(), i)))));
    }
  }
  if (code != SQLITE_DONE) {
    RaiseSqlite(code, std::string("SQLite failed while reading rows: ") + sqlite3_errmsg(db.get()));
  }
  return table;
}

}  // namespace brix::brixq
