// WHERE text: per-field OR groups joined by AND, clause texts by kind, value texts by type.
#include "querybuilder/where_renderer.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

#include "querybuilder/operand_dates.h"
#include "querybuilder/where_walk.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
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

// Whole day numbers are written as plain decimal integers.
std::string DayText(double serial) {
  return std::to_string(static_cast<std::int64_t>(std::trunc(serial)));
}

// Spells names as stored and values as literal text between the delimiter of the field's type.
class LiteralWriter {
 public:
  explicit LiteralWriter(bool simple_fields) : simple_fields_(simple_fields) {}

  void BeginField(const xqb_Table& table, const xqb_Field& field) {
    if (std::optional<std::string_view> delimiter = DelimiterOf(field.DBType())) {
      delimiter_ = *delimiter;
    }
    field_ = &field;
    expression_ = simple_fields_ ? field.DBName() : "[" + table.DBName() + "]." + field.DBName();
  }

  void FieldExpression(std::string& out) const { out += expression_; }
  void EmptyTestName(std::string& out) const { out += field_->DBName(); }

  void Join(std::string& out, const xqb_Table& table, const xqb_Field& field) const {
    out.append(" (").append(table.DBName()).append(".").append(field.DBName());
    out.append(" = ").append(field.LinksWithField()).append(") AND ");
  }

  int Mark() const { return 0; }
  void Rewind(int) const {}

  void Value(std::string& out, const ClauseOperand& operand) const {
    AppendLiteral(out, Text(operand));
  }

  void Like(std::string& out, bool negated, bool contains, const ClauseOperand& operand) const {
    out += negated ? " NOT LIKE " : " LIKE ";
    AppendLiteral(out, Text(operand), contains ? kWildcard : std::string_view(), kWildcard);
  }

  // The lists of the IN kinds are written as they stand.
  void List(std::string& out, bool negated, const xqb_Condition& condition) const {
    out += negated ? " NOT IN " : " IN ";
    out += ConcatText(condition.Value());
  }

 private:
  static std::string Text(const ClauseOperand& operand) {
    switch (operand.kind) {
      case ClauseOperand::Kind::kDateOperand:
        return OperandDateText(*operand.value);
      case ClauseOperand::Kind::kDay:
        return DayText(operand.serial);
      case ClauseOperand::Kind::kTimeOfDay:
        return FormatDate(operand.serial, kTimeFormat);
      default:
        return ConcatText(*operand.value);
    }
  }

  // delimiter + before + value + after + delimiter; inside quotes a quote of the value is
  // doubled so that it cannot end the literal.
  void AppendLiteral(std::string& out, std::string_view value, std::string_view before = {},
                     std::string_view after = {}) const {
    out += delimiter_;
    out += before;
    if (delimiter_ == "'") {
      for (char c : value) {
        if (c == '\'') out += '\'';
        out += c;
      }
    } else {
      out += value;
    }
    out += after;
    out += delimiter_;
  }

  bool simple_fields_;
  std::string_view delimiter_;
  const xqb_Field* field_ = nullptr;
  std::string expression_;
};

}  // namespace

std::string WhereRenderer::ReturnWHEREConditions(bool simple_fields,
                                                 std::shared_ptr<xqb_Table> tabela,
                                                 bool with_join_conditions) const {
  LiteralWriter writer(simple_fields);
  FilterWalk<LiteralWriter> walk(writer, with_join_conditions, query_.Today());
  walk.AddTables(query_, tabela);
  return walk.Result();
}

}  // namespace brix
