// The parameterized filter: the shared WHERE walk with names quoted and operands bound.
#include "querybuilder/parameterized_where.h"

#include <string>
#include <utility>
#include <vector>

#include "querybuilder/sql_dialect.h"
#include "querybuilder/where_walk.h"
#include "querybuilder/xqb_query.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

// Spells names as quoted identifiers and operands as placeholders, collecting their values.
class BoundWriter {
 public:
  BoundWriter(const StatementOptions& options, bool simple_fields)
      : options_(options), simple_fields_(simple_fields) {}

  void BeginField(const xqb_Table& table, const xqb_Field& field) {
    field_ = &field;
    expression_ = QuotedName(field.DBName());
    if (!simple_fields_) expression_ = QuotedName(table.DBName()) + "." + expression_;
  }

  void FieldExpression(std::string& out) const { out += expression_; }
  void EmptyTestName(std::string& out) const { out += expression_; }

  void Join(std::string& out, const xqb_Table& table, const xqb_Field& field) const {
    const std::string& link = field.LinksWithField();
    out.append(" (").append(QuotedName(table.DBName())).append(".");
    out.append(QuotedName(field.DBName())).append(" = ");
    if (ReadsAsName(link)) {
      out.append(QuotedName(link));
    } else {
      if (options_.refuse_host_sql) {
        Raise(kErrHostSqlRefused, std::string(kParameterizedSource),
              "The join link \"" + link + "\" of field " + field.DBName() +
                  " is SQL written by the host, and the options refuse host SQL.");
      }
      out.append(link);
    }
    out.append(") AND ");
  }

  std::size_t Mark() const { return parameters_.size(); }
  void Rewind(std::size_t mark) { parameters_.resize(mark); }

  void Value(std::string& out, const ClauseOperand& operand) { Bind(out, Parameter(operand)); }

  void Like(std::string& out, bool negated, bool contains, const ClauseOperand& operand) {
    std::string text = operand.kind == ClauseOperand::Kind::kStored ? ConcatText(*operand.value)
                                                                    : Parameter(operand).text;
    out += LikeOperator(options_.dialect, negated);
    Bind(out, {SqlType::kText, (contains ? "%" : "") + EscapeLikePattern(text) + "%"});
    out += LikeEscapeClause(options_.dialect);
  }

  void List(std::string& out, bool negated, const xqb_Condition& condition) {
    out += negated ? " NOT IN (" : " IN (";
    bool first = true;
    for (const Variant& item : ReadInList(ConcatText(condition.Value()))) {
      if (!first) out += ", ";
      first = false;
      Bind(out, BindOperand(item, field_->DBType()));
    }
    out += ')';
  }

  std::vector<SqlParameter> TakeParameters() { return std::move(parameters_); }

 private:
  SqlParameter Parameter(const ClauseOperand& operand) const {
    switch (operand.kind) {
      case ClauseOperand::Kind::kDateOperand:
        return BindOperand(*operand.value, qbe_DataDate);
      case ClauseOperand::Kind::kDay:
        return BindDay(operand.serial);
      case ClauseOperand::Kind::kTimeOfDay:
        return BindTimeOfMinute(operand.serial);
      default:
        return BindOperand(*operand.value, field_->DBType());
    }
  }

  void Bind(std::string& out, SqlParameter parameter) {
    parameters_.push_back(std::move(parameter));
    out += Placeholder(options_.dialect, parameters_.size());
  }

  const StatementOptions& options_;
  bool simple_fields_;
  const xqb_Field* field_ = nullptr;
  std::string expression_;
  std::vector<SqlParameter> parameters_;
};

}  // namespace

ParameterizedStatement ReturnParameterizedWHERE(const xqb_Query& query,
                                                const StatementOptions& options, bool simple_fields,
                                                std::shared_ptr<xqb_Table> tabela,
                                                bool with_join_conditions) {
  BoundWriter writer(options, simple_fields);
  FilterWalk<BoundWriter> walk(writer, with_join_conditions, query.Today());
  walk.AddTables(query, tabela);
  ParameterizedStatement statement;
  statement.text = walk.Result();
  statement.parameters = writer.TakeParameters();
  return statement;
}

}  // namespace brix
