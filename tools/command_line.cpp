// Parsing of the brixq command line: commands, options with strict value checks, usage text.
#include "tools/command_line.h"

#include <array>
#include <charconv>
#include <chrono>
#include <limits>

#include "runtime/dates.h"
#include "tools/command_help.h"

namespace brix::brixq {
namespace {

constexpr std::array<std::string_view, 9> kCommandNames = {
    "sql", "where", "dt", "describe", "clauses", "save", "run", "check", "params"};

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
  static constexpr std::array<std::string_view, 2> kDialects = {"sqlite", "postgresql"};
  if (text == kDialects[0]) return SqlDialect::kSQLite;
  if (text == kDialects[1]) return SqlDialect::kPostgreSQL;
  throw UsageError("--dialect needs sqlite or postgresql, not \"" + std::string(text) + "\"" +
                   DidYouMean(text, kDialects));
}

const unsigned kStatementCommands = Bit(Command::kSql) | Bit(Command::kWhere);

const unsigned kRunningCommands = kStatementCommands | Bit(Command::kRun);

const std::array<OptionRule, 14> kOptionRules = {{
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
    {"refuse-host-sql", false, kRunningCommands,
     [](Options& o, std::string_view) { o.refuse_host_sql = true; }},
    {"strict", false, kRunningCommands, [](Options& o, std::string_view) { o.strict = true; }},
    {"names", false, Bit(Command::kClauses), [](Options& o, std::string_view) { o.names = true; }},
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
  throw UsageError("unknown command \"" + std::string(name) + "\"" +
                   DidYouMean(name, CommandNames()));
}

// The names of the options `command` takes, for hints.
std::vector<std::string_view> OptionNames(Command command) {
  std::vector<std::string_view> names = {"help"};
  for (const OptionRule& rule : kOptionRules) {
    if (rule.commands & Bit(command)) names.push_back(rule.name);
  }
  return names;
}

const OptionRule& FindOption(std::string_view name, Command command) {
  const std::string command_name(CommandName(command));
  for (const OptionRule& rule : kOptionRules) {
    if (rule.name != name) continue;
    if ((rule.commands & Bit(command)) == 0) {
      throw UsageError("the command " + command_name + " takes no option --" + std::string(name),
                       command_name);
    }
    return rule;
  }
  throw UsageError("unknown option \"--" + std::string(name) + "\"" +
                       DidYouMean(name, OptionNames(command), "--"),
                   command_name);
}

// Parses the arguments after the command; usage errors come back naming the command.
void ParseArguments(const std::vector<std::string_view>& args, Options& options);

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
    options.help = options.help_overview = true;
    return options;
  }
  if (args[0] == "--version") {
    options.version = true;
    return options;
  }
  options.command = ParseCommand(args[0]);
  try {
    ParseArguments(args, options);
  } catch (const UsageError& error) {
    if (!error.command().empty()) throw;
    throw UsageError(error.what(), std::string(args[0]));
  }
  return options;
}

namespace {

void ParseArguments(const std::vector<std::string_view>& args, Options& options) {
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
      return;
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
  if (options.names) {
    if (!files.empty()) throw UsageError("clauses --names takes no FILE");
    return;
  }
  if (files.empty()) throw UsageError("missing FILE");
  if (files.size() > 1) throw UsageError("more than one FILE: \"" + std::string(files[1]) + "\"");
  options.file = std::string(files[0]);
}

}  // namespace

std::int32_t ParseLongValue(std::string_view option, std::string_view text, std::int32_t low,
                            std::int32_t high) {
  return ParseInteger<std::int32_t>(option, text, low, high);
}

std::vector<std::string> SplitCommas(std::string_view text) {
  std::vector<std::string> items;
  for (std::size_t start = 0;;) {
    std::size_t comma = text.find(',', start);
    items.emplace_back(text.substr(start, comma - start));
    if (comma == std::string_view::npos) return items;
    start = comma + 1;
  }
}

ParamValues ParseParam(std::string_view text) {
  std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) {
    throw UsageError("--param needs NAME=V1,V2,..., not \"" + std::string(text) + "\"");
  }
  return {std::string(text.substr(0, equals)), SplitCommas(text.substr(equals + 1))};
}

std::string_view CommandName(Command command) {
  return kCommandNames[static_cast<std::size_t>(command)];
}

}  // namespace brix::brixq
