// The catalogue in an SQLite file, created with its folder when missing.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "tools/catalog_connection.h"

namespace brix::brixq {

/// A read-write connection to the SQLite file `path` in WAL mode, with a busy timeout so that
/// other processes' writers are waited for rather than failed.
class SqliteCatalogConnection final : public CatalogConnection {
 public:
  explicit SqliteCatalogConnection(const std::string& path);
  std::vector<StoreRow> Query(const std::string& sql,
                              const std::vector<StoreValue>& params) override;
  std::int64_t Execute(const std::string& sql, const std::vector<StoreValue>& params) override;
  void BeginWrite() override;
  const char* LockRowsClause() const override { return ""; }
  const char* BigIntType() const override { return "INTEGER"; }

 private:
  using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;
  Statement Run(const std::string& sql, const std::vector<StoreValue>& params);
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> db_;
};

}  // namespace brix::brixq
