// The tables collection: existence test and adding by name or object.
#include "querybuilder/xqb_tables.h"

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kTableExistsText = "A table with this name already exists!";

}  // namespace

std::shared_ptr<xqb_Tables> xqb_Tables::Create() {
  return std::shared_ptr<xqb_Tables>(new xqb_Tables());
}

std::shared_ptr<xqb_Table> xqb_Tables::Add(std::string_view db_name, std::string_view description) {
  if (TableExists(db_name)) Raise(kErrTableExists, "[Add Table]", std::string(kTableExistsText));
  auto table = xqb_Table::Create();
  table->SetDBName(db_name);
  table->SetDescription(std::string(description.empty() ? db_name : description));
  AddItem(table, table->DBName());
  return table;
}

void xqb_Tables::AddObjectTable(std::shared_ptr<xqb_Table> table) {
  if (!table) RaiseRuntimeError(kErrObjectVariableNotSet);
  if (TableExists(table->DBName())) {
    Raise(kErrTableExists, "[AddObjectTable]", std::string(kTableExistsText));
  }
  std::string key = table->DBName();
  AddItem(std::move(table), key);
}

bool xqb_Tables::TableExists(std::string_view table_name) {
  bool found = CurrentIndex().Contains(table_name);
  if (!found) CheckSearchCounter(Count());
  return found;
}

}  // namespace brix
