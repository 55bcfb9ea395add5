// The saved-query record's properties as one table, and the conversions built on it.
#include "tools/catalog_record.h"

#include <array>
#include <charconv>
#include <limits>
#include <stdexcept>

namespace brix::brixq {
namespace {

using Kind = RecordProperty::Kind;
using R = clsQSOM_DM;

constexpr RecordProperty Text(const char* name, const char* column,
                              const std::string& (R::*get)() const, void (R::*set)(std::string)) {
  return {name, column, Kind::kText, get, set, nullptr, nullptr, nullptr, nullptr};
}
constexpr RecordProperty Long(const char* name, const char* column, std::int32_t (R::*get)() const,
                              void (R::*set)(std::int32_t)) {
  return {name, column, Kind::kLong, nullptr, nullptr, get, set, nullptr, nullptr};
}
constexpr RecordProperty Boolean(const char* name, const char* column, bool (R::*get)() const,
                                 void (R::*set)(bool)) {
  return {name, column, Kind::kBoolean, nullptr, nullptr, nullptr, nullptr, get, set};
}

const std::array<RecordProperty, 36> kProperties = {{
    Text("ID", "id", &R::ID, &R::SetID),
    Text("Name", "name", &R::Name, &R::SetName),
    Text("Category", "category", &R::Category, &R::SetCategory),
    Text("Description", "description", &R::Description, &R::SetDescription),
    Text("UsedFor", "used_for", &R::UsedFor, &R::SetUsedFor),
    Text("QueryDef", "query_def", &R::QueryDef, &R::SetQueryDef),
    Boolean("IsEditable", "is_editable", &R::IsEditable, &R::SetIsEditable),
    Text("AccessRights", "access_rights", &R::AccessRights, &R::SetAccessRights),
    Text("CreatDe", "creat_de", &R::CreatDe, &R::SetCreatDe),
    Long("CreatData", "creat_data", &R::CreatData, &R::SetCreatData),
    Text("CreatOra", "creat_ora", &R::CreatOra, &R::SetCreatOra),
    Text("ModificatDe", "modificat_de", &R::ModificatDe, &R::SetModificatDe),
    Long("ModificatData", "modificat_data", &R::ModificatData, &R::SetModificatData),
    Text("ModificatOra", "modificat_ora", &R::ModificatOra, &R::SetModificatOra),
    Text("G6", "g6", &R::G6, &R::SetG6),
    Text("G1", "g1", &R::G1, &R::SetG1),
    Text("G1D", "g1d", &R::G1D, &R::SetG1D),
    Text("G2", "g2", &R::G2, &R::SetG2),
    Text("G2D", "g2d", &R::G2D, &R::SetG2D),
    Text("G3", "g3", &R::G3, &R::SetG3),
    Text("G3D", "g3d", &R::G3D, &R::SetG3D),
    Text("G4", "g4", &R::G4, &R::SetG4),
    Text("G4D", "g4d", &R::G4D, &R::SetG4D),
    Text("G5", "g5", &R::G5, &R::SetG5),
    Text("G5D", "g5d", &R::G5D, &R::SetG5D),
    Boolean("UseGrupari", "use_grupari", &R::UseGrupari, &R::SetUseGrupari),
    Boolean("UseIerarhic", "use_ierarhic", &R::UseIerarhic, &R::SetUseIerarhic),
    Boolean("UseTematica", "use_tematica", &R::UseTematica, &R::SetUseTematica),
    Boolean("UseTipAct", "use_tip_act", &R::UseTipAct, &R::SetUseTipAct),
    Boolean("UseTipPub", "use_tip_pub", &R::UseTipPub, &R::SetUseTipPub),
    Long("CodSectiune", "cod_sectiune", &R::CodSectiune, &R::SetCodSectiune),
    Long("Cod_DocStart", "cod_doc_start", &R::Cod_DocStart, &R::SetCod_DocStart),
    Long("Cod_DocCrt", "cod_doc_crt", &R::Cod_DocCrt, &R::SetCod_DocCrt),
    Long("Cod_DocEnd", "cod_doc_end", &R::Cod_DocEnd, &R::SetCod_DocEnd),
    Text("CssFile", "css_file", &R::CssFile, &R::SetCssFile),
    Text("RpxDesign", "rpx_design", &R::RpxDesign, &R::SetRpxDesign),
}};

std::int64_t ParseWhole(const std::string& text) {
  std::int64_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

void SetFromJson(clsQSOM_DM& record, const RecordProperty& property, const nlohmann::json& value) {
  const std::string name = property.name;
  switch (property.kind) {
    case Kind::kText:
      if (!value.is_string())
        throw std::invalid_argument("member \"" + name + "\" must be a string");
      (record.*property.set_text)(value.get<std::string>());
      return;
    case Kind::kLong:
      if (!value.is_number_integer() || value.get<std::int64_t>() < INT32_MIN ||
          value.get<std::int64_t>() > INT32_MAX) {
        throw std::invalid_argument("member \"" + name + "\" must be a 32-bit whole number");
      }
      (record.*property.set_long)(static_cast<std::int32_t>(value.get<std::int64_t>()));
      return;
    case Kind::kBoolean:
      if (!value.is_boolean())
        throw std::invalid_argument("member \"" + name + "\" must be true or false");
      (record.*property.set_boolean)(value.get<bool>());
      return;
  }
}

const RecordProperty* FindProperty(std::string_view name) {
  for (const RecordProperty& property : kProperties) {
    if (name == property.name) return &property;
  }
  return nullptr;
}

}  // namespace

std::span<const RecordProperty> RecordProperties() { return kProperties; }

StoreValue ReadStoreValue(const clsQSOM_DM& record, const RecordProperty& property) {
  if (property.kind == Kind::kText)
    return StoreValue(std::in_place_index<1>, (record.*property.get_text)());
  if (property.kind == Kind::kLong) return StoreValue(std::int64_t{(record.*property.get_long)()});
  return StoreValue(std::int64_t{(record.*property.get_boolean)() ? 1 : 0});
}

void WriteStoreText(clsQSOM_DM& record, const RecordProperty& property, const std::string& text) {
  switch (property.kind) {
    case Kind::kText:
      (record.*property.set_text)(text);
      return;
    case Kind::kLong:
      (record.*property.set_long)(static_cast<std::int32_t>(ParseWhole(text)));
      return;
    case Kind::kBoolean:
      // PostgreSQL may hand a Boolean back as "t"; both stores write 0 and 1.
      (record.*property.set_boolean)(text == "1" || text == "t" || text == "true");
      return;
  }
}

nlohmann::json RecordToJson(const clsQSOM_DM& record) {
  nlohmann::json object = nlohmann::json::object();
  for (const RecordProperty& property : kProperties) {
    switch (property.kind) {
      case Kind::kText:
        object[property.name] = (record.*property.get_text)();
        break;
      case Kind::kLong:
        object[property.name] = (record.*property.get_long)();
        break;
      case Kind::kBoolean:
        object[property.name] = (record.*property.get_boolean)();
        break;
    }
  }
  return object;
}

std::shared_ptr<clsQSOM_DM> RecordFromJson(const nlohmann::json& object) {
  if (!object.is_object()) throw std::invalid_argument("the record must be a JSON object");
  auto record = clsQSOM_DM::Create();
  for (const auto& [key, value] : object.items()) {
    const RecordProperty* property = FindProperty(key);
    if (!property) throw std::invalid_argument("unknown member \"" + key + "\"");
    SetFromJson(*record, *property, value);
  }
  return record;
}

bool IsValidRecordId(std::string_view id) {
  if (id.empty() || id.size() > 128) return false;
  for (char c : id) {
    bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
              c == '.' || c == '_' || c == '-';
    if (!ok) return false;
  }
  return true;
}

}  // namespace brix::brixq
