// The walk that both WHERE renderings share: which conditions are written, grouped how, and which
// operands each clause kind compares with. A writer decides how names and values are spelled: as
// literal text (the compatible rendering) or as placeholders with bound values.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "querybuilder/xqb_table.h"
#include "runtime/variant.h"

namespace brix {

/// One operand of a clause, as the clause rules produce it, before a writer spells it.
struct ClauseOperand {
  enum class Kind {
    kStored,       ///< The condition's operand as stored (`value`).
    kDateOperand,  ///< The stored operand of a comparison on a Date field (`value`).
    kDay,          ///< A whole day computed by a range or relative kind (`serial`).
    kTimeOfDay,    ///< The clock's moment, compared by hour and minute (`serial`).
  };
  Kind kind;
  const Variant* value = nullptr;
  double serial = 0;
};

/// The operands of a range kind (1, 15, 16, 18, 21 to 24, 28): the stored pair on a field that
/// is not a Date, else the first and last day of the range from `today` and the clock.
std::pair<ClauseOperand, ClauseOperand> RangeOperands(const xqb_Field& field,
                                                      const xqb_Condition& condition, double today);

/// The operand of a single-value kind.
ClauseOperand SingleOperand(const xqb_Field& field, const xqb_Condition& condition, double today);

/// Writes the text after the field expression for one condition. The writer provides:
/// `Value(out, operand, before, after)` (a value, with LIKE wildcards around it),
/// `Like(out, negated, before, operand)`, `EmptyTestName(out)` (the name an empty test repeats)
/// and `List(out, negated, condition)`.
template <class Writer>
void AppendClause(std::string& out, Writer& writer, const xqb_Field& field,
                  const xqb_Condition& condition, double today) {
  qbe_ClauseOperator kind = condition.Clause();
  if (IsRangeClause(kind)) {
    auto [first, last] = RangeOperands(field, condition, today);
    out += " BETWEEN ";
    writer.Value(out, first);
    out += " AND ";
    writer.Value(out, last);
    return;
  }
  auto comparison = [&](std::string_view op) {
    out += op;
    writer.Value(out, SingleOperand(field, condition, today));
  };
  auto empty_test = [&](bool negated) {
    if (field.DBType() == qbe_DataMemo || field.DBType() == qbe_DataString) {
      // The empty tests of a text field repeat the bare name and join both tests with OR,
      // whatever the kind: hosts compare these texts with saved output.
      out += negated ? " <> '' OR " : " = '' OR ";
      writer.EmptyTestName(out);
    }
    out += negated ? " IS NOT NULL " : " IS NULL ";
  };
  switch (kind) {
    case qbe_ClauseEqualTo:
    case qbe_ClauseToday:
    case qbe_ClauseOverXDays:
    case qbe_ClauseTimeNow:
      return comparison(" = ");
    case qbe_ClauseGreaterOrEqual:
    case qbe_ClauseTimeGreaterThanNow:
      return comparison(" >= ");
    case qbe_ClauseGreaterThan:
      return comparison(" > ");
    case qbe_ClauseLessOrEqual:
    case qbe_ClauseTimeLessThanNow:
      return comparison(" <= ");
    case qbe_ClauseLessThan:
      return comparison(" < ");
    case qbe_ClauseNotEqual:
      return comparison(" <> ");
    case qbe_ClauseContains:
      return writer.Like(out, false, true, SingleOperand(field, condition, today));
    case qbe_ClauseNotContains:
      return writer.Like(out, true, true, SingleOperand(field, condition, today));
    case qbe_ClauseStartingWith:
      return writer.Like(out, false, false, SingleOperand(field, condition, today));
    case qbe_ClauseNotStartingWith:
      return writer.Like(out, true, false, SingleOperand(field, condition, today));
    case qbe_ClauseIsEmpty:
      return empty_test(false);
    case qbe_ClauseNotIsEmpty:
      return empty_test(true);
    case qbe_ClauseIsNull:
      out += " IS NULL";
      return;
    case qbe_ClauseInList:
      return writer.List(out, false, condition);
    case qbe_ClauseNotInList:
      return writer.List(out, true, condition);
    default:  // other kinds write the field expression alone
      return;
  }
}

/// Collects the filter and join texts over a walk of tables and fields: each field with
/// conditions gives "(c1 OR c2 ...)", fields joined by " AND ". The writer also provides
/// `BeginField(table, field)`, `FieldExpression(out)`, `Join(out, table, field)` (the join
/// equality text, " AND " included), and `Mark()` / `Rewind(mark)` to drop what a field wrote
/// when a full-text kind takes it out of the filter.
template <class Writer>
class FilterWalk {
 public:
  FilterWalk(Writer& writer, bool with_join_conditions, std::int32_t today)
      : writer_(writer), with_joins_(with_join_conditions), today_(today) {}

  /// The fields of `tabela` when given, else of every table of `query`.
  void AddTables(const xqb_Query& query, const std::shared_ptr<xqb_Table>& tabela) {
    if (tabela) return AddTable(*tabela);
    std::shared_ptr<xqb_Tables> tables = query.Tables();
    for (const auto& table : *tables) AddTable(*table);
  }

  /// join + " AND " + filter, or whichever is not empty.
  std::string Result() {
    CutEnd(filter_, 5);
    CutEnd(joins_, 5);
    if (joins_.empty()) return std::move(filter_);
    if (!filter_.empty()) joins_.append(" AND ").append(filter_);
    return std::move(joins_);
  }

 private:
  static constexpr std::ptrdiff_t kPrefetchDistance = 6;

  /// Starts loading the cache lines of `condition` that the writing reads.
  static void PrefetchCondition(const xqb_Condition& condition) {
    const char* bytes = reinterpret_cast<const char*>(&condition);
    for (std::size_t line = 0; line < sizeof(xqb_Condition); line += 64) {
      __builtin_prefetch(bytes + line);
    }
  }

  static void CutEnd(std::string& text, std::size_t count) {
    if (!text.empty()) text.resize(text.size() - count);
  }

  void AddTable(const xqb_Table& table) {
    std::shared_ptr<xqb_Fields> fields = table.Fields();
    for (const auto& field : *fields) AddField(table, *field);
  }

  void AddField(const xqb_Table& table, const xqb_Field& field) {
    writer_.BeginField(table, field);
    if (with_joins_ && !field.LinksWithField().empty()) writer_.Join(joins_, table, field);
    field_text_.clear();
    auto mark = writer_.Mark();
    std::shared_ptr<xqb_Conditions> conditions = field.Conditions();
    const auto end = conditions->end();
    for (auto at = conditions->begin(); at != end; ++at) {
      // Conditions of a large definition lie far apart in memory: ask for those a few places
      // ahead while this one is written.
      if (end - at > kPrefetchDistance) PrefetchCondition(**(at + kPrefetchDistance));
      const auto& condition = *at;
      if (!condition->ParamName().empty()) continue;
      if (IsFullTextClause(condition->Clause())) {
        // Full-text kinds belong to the search request; the field leaves SQL altogether.
        field_text_.clear();
        writer_.Rewind(mark);
        continue;
      }
      writer_.FieldExpression(field_text_);
      AppendClause(field_text_, writer_, field, *condition, static_cast<double>(today_));
      field_text_ += " OR ";
    }
    if (field_text_.empty()) return;
    filter_.append("(").append(field_text_, 0, field_text_.size() - 4).append(") AND ");
  }

  Writer& writer_;
  bool with_joins_;
  std::int32_t today_;
  std::string field_text_;
  std::string filter_;
  std::string joins_;
};

}  // namespace brix
