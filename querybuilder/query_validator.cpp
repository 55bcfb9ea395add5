// The check of a query definition: clauses, aliases, operands, IN lists, identities and links.
#include "querybuilder/query_validator.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string_view>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/definition_shape.h"
#include "querybuilder/sql_dialect.h"
#include "querybuilder/where_walk.h"
#include "querybuilder/xqb_query.h"
#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/text.h"

namespace brix {
namespace {

constexpr qbe_ClauseOperator kFirstClause = qbe_ClauseBetween;
constexpr qbe_ClauseOperator kLastClause = qbe_ClauseTimeLessThanNow;

// An operand as a message shows it: text quoted, the other kinds by name or value.
std::string Shown(const Variant& value) {
  if (value.IsEmpty()) return "Empty";
  if (value.IsNull()) return "Null";
  if (value.IsArray() || value.IsObject()) return "an array or object";
  return "\"" + CStr(value) + "\"";
}

// Binds every operand the filter would bind for one condition, the way the parameterized
// rendering does, so an operand that cannot be a value of its field raises here.
class OperandChecker {
 public:
  OperandChecker(const xqb_Field& field, const xqb_Condition& condition)
      : field_(field), condition_(condition) {}

  void Value(std::string&, const ClauseOperand& operand) {
    if (operand.kind == ClauseOperand::Kind::kStored) {
      Check(*operand.value, field_.DBType());
    } else if (operand.kind == ClauseOperand::Kind::kDateOperand) {
      Check(*operand.value, qbe_DataDate);
    }
  }
  void Like(std::string&, bool, bool, const ClauseOperand&) {}  // any text is a pattern
  void EmptyTestName(std::string&) const {}
  void List(std::string&, bool, const xqb_Condition& condition) {
    std::vector<Variant> items;
    try {
      items = ReadInList(ConcatText(condition.Value()));
    } catch (const Error& error) {
      problem_ = error.Description();  // it quotes the list and where reading stopped
      return;
    }
    for (const Variant& item : items) {
      if (!problem_.empty()) return;
      Check(item, field_.DBType(), "the list item ");
    }
  }

  const std::string& problem() const { return problem_; }

 private:
  void Check(const Variant& operand, qbe_DataType type, std::string_view what = {}) {
    if (!problem_.empty()) return;
    try {
      BindOperand(operand, type);
    } catch (const Error& error) {
      std::string name(what);
      if (name.empty())
        name = &operand == &condition_.SecondaryValue() ? "SecondaryValue " : "Value ";
      problem_ = name + Shown(operand) + " does not read as " + TypeName(type) + " (" +
                 error.Description() + ")";
    }
  }

  static std::string TypeName(qbe_DataType type) {
    std::string name = DataTypeDescription(type);
    return name.empty() ? "data type " + std::to_string(type) : name;
  }

  const xqb_Field& field_;
  const xqb_Condition& condition_;
  std::string problem_;
};

// Upper-cased quoted spellings compare names as SQL engines do, brackets and case aside.
std::string NameKey(std::string_view name) { return FoldCase(QuotedName(name)); }

class Walk {
 public:
  Walk(const xqb_Query& query, const std::function<void(const QueryProblem&)>& report)
      : query_(query), report_(report) {
    for (const auto& table : *query.Tables()) {
      for (const auto& field : *table->Fields()) {
        try {
          field_names_.push_back(NameKey(field->DBName()));
          field_names_.push_back(NameKey(table->DBName()) + "." + field_names_.back());
        } catch (const Error&) {
          // A name that cannot be quoted is no link target; the statement reports it.
        }
      }
    }
  }

  void Run() {
    // Paths name the elements of the saved document.
    const std::string table_prefix = std::string(DefinitionShape<xqb_Query>::kElement) + "/" +
                                     std::string(DefinitionShape<xqb_Query>::kChildren.prefix);
    const std::string field_prefix =
        "/" + std::string(DefinitionShape<xqb_Table>::kChildren.prefix);
    int t = 0;
    for (const auto& table : *query_.Tables()) {
      std::string table_path = table_prefix + std::to_string(++t);
      int f = 0;
      for (const auto& field : *table->Fields()) {
        CheckField(*field, table_path + field_prefix + std::to_string(++f));
      }
    }
  }

 private:
  void Add(const std::string& path, std::string message) {
    report_(QueryProblem{path, std::move(message)});
  }

  void CheckField(const xqb_Field& field, const std::string& path) {
    if (field.UseInStatement() && field.CalculatedFormula().empty() && field.Alias().empty()) {
      Add(path, "field " + field.DBName() +
                    " has an empty Alias: the statement writes \"AS\" "
                    "with no name after it");
    }
    const std::string& link = field.LinksWithField();
    if (!link.empty() && ReadsAsName(link) && !NamesAField(link)) {
      Add(path, "LinksWithField \"" + link + "\" names no field of the query");
    }
    auto listed = field.ReturnAvailableClauses();
    int c = 0;
    for (const auto& condition : *field.Conditions()) {
      CheckCondition(field, listed, *condition, path + "/Condition" + std::to_string(++c));
    }
  }

  bool NamesAField(const std::string& link) const {
    try {
      return std::find(field_names_.begin(), field_names_.end(), NameKey(link)) !=
             field_names_.end();
    } catch (const Error&) {
      return false;  // "a..b": no name at all
    }
  }

  void CheckCondition(const xqb_Field& field, const KeyedCollection<std::int32_t>& listed,
                      const xqb_Condition& condition, const std::string& path) {
    auto [first, added] = ids_.try_emplace(condition.ConditionID(), path);
    if (!added) {
      Add(path, "ConditionID " + std::to_string(condition.ConditionID()) + " is also the ID of " +
                    first->second + ": look-ups by ID find that one");
    }
    const qbe_ClauseOperator clause = condition.Clause();
    if (clause < kFirstClause || clause > kLastClause) {
      Add(path, "Clause " + std::to_string(clause) + " is not a clause (1 to 32)");
      return;
    }
    if (IsFullTextClause(clause)) {
      // The full-text request reads the indexed fields alone, whatever their clause lists say.
      if (!field.IsDTIndex()) {
        Add(path, "Clause " + std::to_string(clause) + " (" + ClauseDescription(clause) +
                      ") searches the full-text index, but field " + field.DBName() +
                      " is not indexed (IsDTIndex False): no text writes the condition");
      }
    } else if (std::find(listed.begin(), listed.end(), clause) == listed.end() &&
               !field.ClauseAvailable(clause)) {
      Add(path, "Clause " + std::to_string(clause) + " (" + ClauseDescription(clause) +
                    ") is not available for field " + field.DBName() + " (" +
                    AvailableText(listed) + ")");
    }
    // A parameter condition's operands are replaced by the values given at run time.
    if (!condition.ParamName().empty() || IsFullTextClause(clause)) return;
    OperandChecker checker(field, condition);
    std::string ignored;
    try {
      AppendClause(ignored, checker, field, condition, query_.Today());
    } catch (const Error& error) {
      Add(path, "Value " + Shown(condition.Value()) + " is no count for clause " +
                    std::to_string(clause) + " (" + error.Description() + ")");
      return;
    }
    if (!checker.problem().empty()) Add(path, checker.problem());
  }

  static std::string AvailableText(const KeyedCollection<std::int32_t>& listed) {
    std::string text;
    for (std::int32_t clause : listed) text += (text.empty() ? "" : " ") + std::to_string(clause);
    return text.empty() ? "it offers none" : "it offers " + text;
  }

  const xqb_Query& query_;
  const std::function<void(const QueryProblem&)>& report_;
  std::vector<std::string> field_names_;
  std::map<std::int32_t, std::string> ids_;
};

}  // namespace

void QueryValidator::ReportProblems(const std::function<void(const QueryProblem&)>& report) const {
  Walk(query_, report).Run();
}

std::vector<QueryProblem> QueryValidator::Problems() const {
  std::vector<QueryProblem> problems;
  ReportProblems([&problems](const QueryProblem& problem) { problems.push_back(problem); });
  return problems;
}

std::vector<QueryProblem> xqb_Query::Validate() const { return QueryValidator(*this).Problems(); }

std::vector<std::string> xqb_Query::ParameterNames() const {
  std::vector<std::string> names;
  for (const auto& table : *Tables()) {
    for (const auto& field : *table->Fields()) {
      for (const auto& condition : *field->Conditions()) {
        const std::string& name = condition->ParamName();
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
          names.push_back(name);
        }
      }
    }
  }
  return names;
}

}  // namespace brix
