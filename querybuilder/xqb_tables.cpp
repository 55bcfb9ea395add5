// The tables collection: existence test and adding by name or object.
#include "querybuilder/xqb_tables.h"

#include "querybuilder/named_collection.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr UsedNameError kTableExists{kErrTableExists, "A table with this name already exists!"};

}  // namespace

std::shared_ptr<xqb_Tables> xqb_Tables::Create() {
  struct Made : xqb_Tables {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

std::shared_ptr<xqb_Table> xqb_Tables::Add(std::string_view db_name, std::string_view description) {
  RefuseUsedName(Store(), db_name, kTableExists, "[Add Table]");
  auto table = xqb_Table::Create();
  table->SetDBName(db_name);
  table->SetDescription(std::string(description.empty() ? db_name : description));
  Store().AddItem(table, table->DBName());
  return table;
}

void xqb_Tables::AddObjectTable(std::shared_ptr<xqb_Table> table) {
  AddNamed(Store(), std::move(table), kTableExists, "[AddObjectTable]");
}

bool xqb_Tables::TableExists(std::string_view table_name) {
  return NameExists(Store(), table_name);
}

template class ModelCollection<xqb_Table, NameIndex<xqb_Table>>;

}  // namespace brix
