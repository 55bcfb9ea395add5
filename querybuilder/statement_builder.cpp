// SELECT statement assembly: the field lists by slot and tail, the table list, the clause order.
#include "querybuilder/statement_builder.h"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "querybuilder/parameterized_where.h"
#include "querybuilder/sql_dialect.h"
#include "querybuilder/tree_walk.h"
#include "querybuilder/where_renderer.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kSeparator = ", ";

void CutSeparator(std::string& text) {
  if (!text.empty()) text.resize(text.size() - kSeparator.size());
}

// Items placed by position into slots lowest..count, and a tail for the items that find no free
// slot. Only slots 1..count are written; "empty" means an empty text.
class SlotList {
 public:
  SlotList(std::int64_t count, std::int64_t lowest)
      : lowest_(lowest), slots_(static_cast<std::size_t>(count + 1)) {}

  /// Into slot `position` when it exists and is empty, else to the tail; a position below the
  /// lowest slot raises 9.
  void Place(std::string item, std::int64_t position) {
    if (position < lowest_) RaiseRuntimeError(kErrSubscriptOutOfRange);
    auto index = static_cast<std::size_t>(position);
    if (index < slots_.size() && slots_[index].empty()) {
      slots_[index] = std::move(item);
    } else {
      AddToTail(item);
    }
  }

  void AddToTail(std::string_view item) { tail_.append(item).append(kSeparator); }

  /// The filled slots 1..count in order, then the tail, joined by ", ".
  std::string Join() {
    std::string placed;
    for (std::size_t i = 1; i < slots_.size(); ++i) {
      if (!slots_[i].empty()) placed.append(slots_[i]).append(kSeparator);
    }
    CutSeparator(placed);
    CutSeparator(tail_);
    if (placed.empty()) return std::move(tail_);
    if (!tail_.empty()) placed.append(kSeparator).append(tail_);
    return placed;
  }

 private:
  std::int64_t lowest_;
  std::vector<std::string> slots_;
  std::string tail_;
};

std::int64_t FieldCount(const xqb_Query& query) {
  std::int64_t count = 0;
  std::shared_ptr<xqb_Tables> tables = query.Tables();
  for (const auto& table : *tables) count += table->Fields()->Count();
  return count;
}

std::string Bracketed(std::string_view name) { return "[" + std::string(name) + "]"; }

std::string QuotedField(const xqb_Table& table, const xqb_Field& field) {
  return QuotedName(table.DBName()) + "." + QuotedName(field.DBName());
}

std::string_view SortSuffix(qbe_SortType order) {
  switch (order) {
    case qbe_SortDescending:
      return " DESC";
    case qbe_SortAscending:
      return " ASC";
    default:
      return {};
  }
}

}  // namespace

const StatementNames StatementBuilder::kCompatible;

std::string StatementNames::Table(const xqb_Table& table) const {
  return Bracketed(table.DBName());
}

std::string StatementNames::SelectItem(const xqb_Table& table, const xqb_Field& field,
                                       bool simple_fields) const {
  if (!field.CalculatedFormula().empty()) {
    return field.CalculatedFormula() + " AS " + field.DBName();
  }
  if (simple_fields) return field.DBName();
  return Bracketed(table.DBName()) + "." + field.DBName() + " AS " + field.Alias();
}

std::string StatementNames::SortItem(const xqb_Table& table, const xqb_Field& field) const {
  return table.DBName() + "." + field.DBName();
}

std::string StatementNames::GroupItem(const xqb_Table& table, const xqb_Field& field) const {
  return Bracketed(table.DBName()) + "." + field.DBName();
}

std::string QuotedStatementNames::Table(const xqb_Table& table) const {
  return QuotedName(table.DBName());
}

std::string QuotedStatementNames::SelectItem(const xqb_Table& table, const xqb_Field& field,
                                             bool simple_fields) const {
  if (!field.CalculatedFormula().empty()) {
    if (refuse_host_sql_) {
      Raise(kErrHostSqlRefused, std::string(kParameterizedSource),
            "The calculated field " + field.DBName() + " is SQL written by the host (\"" +
                field.CalculatedFormula() + "\"), and the options refuse host SQL.");
    }
    return field.CalculatedFormula() + " AS " + QuotedName(field.DBName());
  }
  if (simple_fields) return QuotedName(field.DBName());
  std::string item = QuotedField(table, field);
  if (!field.Alias().empty()) item.append(" AS ").append(QuotedAlias(field.Alias()));
  return item;
}

std::string QuotedStatementNames::SortItem(const xqb_Table& table, const xqb_Field& field) const {
  return QuotedField(table, field);
}

std::string QuotedStatementNames::GroupItem(const xqb_Table& table, const xqb_Field& field) const {
  return QuotedField(table, field);
}

std::string StatementBuilder::ReturnSQL(std::int32_t top_records) const {
  if (query_.Tables()->Count() == 0) return "";
  WhereRenderer where(query_);
  bool has_filter = !where.ReturnWHEREConditions(false, nullptr, true).empty();
  std::string order_by = ReturnOrderByFields();
  std::string group_by = ReturnGroupByFields();
  std::string sql = query_.DistinctRows() ? "SELECT DISTINCT " : "SELECT ";
  sql.append(ReturnAllFields(false)).append(" FROM ").append(ReturnTables());
  // Kept on purpose: the first evaluation only decides whether the clause is written, the text is
  // a second one (hosts saw the later minute of a clock that moved in between).
  if (has_filter) sql.append(" WHERE ").append(where.ReturnWHEREConditions(false, nullptr, true));
  if (!group_by.empty()) sql.append(" GROUP BY ").append(group_by);
  if (!order_by.empty()) sql.append(" ORDER BY ").append(order_by);
  if (top_records != 0) sql.append(" LIMIT ").append(std::to_string(top_records));
  return sql;
}

ParameterizedStatement StatementBuilder::ReturnParameterizedSQL(
    const StatementOptions& options) const {
  if (options.top_records < 0) RaiseRuntimeError(kErrInvalidProcedureCall);
  if (query_.Tables()->Count() == 0) return {};
  QuotedStatementNames names(options.refuse_host_sql);
  StatementBuilder quoted(query_, names);
  ParameterizedStatement where = ReturnParameterizedWHERE(query_, options, false, nullptr, true);
  std::string order_by = quoted.ReturnOrderByFields();
  std::string group_by = quoted.ReturnGroupByFields();
  ParameterizedStatement statement;
  std::string& sql = statement.text;
  sql = query_.DistinctRows() ? "SELECT DISTINCT " : "SELECT ";
  sql.append(quoted.ReturnAllFields(false)).append(" FROM ").append(quoted.ReturnTables());
  if (!where.text.empty()) sql.append(" WHERE ").append(where.text);
  if (!group_by.empty()) sql.append(" GROUP BY ").append(group_by);
  if (!order_by.empty()) sql.append(" ORDER BY ").append(order_by);
  if (options.top_records != 0) sql.append(" LIMIT ").append(std::to_string(options.top_records));
  statement.parameters = std::move(where.parameters);
  return statement;
}

std::string StatementBuilder::ReturnTables() const {
  std::string list;
  std::shared_ptr<xqb_Tables> tables = query_.Tables();
  for (const auto& table : *tables) list.append(names_.Table(*table)).append(kSeparator);
  CutSeparator(list);
  return list;
}

std::string StatementBuilder::ReturnAllFields(bool simple_fields) const {
  std::int64_t count = FieldCount(query_);
  if (count == 0) return "";
  SlotList list(count, 1);
  ForEachField(query_, [&](const xqb_Table& table, const xqb_Field& field) {
    if (!field.UseInStatement()) return;
    std::string item = names_.SelectItem(table, field, simple_fields);
    if (field.AppearanceOrder() == 0) {
      list.AddToTail(item);
    } else {
      list.Place(std::move(item), field.AppearanceOrder());
    }
  });
  return list.Join();
}

std::string StatementBuilder::ReturnOrderByFields() const {
  SlotList list(FieldCount(query_), 0);
  ForEachField(query_, [&](const xqb_Table& table, const xqb_Field& field) {
    std::string_view suffix = SortSuffix(field.OrderByOrder());
    if (suffix.empty()) return;
    list.Place(names_.SortItem(table, field) + std::string(suffix), field.OrderByLevel());
  });
  return list.Join();
}

std::string StatementBuilder::ReturnGroupByFields() const {
  std::int64_t count = FieldCount(query_);
  if (count == 0) return "";
  SlotList list(count, 1);
  ForEachField(query_, [&](const xqb_Table& table, const xqb_Field& field) {
    if (field.GroupByLevel() == 0) return;
    list.Place(names_.GroupItem(table, field), field.GroupByLevel());
  });
  return list.Join();
}

}  // namespace brix
