// The fields collection: existence test and adding by name or object.
#include "querybuilder/xqb_fields.h"

#include <optional>

#include "querybuilder/indexed_collection_impl.h"
#include "querybuilder/name_index.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kFieldExistsText =
    "A field with this name already exists in this table!";

}  // namespace

xqb_Fields::xqb_Fields() : NamedCollection(kErrFieldExists, kFieldExistsText) {}

std::shared_ptr<xqb_Fields> xqb_Fields::Create() {
  struct Made : xqb_Fields {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

std::shared_ptr<xqb_Field> xqb_Fields::Add(std::string_view db_name) {
  RefuseUsedName(db_name, "[Add Field]");
  auto field = xqb_Field::Create();
  field->SetDBName(db_name);
  field->SetAlias(std::string(db_name));
  field->SetCaption(std::string(db_name));
  AddItem(field, field->DBName());
  return field;
}

void xqb_Fields::AddObjectField(std::shared_ptr<xqb_Field> field) {
  AddNamed(std::move(field), "[AddObjectField]");
}

bool xqb_Fields::FieldExists(std::string_view field_name) { return NameExists(field_name); }

void xqb_Fields::AddListed(std::shared_ptr<xqb_Field> field) {
  std::string key = field->DBName();
  AddItem(std::move(field), HasKey(key) ? std::nullopt : std::optional<std::string_view>(key));
}

template class IndexedCollection<xqb_Field, NameIndex<xqb_Field>>;

}  // namespace brix
