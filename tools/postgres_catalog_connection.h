// The catalogue in PostgreSQL, through libpq.
#pragma once

#include <libpq-fe.h>

#include <memory>
#include <string>

#include "tools/catalog_connection.h"

namespace brix::brixq {

/// A connection given a libpq connection string ("postgresql://..." or "host=... dbname=...").
class PostgresCatalogConnection final : public CatalogConnection {
 public:
  explicit PostgresCatalogConnection(const std::string& conninfo);
  std::vector<StoreRow> Query(const std::string& sql,
                              const std::vector<StoreValue>& params) override;
  std::int64_t Execute(const std::string& sql, const std::vector<StoreValue>& params) override;
  void BeginWrite() override;
  const char* LockRowsClause() const override { return " FOR UPDATE"; }
  const char* BigIntType() const override { return "BIGINT"; }

 private:
  using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;
  Result Run(const std::string& sql, const std::vector<StoreValue>& params);
  std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
};

}  // namespace brix::brixq
