// SQLite connection of the catalogue: statements prepared with bound parameters, rows as text.
#include "tools/sqlite_catalog_connection.h"

#include <filesystem>

#include "runtime/error.h"
#include "tools/brixq_errors.h"

namespace brix::brixq {
namespace {

[[noreturn]] void RaiseSqlite(int code, const std::string& description) {
  Raise(kErrSqliteBase + (code & 0xff), "brixq", "SQLite: " + description);
}

// SQLite names numbered parameters ?N; the shared statements use PostgreSQL's $N.
std::string SqliteText(std::string sql) {
  for (char& c : sql) {
    if (c == '$') c = '?';
  }
  return sql;
}

}  // namespace

SqliteCatalogConnection::SqliteCatalogConnection(const std::string& path)
    : db_(nullptr, sqlite3_close) {
  std::error_code ignored;
  std::filesystem::path folder = std::filesystem::path(path).parent_path();
  if (!folder.empty()) std::filesystem::create_directories(folder, ignored);
  sqlite3* raw = nullptr;
  int code =
      sqlite3_open_v2(path.c_str(), &raw,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  db_.reset(raw);
  if (code != SQLITE_OK) {
    RaiseSqlite(code, "cannot open the catalogue " + path + ": " + sqlite3_errstr(code));
  }
  sqlite3_busy_timeout(db_.get(), 10000);
  Query("PRAGMA journal_mode=WAL", {});
  Execute("PRAGMA synchronous=FULL", {});
}

SqliteCatalogConnection::Statement SqliteCatalogConnection::Run(
    const std::string& sql, const std::vector<StoreValue>& params) {
  sqlite3_stmt* raw = nullptr;
  std::string text = SqliteText(sql);
  int code = sqlite3_prepare_v2(db_.get(), text.c_str(), -1, &raw, nullptr);
  Statement statement(raw, sqlite3_finalize);
  if (code != SQLITE_OK) RaiseSqlite(code, sqlite3_errmsg(db_.get()));
  for (std::size_t i = 0; i < params.size(); ++i) {
    int index = static_cast<int>(i + 1);
    if (const auto* text_value = std::get_if<std::string>(&params[i])) {
      code = sqlite3_bind_text(raw, index, text_value->data(), static_cast<int>(text_value->size()),
                               SQLITE_TRANSIENT);
    } else if (const auto* number = std::get_if<std::int64_t>(&params[i])) {
      code = sqlite3_bind_int64(raw, index, *number);
    } else {
      code = sqlite3_bind_null(raw, index);
    }
    if (code != SQLITE_OK) RaiseSqlite(code, sqlite3_errmsg(db_.get()));
  }
  return statement;
}

std::vector<StoreRow> SqliteCatalogConnection::Query(const std::string& sql,
                                                     const std::vector<StoreValue>& params) {
  Statement statement = Run(sql, params);
  std::vector<StoreRow> rows;
  int code;
  while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
    StoreRow row;
    for (int i = 0; i < sqlite3_column_count(statement.get()); ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), i));
      if (text == nullptr) {
        row.emplace_back();
      } else {
        row.emplace_back(std::string(text, sqlite3_column_bytes(statement.get(), i)));
      }
    }
    rows.push_back(std::move(row));
  }
  if (code != SQLITE_DONE) RaiseSqlite(code, sqlite3_errmsg(db_.get()));
  return rows;
}

std::int64_t SqliteCatalogConnection::Execute(const std::string& sql,
                                              const std::vector<StoreValue>& params) {
  Query(sql, params);
  return sqlite3_changes(db_.get());
}

void SqliteCatalogConnection::BeginWrite() { Execute("BEGIN IMMEDIATE", {}); }

}  // namespace brix::brixq
