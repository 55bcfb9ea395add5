// Parsing of the brixq command line: commands, options with strict value checks, usage text.
#include "tools/command_line.h"

#include <array>
#include <charconv>
#include <chrono>
#include <limits>

#include "runtime/dates.h"

namespace brix::brixq {
namespace {

constexpr std::string_view kUsage =
    R"(Usage: brixq COMMAND [OPTIONS] FILE
       brixq --help | --version
       brixq b64 encode [--span N] | brixq b64 decode
       brixq envelope FILE [--compressed]
       brixq serve [OPTIONS] | brixq catalog import FILE... | brixq catalog export
         (the catalogue service: brixq serve --help)

Loads the query definition document FILE ("-" reads standard input) and prints:
  sql        the SELECT statement (ReturnSQL)
  where      the WHERE text alone (ReturnWHEREConditions)
  dt         the dtSearch full-text request (ReturnDTConditions)
  describe   one line per condition: its ConditionID, TAB, its Romanian description
  clauses    one line per field: table, TAB, field, TAB, its available clause numbers
  save       the definition saved again (SaveXMLDef)
  run        the rows the parameterized statement selects from SQLite (or PostgreSQL), as a
             table

Reads standard input and prints, with nothing added:
  b64 encode  its Base64 text (EncodeB64); with --span N in lines of N characters
              ending in CR LF (Span)
  b64 decode  its bytes (Unspan, then DecodeB64)

Reads the call envelope FILE ("-" standard input) and prints its class, procedure, session,
error, return value and parameters with their types:
  envelope    --compressed when it was compressed (bMakeCompress)

Options:
  --top N             sql, run: at most N rows (LIMIT N); 0, the default, means all
  --dialect NAME      sql, where: the parameterized statement for sqlite or postgresql: names
                      quoted, every value a placeholder, printed with its parameters
  --json              sql, where: the parameterized statement and its parameters as one JSON
                      object (sqlite unless --dialect says otherwise)
  --refuse-host-sql   sql, where, run: refuse calculated fields and join links written in SQL
  --qualified         where: write fields as [table].field
  --joins             where: write the equalities that link the tables first
  --table NAME        where: only the conditions of the table NAME
  --near N            dt: word distance of the proximity operator (default 33)
  --db PATH           run: the SQLite database (default: the bundled sample database)
  --postgres CONNINFO run: run on PostgreSQL instead ("host=/tmp dbname=shop", postgresql://...)
  --date DATE         any command: fix the clock at DATE (YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS)
  --param NAME=V1,... any command, repeatable: add the values V1,... to parameter NAME

Exit status: 0 done, 1 error (message on standard error), 2 wrong command line.
)";

constexpr std::array<std::string_view, 7> kCommandNames = {"sql",     "where", "dt", "describe",
                                                           "clauses", "save",  "run"};

unsigned Bit(Command command) { return 1u << static_cast<unsigned>(command); }
constexpr unsigned kEveryCommand = ~0u;

template <class Integer>
Integer ParseInteger(std::string_view option, std::string_view text, Integer low, Integer high) {
  Integer value{};
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < low || value > high) {
    throw UsageError("--" + std::string(option) + " needs a whole number from " +
                     std::to_string(low) + " to " + std::to_string(high) + ", not \"" +
                     std::string(text) + "\"");
  }
  return value;
}

ParamValues ParseParam(std::string_view text) {
  std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) {
    throw UsageError("--param needs NAME=V1,V2,..., not \"" + std::string(text) + "\"");
  }
  ParamValues param{std::string(text.substr(0, equals)), {}};
  std::string_view values = text.substr(equals + 1);
  for (std::size_t start = 0;;) {
    std::size_t comma = values.find(',', start);
    param.values.emplace_back(values.substr(start, comma - start));
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  return param;
}

struct OptionRule {
  std::string_view name;
  bool takes_value;
  unsigned commands;  // bits of the commands that accept the option
  void (*apply)(Options& options, std::string_view value);
};

constexpr std::int32_t kLongMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int16_t kIntegerMin = std::numeric_limits<std::int16_t>::min();
constexpr std::int16_t kIntegerMax = std::numeric_limits<std::int16_t>::max();

SqlDialect ParseDialect(std::string_view text) {
  if (text == "sqlite") return SqlDialect::kSQLite;
  if (text == "postgresql") return SqlDialect::kPostgreSQL;
  throw UsageError("--dialect needs sqlite or postgresql, not \"" + std::string(text) + "\"");
}

const unsigned kStatementCommands = Bit(Command::kSql) | Bit(Command::kWhere);

const std::array<OptionRule, 12> kOptionRules = {{
    {"top", true, Bit(Command::kSql) | Bit(Command::kRun),
     [](Options& o, std::string_view v) {
       o.top = ParseInteger<std::int32_t>("top", v, 0, kLongMax);
     }},
    {"qualified", false, Bit(Command::kWhere),
     [](Options& o, std::string_view) { o.qualified = true; }},
    {"joins", false, Bit(Command::kWhere), [](Options& o, std::string_view) { o.joins = true; }},
    {"table", true, Bit(Command::kWhere),
     [](Options& o, std::string_view v) { o.table = std::string(v); }},
    {"near", true, Bit(Command::kDt),
     [](Options& o, std::string_view v) {
       o.near = ParseInteger<std::int16_t>("near", v, kIntegerMin, kIntegerMax);
     }},
    {"db", true, Bit(Command::kRun), [](Options& o, std::string_view v) { o.db = std::string(v); }},
    {"postgres", true, Bit(Command::kRun),
     [](Options& o, std::string_view v) { o.postgres = std::string(v); }},
    {"dialect", true, kStatementCommands,
     [](Options& o, std::string_view v) { o.dialect = ParseDialect(v); }},
    {"json", false, kStatementCommands, [](Options& o, std::string_view) { o.json = true; }},
    {"refuse-host-sql", false, kStatementCommands | Bit(Command::kRun),
     [](Options& o, std::string_view) { o.refuse_host_sql = true; }},
    {"date", true, kEveryCommand,
     [](Options& o, std::string_view v) {
       o.date = ParseDateTime(v);
       if (!o.date) {
         throw UsageError("--date needs YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, not \"" +
                          std::string(v) + "\"");
       }
     }},
    {"param", true, kEveryCommand,
     [](Options& o, std::string_view v) { o.params.push_back(ParseParam(v)); }},
}};

Command ParseCommand(std::string_view name) {
  for (std::size_t i = 0; i < kCommandNames.size(); ++i) {
    if (kCommandNames[i] == name) return static_cast<Command>(i);
  }
  throw UsageError("unknown command \"" + std::string(name) + "\"");
}

const OptionRule& FindOption(std::string_view name, Command command) {
  for (const OptionRule& rule : kOptionRules) {
    if (rule.name != name) continue;
    if ((rule.commands & Bit(command)) == 0) {
      throw UsageError("the command " + std::string(kCommandNames[static_cast<int>(command)]) +
                       " takes no option --" + std::string(name));
    }
    return rule;
  }
  throw UsageError("unknown option \"--" + std::string(name) + "\"");
}

// Digits at the positions of `pattern` that hold '9', the other characters as written.
bool MatchesPattern(std::string_view text, std::string_view pattern) {
  if (text.size() != pattern.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool digit = text[i] >= '0' && text[i] <= '9';
    if (pattern[i] == '9' ? !digit : text[i] != pattern[i]) return false;
  }
  return true;
}

int Digits(std::string_view text, std::size_t at, std::size_t count) {
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) value = value * 10 + (text[i] - '0');
  return value;
}

}  // namespace

std::optional<double> ParseDateTime(std::string_view text) {
  bool with_time = MatchesPattern(text, "9999-99-99T99:99:99");
  if (!with_time && !MatchesPattern(text, "9999-99-99")) return std::nullopt;
  int year = Digits(text, 0, 4), month = Digits(text, 5, 2), day = Digits(text, 8, 2);
  int hour = 0, minute = 0, second = 0;
  if (with_time) {
    hour = Digits(text, 11, 2);
    minute = Digits(text, 14, 2);
    second = Digits(text, 17, 2);
  }
  // Years below 100 would be read as two-digit years by DateSerial.
  const std::chrono::year_month_day date{std::chrono::year{year},
                                         std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (year < 100 || !date.ok() || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  return CombineDateTime(DateSerial(year, month, day),
                         (hour * 3600 + minute * 60 + second) / 86400.0);
}

Options ParseCommandLine(const std::vector<std::string_view>& args) {
  Options options;
  if (args.empty()) throw UsageError("missing COMMAND");
  if (args[0] == "--help" || args[0] == "-h") {
    options.help = true;
    return options;
  }
  if (args[0] == "--version") {
    options.version = true;
    return options;
  }
  options.command = ParseCommand(args[0]);
  std::vector<std::string_view> files;
  bool options_ended = false;
  for (std::size_t i = 1; i < args.size(); ++i) {
    std::string_view arg = args[i];
    if (options_ended || arg == "-" || !arg.starts_with("-")) {
      files.push_back(arg);
      continue;
    }
    if (arg == "--") {
      options_ended = true;
      continue;
    }
    if (arg == "--help" || arg == "-h") {
      options.help = true;
      return options;
    }
    if (!arg.starts_with("--")) throw UsageError("unknown option \"" + std::string(arg) + "\"");
    std::string_view name = arg.substr(2);
    std::optional<std::string_view> value;
    if (std::size_t equals = name.find('='); equals != std::string_view::npos) {
      value = name.substr(equals + 1);
      name = name.substr(0, equals);
    }
    const OptionRule& rule = FindOption(name, options.command);
    if (rule.takes_value && !value) {
      if (++i == args.size()) throw UsageError("--" + std::string(name) + " needs a value");
      value = args[i];
    }
    if (!rule.takes_value && value) {
      throw UsageError("--" + std::string(name) + " takes no value");
    }
    rule.apply(options, value.value_or(""));
  }
  if (options.db && options.postgres) throw UsageError("--db and --postgres exclude each other");
  if (files.empty()) throw UsageError("missing FILE");
  if (files.size() > 1) throw UsageError("more than one FILE: \"" + std::string(files[1]) + "\"");
  options.file = std::string(files[0]);
  return options;
}

std::int32_t ParseLongValue(std::string_view option, std::string_view text, std::int32_t low,
                            std::int32_t high) {
  return ParseInteger<std::int32_t>(option, text, low, high);
}

std::string_view UsageText() { return kUsage; }

}  // namespace brix::brixq
