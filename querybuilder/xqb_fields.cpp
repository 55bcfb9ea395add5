// The fields collection: existence test and adding by name or object.
#include "querybuilder/xqb_fields.h"

#include <optional>

#include "querybuilder/named_collection.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr UsedNameError kFieldExists{kErrFieldExists,
                                     "A field with this name already exists in this table!"};

}  // namespace

std::shared_ptr<xqb_Fields> xqb_Fields::Create() {
  struct Made : xqb_Fields {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

std::shared_ptr<xqb_Field> xqb_Fields::Add(std::string_view db_name) {
  RefuseUsedName(Store(), db_name, kFieldExists, "[Add Field]");
  auto field = xqb_Field::Create();
  field->SetDBName(db_name);
  field->SetAlias(std::string(db_name));
  field->SetCaption(std::string(db_name));
  Store().AddItem(field, field->DBName());
  return field;
}

void xqb_Fields::AddObjectField(std::shared_ptr<xqb_Field> field) {
  AddNamed(Store(), std::move(field), kFieldExists, "[AddObjectField]");
}

bool xqb_Fields::FieldExists(std::string_view field_name) {
  return NameExists(Store(), field_name);
}

void xqb_Fields::AddListed(std::shared_ptr<xqb_Field> field) {
  std::string key = field->DBName();
  Store().AddItem(std::move(field),
                  Store().HasKey(key) ? std::nullopt : std::optional<std::string_view>(key));
}

template class ModelCollection<xqb_Field, NameIndex<xqb_Field>>;

}  // namespace brix
