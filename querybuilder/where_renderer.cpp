// WHERE text: per-field OR groups joined by AND, clause texts by kind, value texts by type.
#include "querybuilder/where_renderer.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/operand_dates.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace brix {
namespace {

constexpr std::string_view kWildcard = "%";
constexpr std::string_view kTimeFormat = "hh:mm";

// The delimiter a database type sets; std::nullopt for the types that keep the previous one.
std::optional<std::string_view> DelimiterOf(qbe_DataType type) {
  switch (type) {
    case qbe_DataBLOB:
    case qbe_DataBoolean:
    case qbe_DataNumeric:
    case qbe_DataDecimal:
      return "";
    case qbe_DataDate:
      return "#";
    case qbe_DataMemo:
    case qbe_DataString:
      return "'";
    default:
      return std::nullopt;
  }
}

bool IsTextType(qbe_DataType type) { return type == qbe_DataMemo || type == qbe_DataString; }

// Whole day numbers are written as plain decimal integers.
std::string DayText(double serial) {
  return std::to_string(static_cast<std::int64_t>(std::trunc(serial)));
}

struct DayRange {
  double first;
  double last;
};

DayRange WeekOf(double day) {
  double monday = DateAdd(DateInterval::kDay, 1 - Weekday(day, vbMonday), day);
  return {monday, DateAdd(DateInterval::kDay, 6, monday)};
}

DayRange MonthOf(double day) {
  double first = DateSerial(Year(day), Month(day), 1);
  return {first, DateAdd(DateInterval::kDay, -1, DateAdd(DateInterval::kMonth, 1, first))};
}

DayRange YearOf(double day) {
  double first = DateSerial(Year(day), 1, 1);
  return {first, DateAdd(DateInterval::kDay, -1, DateAdd(DateInterval::kYear, 1, first))};
}

// The clock's date moved to the year the condition names.
double InRequestedYear(const Variant& year) {
  double date = SystemDate();
  return DateAdd(DateInterval::kYear, static_cast<double>(CLng(year)) - Year(date), date);
}

// `Today` moved back by X units: the range from there to `Today`.
DayRange Last(DateInterval interval, const Variant& x, double today) {
  return {DateAdd(interval, -CDbl(x), today), today};
}

// What the clause texts read of the current field: the field and the delimiter in force.
struct FieldView {
  const xqb_Field& field;
  std::string_view delimiter;
  double today;
};

// The two value texts of a range kind (1, 15, 16, 18, 21 to 24, 28).
std::pair<std::string, std::string> RangeValues(const FieldView& view,
                                                const xqb_Condition& condition) {
  const Variant& value = condition.Value();
  if (view.field.DBType() != qbe_DataDate) {
    std::string first = ConcatText(value);
    return {std::move(first), ConcatText(condition.SecondaryValue())};
  }
  DayRange range{};
  switch (condition.Clause()) {
    case qbe_ClauseBetween: {
      double first = OperandDay(value);
      range = {first, OperandDay(condition.SecondaryValue())};
      break;
    }
    case qbe_ClauseThisWeek:
      range = WeekOf(SystemDate());
      break;
    case qbe_ClauseThisMonth:
      range = MonthOf(SystemDate());
      break;
    case qbe_ClauseThisYear:
      range = YearOf(SystemDate());
      break;
    case qbe_ClauseYear:
      range = YearOf(InRequestedYear(value));
      break;
    case qbe_ClauseLastXDays:
      range = Last(DateInterval::kDay, value, view.today);
      break;
    case qbe_ClauseLastXMonths:
      range = Last(DateInterval::kMonth, value, view.today);
      break;
    case qbe_ClauseLastXYears:
      range = Last(DateInterval::kYear, value, view.today);
      break;
    default:  // qbe_ClauseNextXDays
      range = {view.today, DateAdd(DateInterval::kDay, CDbl(value), view.today)};
      break;
  }
  return {DayText(range.first), DayText(range.last)};
}

// The value text of a single-value kind.
std::string SingleValue(const FieldView& view, const xqb_Condition& condition) {
  qbe_ClauseOperator kind = condition.Clause();
  if (kind >= qbe_ClauseTimeNow && kind <= qbe_ClauseTimeLessThanNow) {
    return FormatDate(Now(), kTimeFormat);
  }
  if (view.field.DBType() == qbe_DataDate) {
    switch (kind) {
      case qbe_ClauseEqualTo:
      case qbe_ClauseGreaterOrEqual:
      case qbe_ClauseGreaterThan:
      case qbe_ClauseLessOrEqual:
      case qbe_ClauseLessThan:
      case qbe_ClauseNotEqual:
        return OperandDateText(condition.Value());
      case qbe_ClauseToday:
        return DayText(view.today);
      case qbe_ClauseOverXDays:
        return DayText(DateAdd(DateInterval::kDay, CDbl(condition.Value()), view.today));
      default:
        break;
    }
  }
  return ConcatText(condition.Value());
}

// delimiter + before + value + after + delimiter; inside quotes a quote of the value is doubled
// so that it cannot end the literal.
void AppendLiteral(std::string& out, std::string_view delimiter, std::string_view value,
                   std::string_view before = {}, std::string_view after = {}) {
  out += delimiter;
  out += before;
  if (delimiter == "'") {
    for (char c : value) {
      if (c == '\'') out += '\'';
      out += c;
    }
  } else {
    out += value;
  }
  out += after;
  out += delimiter;
}

void AppendComparison(std::string& out, std::string_view op, const FieldView& view,
                      const xqb_Condition& condition) {
  out += op;
  AppendLiteral(out, view.delimiter, SingleValue(view, condition));
}

void AppendLike(std::string& out, std::string_view op, std::string_view before,
                const FieldView& view, const xqb_Condition& condition) {
  out += op;
  AppendLiteral(out, view.delimiter, SingleValue(view, condition), before, kWildcard);
}

void AppendRange(std::string& out, const FieldView& view, const xqb_Condition& condition) {
  auto [first, second] = RangeValues(view, condition);
  out += " BETWEEN ";
  AppendLiteral(out, view.delimiter, first);
  out += " AND ";
  AppendLiteral(out, view.delimiter, second);
}

// The empty tests of a text field repeat the bare name and join both tests with OR, whatever
// the kind: hosts compare these texts with saved output.
void AppendEmptyTest(std::string& out, bool negated, const FieldView& view) {
  if (IsTextType(view.field.DBType())) {
    out += negated ? " <> '' OR " : " = '' OR ";
    out += view.field.DBName();
  }
  out += negated ? " IS NOT NULL " : " IS NULL ";
}

// The text that follows the field expression for one condition.
void AppendClause(std::string& out, const FieldView& view, const xqb_Condition& condition) {
  if (IsRangeClause(condition.Clause())) return AppendRange(out, view, condition);
  switch (condition.Clause()) {
    case qbe_ClauseEqualTo:
    case qbe_ClauseToday:
    case qbe_ClauseOverXDays:
    case qbe_ClauseTimeNow:
      return AppendComparison(out, " = ", view, condition);
    case qbe_ClauseGreaterOrEqual:
    case qbe_ClauseTimeGreaterThanNow:
      return AppendComparison(out, " >= ", view, condition);
    case qbe_ClauseGreaterThan:
      return AppendComparison(out, " > ", view, condition);
    case qbe_ClauseLessOrEqual:
    case qbe_ClauseTimeLessThanNow:
      return AppendComparison(out, " <= ", view, condition);
    case qbe_ClauseLessThan:
      return AppendComparison(out, " < ", view, condition);
    case qbe_ClauseNotEqual:
      return AppendComparison(out, " <> ", view, condition);
    case qbe_ClauseContains:
      return AppendLike(out, " LIKE ", kWildcard, view, condition);
    case qbe_ClauseNotContains:
      return AppendLike(out, " NOT LIKE ", kWildcard, view, condition);
    case qbe_ClauseStartingWith:
      return AppendLike(out, " LIKE ", {}, view, condition);
    case qbe_ClauseNotStartingWith:
      return AppendLike(out, " NOT LIKE ", {}, view, condition);
    case qbe_ClauseIsEmpty:
      return AppendEmptyTest(out, false, view);
    case qbe_ClauseNotIsEmpty:
      return AppendEmptyTest(out, true, view);
    case qbe_ClauseIsNull:
      out += " IS NULL";
      return;
    case qbe_ClauseInList:
      out += " IN ";
      out += ConcatText(condition.Value());
      return;
    case qbe_ClauseNotInList:
      out += " NOT IN ";
      out += ConcatText(condition.Value());
      return;
    default:  // other kinds write the field expression alone
      return;
  }
}

// Collects the filter and join texts over a walk of tables and fields.
class FilterWriter {
 public:
  FilterWriter(bool simple_fields, bool with_join_conditions, std::int32_t today)
      : simple_fields_(simple_fields), with_joins_(with_join_conditions), today_(today) {}

  void AddTable(const xqb_Table& table) {
    std::shared_ptr<xqb_Fields> fields = table.Fields();
    for (const auto& field : *fields) AddField(table, *field);
  }

  std::string Result() {
    CutEnd(filter_, 5);
    CutEnd(joins_, 5);
    if (joins_.empty()) return std::move(filter_);
    if (!filter_.empty()) joins_.append(" AND ").append(filter_);
    return std::move(joins_);
  }

 private:
  static void CutEnd(std::string& text, std::size_t count) {
    if (!text.empty()) text.resize(text.size() - count);
  }

  void AddField(const xqb_Table& table, const xqb_Field& field) {
    if (std::optional<std::string_view> delimiter = DelimiterOf(field.DBType())) {
      delimiter_ = *delimiter;
    }
    if (with_joins_ && !field.LinksWithField().empty()) {
      joins_.append(" (").append(table.DBName()).append(".").append(field.DBName());
      joins_.append(" = ").append(field.LinksWithField()).append(") AND ");
    }
    expression_ = simple_fields_ ? field.DBName() : "[" + table.DBName() + "]." + field.DBName();
    FieldView view{field, delimiter_, static_cast<double>(today_)};
    field_text_.clear();
    std::shared_ptr<xqb_Conditions> conditions = field.Conditions();
    for (const auto& condition : *conditions) {
      if (!condition->ParamName().empty()) continue;
      if (IsFullTextClause(condition->Clause())) {
        // Full-text kinds belong to the search request; the field leaves SQL altogether.
        field_text_.clear();
        continue;
      }
      field_text_ += expression_;
      AppendClause(field_text_, view, *condition);
      field_text_ += " OR ";
    }
    if (field_text_.empty()) return;
    filter_.append("(").append(field_text_, 0, field_text_.size() - 4).append(") AND ");
  }

  bool simple_fields_;
  bool with_joins_;
  std::int32_t today_;
  std::string_view delimiter_;
  std::string expression_;
  std::string field_text_;
  std::string filter_;
  std::string joins_;
};

}  // namespace

std::string WhereRenderer::ReturnWHEREConditions(bool simple_fields,
                                                 std::shared_ptr<xqb_Table> tabela,
                                                 bool with_join_conditions) const {
  FilterWriter writer(simple_fields, with_join_conditions, query_.Today());
  if (tabela) {
    writer.AddTable(*tabela);
  } else {
    std::shared_ptr<xqb_Tables> tables = query_.Tables();
    for (const auto& table : *tables) writer.AddTable(*table);
  }
  return writer.Result();
}

}  // namespace brix
