// The saved-query record's 36 properties as one table: their JSON keys, kinds and column names,
// read and written through the record's getters and setters.
#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <variant>

#include "persistence/cls_qsom_dm.h"

namespace brix::brixq {

/// One property of `clsQSOM_DM`: its name (the JSON key), its column in the store, its kind and
/// the record's accessors of that kind (the other kinds' are null).
struct RecordProperty {
  enum class Kind { kText, kLong, kBoolean };
  const char* name;
  const char* column;
  Kind kind;
  const std::string& (clsQSOM_DM::*get_text)() const;
  void (clsQSOM_DM::*set_text)(std::string);
  std::int32_t (clsQSOM_DM::*get_long)() const;
  void (clsQSOM_DM::*set_long)(std::int32_t);
  bool (clsQSOM_DM::*get_boolean)() const;
  void (clsQSOM_DM::*set_boolean)(bool);
};

/// The 36 properties in the record's persistence order.
std::span<const RecordProperty> RecordProperties();

/// A value as the store keeps it: text, or a whole number (Booleans as 0 and 1).
using StoreValue = std::variant<std::monostate, std::string, std::int64_t>;

/// The property's value in `record`, as the store keeps it.
StoreValue ReadStoreValue(const clsQSOM_DM& record, const RecordProperty& property);
/// Sets the property from the text a store column gave back.
void WriteStoreText(clsQSOM_DM& record, const RecordProperty& property, const std::string& text);

/// The record as one JSON object keyed by property name (Booleans true/false, Longs numbers).
nlohmann::json RecordToJson(const clsQSOM_DM& record);

/// A record from a JSON object: every key must be a property name, with a value of the
/// property's kind; missing keys keep a new record's values. Raises `std::invalid_argument` with
/// a message naming the member for anything else.
std::shared_ptr<clsQSOM_DM> RecordFromJson(const nlohmann::json& object);

/// Whether `id` is 1 to 128 characters of A-Z, a-z, 0-9, ".", "_" and "-".
bool IsValidRecordId(std::string_view id);

}  // namespace brix::brixq
