// The command line of brixq: the command, its options and the definition file, parsed strictly.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "querybuilder/parameterized_statement.h"

namespace brix::brixq {

enum class Command { kSql, kWhere, kDt, kDescribe, kClauses, kSave, kRun, kCheck, kParams };

/// A `--param NAME=V1,V2,...` argument: the parameter's name and its values in order.
struct ParamValues {
  std::string name;
  std::vector<std::string> values;
};

/// Everything the command line says. Defaults are those of the library's methods.
struct Options {
  bool help = false;           ///< --help: print the help (of `command`, when one was named).
  bool help_overview = false;  ///< --help before any command: the overview.
  bool version = false;        ///< --version: print the library's version, do nothing else.
  Command command = Command::kSql;
  std::string file;  ///< The definition document; "-" is standard input.

  std::int32_t top = 0;                 ///< sql, run: TopRecords.
  bool qualified = false;               ///< where: SimpleFields False.
  bool joins = false;                   ///< where: WithJoinConditions True.
  std::optional<std::string> table;     ///< where: the key of the table passed as Tabela.
  std::int16_t near = 33;               ///< dt: use_near_operator_value.
  std::optional<std::string> db;        ///< run: the SQLite database; the sample one by default.
  std::optional<std::string> postgres;  ///< run: libpq connection string; runs on PostgreSQL.
  std::optional<SqlDialect> dialect;    ///< sql, where: the parameterized statement instead.
  bool json = false;                    ///< sql, where: the parameterized statement as JSON.
  bool refuse_host_sql = false;     ///< sql, where, run: refuse calculated fields and SQL links.
  bool strict = false;              ///< sql, where, run: the definition's problems are errors.
  bool names = false;               ///< clauses: the clause catalogue, no FILE.
  std::optional<double> date;       ///< Any command: the library clock's fixed moment.
  std::vector<ParamValues> params;  ///< Any command: AddParamValues calls, in order.
};

/// A command line that cannot be obeyed; the message says why, `command` whose help to see ("" for
/// the overview).
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& message, std::string command = {})
      : std::runtime_error(message), command_(std::move(command)) {}
  const std::string& command() const { return command_; }

 private:
  std::string command_;
};

/// Parses the arguments after the program name. Options may stand before or after FILE, as
/// "--name value" or "--name=value"; "--" ends the options. An option that the command does not
/// take, a value that does not parse, a missing or second FILE all raise `UsageError` (with a
/// hint when a name is close to a known one). A
/// single-valued option given twice keeps the last value.
Options ParseCommandLine(const std::vector<std::string_view>& args);

/// The day number of "YYYY-MM-DD" or "YYYY-MM-DDTHH:MM:SS" (years 100 to 9999, every field
/// range-checked, nothing else accepted); `std::nullopt` for any other text.
std::optional<double> ParseDateTime(std::string_view text);

/// `text` as a whole number from `low` to `high`; raises `UsageError` naming `--option` for any
/// other text.
std::int32_t ParseLongValue(std::string_view option, std::string_view text, std::int32_t low,
                            std::int32_t high);

/// The name of a command as typed.
/// The comma-separated items of `text` ("" is one empty item).
std::vector<std::string> SplitCommas(std::string_view text);

/// NAME=V1,V2,... as --param takes it; raises `UsageError` without a name.
ParamValues ParseParam(std::string_view text);

std::string_view CommandName(Command command);

}  // namespace brix::brixq
