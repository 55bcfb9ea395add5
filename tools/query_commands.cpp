// The brixq commands over the public query API.
#include "tools/query_commands.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/query_validator.h"
#include "querybuilder/tree_walk.h"
#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/variant.h"
#include "tools/brixq_errors.h"
#include "tools/clause_names.h"
#include "tools/file_access.h"
#include "tools/postgres_runner.h"
#include "tools/result_table.h"
#include "tools/sqlite_runner.h"
#include "tools/statement_json.h"

namespace brix::brixq {
namespace {

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    if (!text.empty()) text += '\n';
    text += line;
  }
  return text;
}

// The conditions in tree order: ConditionID, TAB, description.
std::string Describe(const xqb_Query& query) {
  std::vector<std::string> lines;
  ForEachCondition(
      query, [&](const xqb_Table& table, const xqb_Field& field, const xqb_Condition& condition) {
        lines.push_back(std::to_string(condition.ConditionID()) + "\t" +
                        query.DescribeCondition(table, field, condition));
      });
  return JoinLines(lines);
}

// The fields in tree order: table, TAB, field, TAB, the available clause numbers.
std::string Clauses(const xqb_Query& query) {
  std::vector<std::string> lines;
  ForEachField(query, [&](const xqb_Table& table, const xqb_Field& field) {
    std::string numbers;
    for (std::int32_t clause : field.ReturnAvailableClauses()) {
      if (!numbers.empty()) numbers += ' ';
      numbers += std::to_string(clause);
    }
    lines.push_back(table.DBName() + "\t" + field.DBName() + "\t" + numbers);
  });
  return JoinLines(lines);
}

// The table held under `key` (letter case ignored, as the collection looks keys up).
std::shared_ptr<xqb_Table> TableByKey(const xqb_Query& query,
                                      const std::optional<std::string>& key) {
  if (!key) return nullptr;
  try {
    return query.Tables()->Item(Variant(*key));
  } catch (const Error& error) {
    if (error.Number() != kErrInvalidProcedureCall) throw;
    Raise(kErrNoSuchTable, "brixq", "--table: the definition has no table \"" + *key + "\"");
  }
}

Variant ParamArray(const std::vector<std::string>& values) {
  VariantArray array;
  for (const std::string& value : values) array.items.emplace_back(value);
  return Variant(std::move(array));
}

StatementOptions StatementOptionsOf(const Options& options, SqlDialect dialect) {
  StatementOptions statement;
  statement.dialect = dialect;
  statement.top_records = options.top;
  statement.refuse_host_sql = options.refuse_host_sql;
  return statement;
}

// The statement text, then one line per parameter: "?n type value" (or "$n ..."), or the JSON.
std::string StatementText(const Options& options, const ParameterizedStatement& statement) {
  SqlDialect dialect = options.dialect.value_or(SqlDialect::kSQLite);
  if (options.json) return StatementJson(statement, dialect);
  std::string text = statement.text;
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    const SqlParameter& parameter = statement.parameters[i];
    text += "\n" + Placeholder(dialect, i + 1) + " " + SqlTypeName(parameter.type) + " " +
            CellText(parameter.text);
  }
  return text;
}

std::string Parameterized(const Options& options, const xqb_Query& query) {
  StatementOptions statement =
      StatementOptionsOf(options, options.dialect.value_or(SqlDialect::kSQLite));
  if (options.command == Command::kSql) {
    return StatementText(options, query.ReturnParameterizedSQL(statement));
  }
  return StatementText(
      options, query.ReturnParameterizedWHERE(statement, !options.qualified,
                                              TableByKey(query, options.table), options.joins));
}

ResultTable Run(const Options& options, const xqb_Query& query) {
  if (options.postgres) {
    return RunOnPostgres(*options.postgres, query.ReturnParameterizedSQL(StatementOptionsOf(
                                                options, SqlDialect::kPostgreSQL)));
  }
  return RunOnSqlite(
      options.db ? *options.db : DefaultDatabasePath(),
      query.ReturnParameterizedSQL(StatementOptionsOf(options, SqlDialect::kSQLite)));
}

std::string CommandText(const Options& options, const xqb_Query& query) {
  bool parameterized = options.dialect || options.json;
  switch (options.command) {
    case Command::kSql:
      if (parameterized) return Parameterized(options, query);
      return query.ReturnSQL(options.top);
    case Command::kWhere:
      if (parameterized) return Parameterized(options, query);
      return query.ReturnWHEREConditions(!options.qualified, TableByKey(query, options.table),
                                         options.joins);
    case Command::kDt:
      return query.ReturnDTConditions(options.near);
    case Command::kDescribe:
      return Describe(query);
    case Command::kClauses:
      return Clauses(query);
    case Command::kRun:
      return FormatTable(Run(options, query));
    case Command::kSave:
    case Command::kCheck:
    case Command::kParams:
      break;
  }
  return {};
}

// Each --param must name a parameter condition: AddParamValues alone would ignore a typo.
void CheckParamNames(const Options& options, const xqb_Query& query) {
  const std::vector<std::string> names = query.ParameterNames();
  for (const ParamValues& param : options.params) {
    if (std::find(names.begin(), names.end(), param.name) != names.end()) continue;
    std::string known;
    for (const std::string& name : names) known += (known.empty() ? "" : ", ") + name;
    Raise(kErrNoSuchParameter, "brixq",
          "--param " + param.name + ": the definition has no parameter condition named \"" +
              param.name + "\" (" +
              (known.empty() ? "it has none" : "letter case counts; it has " + known) + ")");
  }
}

bool ReportsProblems(Command command) {
  return command == Command::kSql || command == Command::kWhere || command == Command::kRun;
}

}  // namespace

std::string ClauseNames() {
  std::string text;
  for (std::int32_t number = 1; number <= kClauseCount; ++number) {
    text += std::to_string(number) + "\t" + std::string(ClauseName(number)) + "\t" +
            ClauseDescription(static_cast<qbe_ClauseOperator>(number)) + "\n";
  }
  return text;
}

CommandOutput RunCommand(const Options& options, std::ostream& diagnostics) {
  if (options.names) return {ClauseNames(), false};
  // Fixed before the query exists, so that its Today is the given day too.
  if (options.date) Clock::Set(std::make_shared<FixedClock>(*options.date));
  std::string document = ReadDefinition(options.file);
  auto query = xqb_Query::Create();
  query->LoadXMLDef(document);
  CheckParamNames(options, *query);
  for (const ParamValues& param : options.params) {
    query->AddParamValues(param.name, ParamArray(param.values));
  }
  CommandOutput output;
  if (options.command == Command::kCheck || ReportsProblems(options.command)) {
    const bool check = options.command == Command::kCheck;
    const bool fails = check || options.strict;
    bool any = false;
    // Each problem is written as it is found: a definition may have one on every condition.
    QueryValidator(*query).ReportProblems([&](const QueryProblem& problem) {
      any = true;
      const std::string line = problem.path + ": " + problem.message + "\n";
      if (check) {
        output.text += line;
      } else {
        diagnostics << (fails ? "brixq: " : "brixq: warning: ") << line;
      }
    });
    output.failed = fails && any;
    if (check || output.failed) return output;
  }
  if (options.command == Command::kParams) {
    for (const std::string& name : query->ParameterNames()) output.text += name + "\n";
    return output;
  }
  // The saved document ends in CR LF already; it is printed byte for byte as a host stores it.
  if (options.command == Command::kSave) {
    output.text = query->SaveXMLDef();
  } else {
    output.text = CommandText(options, *query) + "\n";
  }
  return output;
}

}  // namespace brix::brixq
