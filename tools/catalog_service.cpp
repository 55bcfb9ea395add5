// Catalogue operations over the store: checks, normalised definitions, stamps, refusals.
#include "tools/catalog_service.h"

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "tools/api_error.h"

namespace brix::brixq {
namespace {

constexpr std::int64_t kMaxPage = 500;

[[noreturn]] void Refuse(const CatalogRefusal& refusal) {
  switch (refusal.reason()) {
    case CatalogRefusal::Reason::kNotFound:
      throw ApiError(404, refusal.what());
    case CatalogRefusal::Reason::kNotEditable:
      throw ApiError(403, refusal.what());
    case CatalogRefusal::Reason::kMatchRequired:
      throw ApiError(428, refusal.what());
    case CatalogRefusal::Reason::kStale:
    case CatalogRefusal::Reason::kExists:
      break;
  }
  throw ApiError(409, refusal.what());
}

// The definition as SaveXMLDef writes it; one that does not load raises 422.
std::string NormalisedDefinition(const std::string& definition) {
  try {
    auto query = xqb_Query::Create();
    query->LoadXMLDef(definition);
    return query->SaveXMLDef();
  } catch (const Error& error) {
    throw ApiError(422, error);
  }
}

}  // namespace

const std::string& CheckedId(const std::string& id) {
  if (!IsValidRecordId(id)) {
    throw ApiError(400, "a record ID is 1 to 128 characters of A-Z, a-z, 0-9, '.', '_' and '-'");
  }
  return id;
}

nlohmann::json CatalogService::List(const std::string& search, std::int64_t offset,
                                    std::int64_t limit) {
  if (offset < 0) throw ApiError(400, "offset must be 0 or more");
  if (limit < 0 || limit > kMaxPage) throw ApiError(400, "limit must be from 0 to 500");
  CatalogPage page = store_.List(search, offset, limit);
  nlohmann::json items = nlohmann::json::array();
  for (const StoredRecord& stored : page.items) {
    const clsQSOM_DM& r = *stored.record;
    items.push_back({{"ID", r.ID()},
                     {"Name", r.Name()},
                     {"Category", r.Category()},
                     {"Description", r.Description()},
                     {"ModificatData", r.ModificatData()},
                     {"ModificatOra", r.ModificatOra()},
                     {"IsEditable", r.IsEditable()},
                     {"version", stored.version}});
  }
  return {{"total", page.total}, {"offset", offset}, {"limit", limit}, {"items", items}};
}

StoredRecord CatalogService::Load(const std::string& id) {
  std::optional<StoredRecord> stored = store_.Get(CheckedId(id));
  if (!stored) throw ApiError(404, "no record \"" + id + "\"");
  return *stored;
}

SavedRecord CatalogService::Save(const std::string& id, std::shared_ptr<clsQSOM_DM> record,
                                 const WriteCondition& condition, const std::string& user) {
  CheckedId(id);
  if (!record->ID().empty() && record->ID() != id) {
    throw ApiError(400,
                   "the record's ID \"" + record->ID() + "\" is not the path's \"" + id + "\"");
  }
  record->SetID(id);
  record->SetQueryDef(NormalisedDefinition(record->QueryDef()));
  const double now = Now();
  const auto day = static_cast<std::int32_t>(DatePart(now));
  const std::string time = FormatDate(now, "hh:nn:ss");
  record->SetModificatDe(user);
  record->SetModificatData(day);
  record->SetModificatOra(time);
  std::optional<StoredRecord> before = store_.Get(id);
  if (before) {
    record->SetCreatDe(before->record->CreatDe());
    record->SetCreatData(before->record->CreatData());
    record->SetCreatOra(before->record->CreatOra());
  } else {
    record->SetCreatDe(user);
    record->SetCreatData(day);
    record->SetCreatOra(time);
  }
  try {
    SavedRecord saved;
    saved.stored.version = store_.Put(*record, condition, saved.created);
    saved.stored.record = std::move(record);
    return saved;
  } catch (const CatalogRefusal& refusal) {
    Refuse(refusal);
  }
}

void CatalogService::Remove(const std::string& id, const WriteCondition& condition) {
  try {
    store_.Remove(CheckedId(id), condition);
  } catch (const CatalogRefusal& refusal) {
    Refuse(refusal);
  }
}

}  // namespace brix::brixq
