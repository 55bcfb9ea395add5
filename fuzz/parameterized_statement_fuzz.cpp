// Feeds arbitrary bytes to the parameterized rendering: as an IN list (read strictly or refused
// with its own error, and a list that reads reads again the same once written back), as a stored
// name (quoted so that no quote ends it early, or refused), and as the operand of every clause
// kind on every field type (the statement text never depends on a text operand; other failures
// are brix::Error, never a crash).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "querybuilder/sql_dialect.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/text.h"

namespace {

void CheckInList(std::string_view text) {
  std::vector<brix::Variant> items;
  try {
    items = brix::ReadInList(text);
  } catch (const brix::Error& error) {
    if (error.Number() != brix::kErrInListSyntax) std::abort();
    return;
  }
  std::string written = "(";
  for (const brix::Variant& item : items) {
    if (written.size() > 1) written += ", ";
    written += "'" + brix::ReplaceAll(item.AsString(), "'", "''") + "'";
  }
  written += ")";
  std::vector<brix::Variant> again = brix::ReadInList(written);
  if (again.size() != items.size()) std::abort();
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (again[i].AsString() != items[i].AsString()) std::abort();
  }
}

// Every quote inside the quoted name is doubled: outside the quoted parts only dots appear.
void CheckQuotedName(std::string_view name) {
  std::string quoted;
  try {
    quoted = brix::QuotedName(name);
  } catch (const brix::Error& error) {
    if (error.Number() != brix::kErrUnquotableName) std::abort();
    return;
  }
  bool inside = false;
  for (std::size_t i = 0; i < quoted.size(); ++i) {
    if (quoted[i] != '"') {
      if (!inside && quoted[i] != '.') std::abort();
      continue;
    }
    if (inside && i + 1 < quoted.size() && quoted[i + 1] == '"') {
      ++i;
    } else {
      inside = !inside;
    }
  }
  if (inside) std::abort();
}

std::string Render(brix::qbe_DataType type, int kind, const brix::Variant& operand) {
  auto query = brix::xqb_Query::Create();
  auto field = query->Tables()->Add("T")->Fields()->Add("F");
  field->SetDBType(type);
  auto condition = field->Conditions()->Add(static_cast<brix::qbe_ClauseOperator>(kind));
  condition->SetValue(operand);
  condition->SetSecondaryValue(operand);
  brix::StatementOptions options;
  options.dialect = kind % 2 ? brix::SqlDialect::kSQLite : brix::SqlDialect::kPostgreSQL;
  return query->ReturnParameterizedSQL(options).text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
  CheckInList(text);
  CheckQuotedName(text);
  const auto type = static_cast<brix::qbe_DataType>(data[0] % 13);
  const int kind = data[1] % 33;
  try {
    std::string with_text = Render(type, kind, brix::Variant(text));
    bool text_operand = (type == brix::qbe_DataString || type == brix::qbe_DataMemo) &&
                        kind != brix::qbe_ClauseInList && kind != brix::qbe_ClauseNotInList;
    if (text_operand && with_text != Render(type, kind, brix::Variant("v"))) std::abort();
  } catch (const brix::Error&) {
    // An operand that does not read as the field's type, or a list that does not read.
  }
  return 0;
}
