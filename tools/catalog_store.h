// The saved-query catalogue: records with a version each, in SQLite or PostgreSQL, written in
// transactions with compare-and-set on the version.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "persistence/cls_qsom_dm.h"
#include "tools/catalog_connection.h"

namespace brix::brixq {

/// The schema this build creates and reads.
inline constexpr int kCatalogSchemaVersion = 1;

/// A record and the version of it that the store holds (1 when created, +1 per write).
struct StoredRecord {
  std::shared_ptr<clsQSOM_DM> record;
  std::int64_t version = 0;
};

/// One page of the listing, and how many records match in all.
struct CatalogPage {
  std::int64_t total = 0;
  std::vector<StoredRecord> items;  ///< without QueryDef, which a listing does not need
};

/// What a write expects to find: `if_match` the version the caller read (required to replace or
/// remove when `require_match` is set), `create_only` for a record that must not exist yet.
struct WriteCondition {
  std::optional<std::int64_t> if_match;
  bool create_only = false;
  bool require_match = true;
};

/// Why a write was refused; nothing was changed.
class CatalogRefusal : public std::runtime_error {
 public:
  enum class Reason { kNotFound, kNotEditable, kStale, kExists, kMatchRequired };
  CatalogRefusal(Reason reason, const std::string& message)
      : std::runtime_error(message), reason_(reason) {}
  Reason reason() const { return reason_; }

 private:
  Reason reason_;
};

/// The catalogue over a small pool of connections. Every method may be called from any thread.
/// A write reads the stored version and writes in one transaction, so of two writers holding
/// the same version exactly one succeeds; a process killed mid-write leaves the record as it was.
class CatalogStore {
 public:
  using Connect = std::function<std::unique_ptr<CatalogConnection>()>;

  /// "sqlite:PATH", "postgresql://..." / "postgres://..." or a libpq conninfo ("host=...").
  /// Creates the schema when missing; a store written by a newer schema raises.
  static std::unique_ptr<CatalogStore> Open(const std::string& url, std::size_t connections = 4);

  CatalogStore(Connect connect, std::size_t connections);

  std::optional<StoredRecord> Get(const std::string& id);
  /// Records whose Name or Category contains `search` (letter case ignored), by Name then ID.
  CatalogPage List(const std::string& search, std::int64_t offset, std::int64_t limit);
  /// Every record, by ID.
  std::vector<StoredRecord> All();
  /// Creates or replaces `record` (keyed by its ID) and returns the new version; `created` says
  /// which. A stored record whose IsEditable is False is never replaced.
  std::int64_t Put(const clsQSOM_DM& record, const WriteCondition& condition, bool& created);
  /// Removes the record; refuses as `Put` does.
  void Remove(const std::string& id, const WriteCondition& condition);
  int SchemaVersion() const { return kCatalogSchemaVersion; }

 private:
  class Lease;
  struct State {
    std::int64_t version;
    bool editable;
  };
  Lease Acquire();
  void CreateSchema(CatalogConnection& connection);
  std::optional<State> ReadState(CatalogConnection& connection, const std::string& id);
  void Check(const std::optional<State>& state, const std::string& id,
             const WriteCondition& condition) const;

  Connect connect_;
  std::size_t capacity_;
  std::size_t open_ = 0;
  std::vector<std::unique_ptr<CatalogConnection>> idle_;
  std::mutex mutex_;
  std::condition_variable available_;
};

}  // namespace brix::brixq
