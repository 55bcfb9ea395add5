// The brixq commands over the public query API.
#include "tools/query_commands.h"

#include <memory>
#include <vector>

#include "querybuilder/tree_walk.h"
#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/variant.h"
#include "tools/brixq_errors.h"
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
  StatementOptions statement = StatementOptionsOf(options, options.dialect.value_or(SqlDialect::kSQLite));
  if (options.command == Command::kSql) {
    return StatementText(options, query.ReturnParameterizedSQL(statement));
  }
  return StatementText(options, query.ReturnParameterizedWHERE(
                                    statement, !options.qualified,
                                    TableByKey(query, options.table), options.joins));
}

ResultTable Run(const Options& options, const xqb_Query& query) {
  if (options.postgres) {
    return RunOnPostgres(*options.postgres, query.ReturnParameterizedSQL(StatementOptionsOf(
                                                options, SqlDialect::kPostgreSQL)));
  }
  return RunOnSqlite(options.db ? *options.db : DefaultDatabasePath(),
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
      break;
  }
  return {};
}

}  // namespace

std::string RunCommand(const Options& options) {
  // Fixed before the query exists, so that its Today is the given day too.
  if (options.date) Clock::Set(std::make_shared<FixedClock>(*options.date));
  std::string document = ReadDefinition(options.file);
  auto query = xqb_Query::Create();
  query->LoadXMLDef(document);
  for (const ParamValues& param : options.params) {
    query->AddParamValues(param.name, ParamArray(param.values));
  }
  // The saved document ends in CR LF already; it is printed byte for byte as a host stores it.
  if (options.command == Command::kSave) return query->SaveXMLDef();
  return CommandText(options, *query) + "\n";
}

}  // namespace brix::brixq
