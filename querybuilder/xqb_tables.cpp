// The tables collection: existence test and adding by name or object.
#include "querybuilder/xqb_tables.h"

#include "querybuilder/indexed_collection_impl.h"
#include "querybuilder/name_index.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kTableExistsText = "A table with this name already exists!";

}  // namespace

xqb_Tables::xqb_Tables() : NamedCollection(kErrTableExists, kTableExistsText) {}

std::shared_ptr<xqb_Tables> xqb_Tables::Create() {
  struct Made : xqb_Tables {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

std::shared_ptr<xqb_Table> xqb_Tables::Add(std::string_view db_name, std::string_view description) {
  RefuseUsedName(db_name, "[Add Table]");
  auto table = xqb_Table::Create();
  table->SetDBName(db_name);
  table->SetDescription(std::string(description.empty() ? db_name : description));
  AddItem(table, table->DBName());
  return table;
}

void xqb_Tables::AddObjectTable(std::shared_ptr<xqb_Table> table) {
  AddNamed(std::move(table), "[AddObjectTable]");
}

bool xqb_Tables::TableExists(std::string_view table_name) { return NameExists(table_name); }

template class IndexedCollection<xqb_Table, NameIndex<xqb_Table>>;

}  // namespace brix
