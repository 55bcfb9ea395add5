// Table: normalised name and its fields collection.
#include "querybuilder/xqb_table.h"

#include "querybuilder/db_name.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {

xqb_Table::xqb_Table() : fields_(xqb_Fields::Create()) {}

std::shared_ptr<xqb_Table> xqb_Table::Create() {
  struct Made : xqb_Table {};  // one allocation for the object and its count
  return std::make_shared<Made>();
}

void xqb_Table::SetDBName(std::string_view value) {
  std::string normalized = NormalizeDBName(value);
  ChangeKey([&]() noexcept { db_name_.swap(normalized); });
}

std::shared_ptr<xqb_Fields> xqb_Table::Fields() const {
  if (!fields_) RaiseRuntimeError(kErrObjectVariableNotSet);
  return fields_;
}

}  // namespace brix
