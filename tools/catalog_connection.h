// One connection to the catalogue's database: parameterized statements, rows as text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/catalog_record.h"

namespace brix::brixq {

/// A row as text columns; a NULL column is `std::nullopt`.
using StoreRow = std::vector<std::optional<std::string>>;

/// A connection that runs one statement at a time. Statements are written with $1, $2, ... for
/// their parameters, which are always bound, never spliced into the text. Failures raise
/// `brix::Error` (SQLite: 20000 plus its result code; PostgreSQL: 21000).
class CatalogConnection {
 public:
  virtual ~CatalogConnection() = default;
  /// Runs `sql` and returns the rows it gives.
  virtual std::vector<StoreRow> Query(const std::string& sql,
                                      const std::vector<StoreValue>& params = {}) = 0;
  /// Runs `sql` and returns how many rows it changed.
  virtual std::int64_t Execute(const std::string& sql,
                               const std::vector<StoreValue>& params = {}) = 0;
  /// Starts a transaction that will write: SQLite takes the write lock at once, so that what
  /// the transaction reads stays true until it commits.
  virtual void BeginWrite() = 0;
  /// " FOR UPDATE" where the engine locks the rows a SELECT reads, else "".
  virtual const char* LockRowsClause() const = 0;
  /// The type of the 64-bit version column.
  virtual const char* BigIntType() const = 0;
};

}  // namespace brix::brixq
