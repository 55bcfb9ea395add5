// The catalogue's operations as the HTTP API and the envelope endpoint offer them: checked IDs,
// definitions that must load, stamps set by the server, refusals as `ApiError`.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "tools/catalog_store.h"

namespace brix::brixq {

/// A record stored by `Save`, and whether it was created.
struct SavedRecord {
  StoredRecord stored;
  bool created = false;
};

class CatalogService {
 public:
  explicit CatalogService(CatalogStore& store) : store_(store) {}

  /// {"total", "offset", "limit", "items": [{ID, Name, Category, Description, ModificatData,
  /// ModificatOra, IsEditable}]}; `limit` above 500 raises 400.
  nlohmann::json List(const std::string& search, std::int64_t offset, std::int64_t limit);
  /// The record `id`; raises 400 for an ID that is not valid, 404 for one not stored.
  StoredRecord Load(const std::string& id);
  /// Creates or replaces the record under `id` (the record's own ID, if set, must be `id`). Its
  /// QueryDef must load (422 otherwise) and is stored as SaveXMLDef writes it; Modificat* are
  /// set to `user` and now, Creat* too on creation (kept from the stored record on replace).
  SavedRecord Save(const std::string& id, std::shared_ptr<clsQSOM_DM> record,
                   const WriteCondition& condition, const std::string& user);
  void Remove(const std::string& id, const WriteCondition& condition);

 private:
  CatalogStore& store_;
};

/// `id`, raising 400 unless it is 1..128 characters of [A-Za-z0-9._-].
const std::string& CheckedId(const std::string& id);

}  // namespace brix::brixq
