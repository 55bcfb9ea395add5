// Dispatch of envelope calls to the catalogue and the renderer.
#include "tools/rpc_service.h"

#include "persistence/c_marshall.h"
#include "querybuilder/xqb_query.h"
#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tools/api_error.h"

namespace brix::brixq {
namespace {

constexpr const char* kClass = "Catalog.Queries";
constexpr const char* kSource = "[brixq serve].[rpc]";
// Refusals of the catalogue carried in an envelope: this base plus the HTTP status they map to
// (20403 not editable, 20404 not found, 20409 stale version, ...).
constexpr std::int32_t kErrCatalogBase = 20000;

bool HasParam(const cMarshall& call, std::string_view name) {
  for (const std::string& present : call.ParamNames()) {
    if (present == name) return true;
  }
  return false;
}

std::int32_t LongParam(const cMarshall& call, std::string_view name, std::int32_t fallback) {
  if (!HasParam(call, name)) return fallback;
  return CLng(call.ReadParam(name));
}

std::shared_ptr<clsQSOM_DM> RecordParam(const cMarshall& call, std::string_view name) {
  Variant value = call.ReadParam(name);
  auto record =
      value.IsObject() ? std::dynamic_pointer_cast<clsQSOM_DM>(value.AsObject()) : nullptr;
  if (!record)
    Raise(kErrInvalidProcedureCall, kSource, "the parameter Record must be a clsQSOM_DM");
  return record;
}

// Reads `bytes` as it came: plain, else compressed.
std::shared_ptr<cMarshall> ReadCall(const std::string& bytes) {
  auto call = cMarshall::Create();
  ByteArray data(bytes.begin(), bytes.end());
  try {
    call->SetContents(data);
  } catch (const Error&) {
    call->SetbMakeCompress(true);
    call->SetContents(data);
  }
  return call;
}

void ListQueries(CatalogService& catalog, const cMarshall& call, cMarshall& answer) {
  std::string search = HasParam(call, "Search") ? CStr(call.ReadParam("Search")) : "";
  nlohmann::json page =
      catalog.List(search, LongParam(call, "Offset", 0), LongParam(call, "Limit", 50));
  std::int32_t count = 0;
  for (const nlohmann::json& item : page["items"]) {
    StoredRecord stored = catalog.Load(item["ID"].get<std::string>());
    stored.record->SetQueryDef("");
    answer.AddParam("Query" + std::to_string(++count), Variant(stored.record));
  }
  answer.AddParam("Total", Variant(static_cast<std::int32_t>(page["total"].get<std::int64_t>())));
  answer.SetRetval(Variant(count));
}

void Dispatch(CatalogService& catalog, const cMarshall& call, cMarshall& answer, bool may_write,
              const std::string& user) {
  const std::string procedure = call.ProcedureName();
  if (call.ClassName() != kClass) {
    Raise(kErrInvalidProcedureCall, kSource, "unknown class \"" + call.ClassName() + "\"");
  }
  if (procedure == "ListQueries") {
    ListQueries(catalog, call, answer);
  } else if (procedure == "LoadQuery") {
    StoredRecord stored = catalog.Load(CStr(call.ReadParam("ID")));
    answer.AddParam("Version", Variant(static_cast<std::int32_t>(stored.version)));
    answer.SetRetval(Variant(stored.record));
  } else if (procedure == "SaveQuery") {
    if (!may_write) throw ApiError(401, "SaveQuery needs the server's token");
    WriteCondition condition;
    // Overwrite True creates or replaces whatever version is stored, whatever Version says;
    // without it, replacing needs the Version read.
    condition.require_match = !(HasParam(call, "Overwrite") && CBool(call.ReadParam("Overwrite")));
    if (condition.require_match && HasParam(call, "Version")) {
      condition.if_match = LongParam(call, "Version", 0);
    }
    auto record = RecordParam(call, "Record");
    std::string id = record->ID();
    SavedRecord saved = catalog.Save(id, record, condition, user);
    answer.SetRetval(Variant(static_cast<std::int32_t>(saved.stored.version)));
  } else if (procedure == "RenderSQL") {
    auto query = xqb_Query::Create();
    query->LoadXMLDef(CStr(call.ReadParam("QueryDef")));
    answer.SetRetval(Variant(query->ReturnSQL(LongParam(call, "TopRecords", 0))));
  } else {
    Raise(kErrInvalidProcedureCall, kSource, "unknown procedure \"" + procedure + "\"");
  }
}

void SetError(cMarshall& answer, std::int32_t number, const std::string& source,
              const std::string& description) {
  answer.SetErrorNo(number);
  answer.SetErrorSource(source);
  answer.SetErrorDescription(description);
}

}  // namespace

std::string RpcService::Handle(const std::string& bytes, bool may_write, const std::string& user) {
  auto answer = cMarshall::Create();
  try {
    auto call = ReadCall(bytes);
    answer->SetbMakeCompress(call->bMakeCompress());
    answer->SetClassName(call->ClassName());
    answer->SetProcedureName(call->ProcedureName());
    try {
      answer->SetSession(call->Session());
    } catch (const Error&) {
      // A call without a session is answered without one.
    }
    Dispatch(catalog_, *call, *answer, may_write, user);
  } catch (const ApiError& refusal) {
    // A library error keeps its number; a refusal of the service carries its HTTP status.
    Error error(refusal.number != 0 ? refusal.number : kErrCatalogBase + refusal.status,
                refusal.number != 0 ? refusal.source : kSource, refusal.what());
    reporter_.Report(error, "rpc");
    SetError(*answer, error.Number(), error.Source(), error.Description());
  } catch (const Error& error) {
    reporter_.Report(error, "rpc");
    SetError(*answer, error.Number(), error.Source(), error.Description());
  }
  ByteArray out = answer->GetContents();
  return std::string(out.begin(), out.end());
}

}  // namespace brix::brixq
