// The help texts of brixq and the near-miss hint of its command-line errors.
#include "tools/command_help.h"

#include <algorithm>
#include <array>
#include <vector>

namespace brix::brixq {
namespace {

constexpr std::string_view kOverview =
    R"(Usage: brixq COMMAND [OPTIONS] FILE      (FILE "-" reads standard input)
       brixq COMMAND --help                 (that command's options and examples)
       brixq --version

Commands on a query definition document:
  sql        the SELECT statement (ReturnSQL), or the parameterized one (--dialect, --json)
  where      the WHERE text alone (ReturnWHEREConditions)
  dt         the dtSearch full-text request (ReturnDTConditions)
  describe   one line per condition: ConditionID, TAB, its Romanian description
  clauses    one line per field: table, TAB, field, TAB, its available clause numbers
  save       the definition saved again (SaveXMLDef)
  run        the rows the statement selects from SQLite (or PostgreSQL), as a table
  check      the problems of the definition, one line each; exit status 1 when there are any
  params     the names of its parameter conditions, one a line (for --param)
Other commands:
  clauses --names   the 32 clause numbers with their names and Romanian texts (no FILE)
  b64        standard input through Base64 (encode, decode)
  envelope   what a call envelope carries

Exit status: 0 done, 1 error (message on standard error), 2 wrong command line.
)";

struct HelpEntry {
  std::string_view command;
  std::string_view text;
};

// The options shared by the commands that load a definition.
constexpr std::string_view kCommonOptions =
    R"(  --date DATE         fix the clock at DATE (YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS): Today,
                      the system date and the time of day; also fixes the random IDs of the
                      conditions --param adds
  --param NAME=V1,... repeatable: add the values V1,... to the parameter condition NAME
                      (AddParamValues; letter case counts; brixq params FILE lists them)
)";

constexpr std::string_view kStrict =
    R"(  --strict            the definition's problems (brixq check) are errors, not warnings
)";

constexpr std::array<HelpEntry, 11> kHelp = {{
    {"sql", R"(Usage: brixq sql [OPTIONS] FILE
Prints the SELECT statement of the definition (ReturnSQL), or with --dialect or --json the
parameterized statement and its parameters. Problems of the definition (see brixq check) are
printed as warnings on standard error.
Options:
  --top N             at most N rows (LIMIT N); 0, the default, means all
  --dialect NAME      sqlite or postgresql: names quoted, every value a placeholder, then one
                      line per parameter (placeholder, type, value)
  --json              the parameterized statement as one JSON object (sqlite by default)
  --refuse-host-sql   refuse calculated fields and join links written in SQL
@strict@common
Examples:
  brixq sql --top 10 examples/orders.xml
  brixq sql --dialect postgresql --param Oras=Cluj,Iasi examples/parameter_query.xml
)"},
    {"where", R"(Usage: brixq where [OPTIONS] FILE
Prints the WHERE text of the definition (ReturnWHEREConditions), or with --dialect or --json the
parameterized filter and its parameters. Problems of the definition are printed as warnings on
standard error.
Options:
  --qualified         write fields as [table].field (SimpleFields False)
  --joins             write the equalities that link the tables first (WithJoinConditions)
  --table NAME        only the conditions of the table NAME (letter case ignored)
  --dialect NAME      sqlite or postgresql: the parameterized filter
  --json              the parameterized filter as one JSON object
  --refuse-host-sql   refuse join links written in SQL
@strict@common
Examples:
  brixq where --qualified --joins examples/orders.xml
  brixq where --date 2024-03-15 examples/legal_documents.xml
)"},
    {"dt", R"(Usage: brixq dt [OPTIONS] FILE
Prints the dtSearch request of the first table's indexed fields (ReturnDTConditions).
Options:
  --near N            word distance of the proximity operator, -32768..32767 (default 33)
@common
Examples:
  brixq dt examples/legal_documents.xml
  brixq dt --near 5 examples/legal_documents.xml
)"},
    {"describe", R"(Usage: brixq describe [OPTIONS] FILE
Prints one line per condition in tree order: its ConditionID, TAB, its Romanian description
(ReturnConditionDescription).
Options:
@common
Examples:
  brixq describe examples/orders.xml
  brixq describe --param Oras=Cluj examples/parameter_query.xml
)"},
    {"clauses", R"(Usage: brixq clauses [OPTIONS] FILE
       brixq clauses --names
Prints one line per field in tree order: table, TAB, field, TAB, the clause numbers the field
offers (ReturnAvailableClauses). With --names and no FILE: the 32 clauses, one a line: number,
TAB, name, TAB, Romanian text.
Options:
  --names             list the clause catalogue instead
@common
Examples:
  brixq clauses examples/orders.xml
  brixq clauses --names
)"},
    {"save", R"(Usage: brixq save [OPTIONS] FILE
Prints the definition saved again (SaveXMLDef), byte for byte as a host stores it.
Options:
@common
Examples:
  brixq save examples/orders.xml > copy.xml
  brixq save --param Oras=Cluj examples/parameter_query.xml
)"},
    {"run", R"(Usage: brixq run [OPTIONS] FILE
Runs the parameterized statement on SQLite (or PostgreSQL) and prints the rows as a table with
a header, a rule and a row count. Problems of the definition are printed as warnings on
standard error.
Options:
  --top N             at most N rows
  --db PATH           the SQLite database, opened read-only (default: the sample database)
  --postgres CONNINFO run on PostgreSQL instead ("host=/var/run/postgresql dbname=shop" or a
                      postgresql:// URI)
  --refuse-host-sql   refuse calculated fields and join links written in SQL
@strict@common
Examples:
  brixq run examples/orders.xml
  brixq run --date 2024-03-15 --postgres "dbname=shop" examples/legal_documents.xml
)"},
    {"check", R"(Usage: brixq check [OPTIONS] FILE
Prints the problems of the definition (xqb_Query::Validate), one line each: the element path,
": " and what is wrong; exit status 1 when there is any, 0 and nothing printed when there is
none. Reported: clauses outside 1..32 or not offered by their field, empty aliases the
statement writes after AS, operands that are no value of their field's type, IN lists that do
not read, a ConditionID used twice, a LinksWithField that names no field.
Options:
@common
Examples:
  brixq check examples/orders.xml
  brixq check --param Oras=Cluj examples/parameter_query.xml
)"},
    {"params", R"(Usage: brixq params [OPTIONS] FILE
Prints the names of the definition's parameter conditions (ParamName), one a line, in tree
order: the names --param takes.
Options:
@common
Examples:
  brixq params examples/parameter_query.xml
  brixq params - < saved_query.xml
)"},
    {"b64", R"(Usage: brixq b64 encode [--span N]
       brixq b64 decode
Reads bytes from standard input and prints, with nothing added (no final line feed):
  encode   their Base64 text (EncodeB64); with --span N in lines of N characters, each ending
           in CR LF (Span)
  decode   the bytes of the Base64 text (Unspan, then DecodeB64)
Options:
  --span N            encode: characters per line, 1 or more
Takes no FILE, --date or --param.
Examples:
  printf 'hello world' | brixq b64 encode --span 8
  printf 'aGVsbG8g\r\nd29ybGQ=' | brixq b64 decode
)"},
    {"envelope", R"(Usage: brixq envelope [--compressed] FILE
Shows what a call envelope (cMarshall's bytes) carries: class, procedure, session, error,
return value and each parameter with its type.
Options:
  --compressed        the envelope was compressed (bMakeCompress)
Takes no --date or --param.
Examples:
  brixq envelope call.env
  brixq envelope --compressed - < call.env
)"},
}};

constexpr std::array<std::string_view, 11> kCommandNames = {
    "sql", "where", "dt",     "describe", "clauses", "save",
    "run", "check", "params", "b64",      "envelope"};

void ReplaceMark(std::string& text, std::string_view mark, std::string_view with) {
  if (std::size_t at = text.find(mark); at != std::string::npos) {
    text.replace(at, mark.size(), with);
  }
}

// Letters to change, insert or delete to turn `a` into `b`.
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t above = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
      diagonal = above;
    }
  }
  return row[b.size()];
}

}  // namespace

std::string_view UsageText() { return kOverview; }

std::span<const std::string_view> CommandNames() { return kCommandNames; }

std::string CommandHelp(std::string_view command) {
  for (const HelpEntry& entry : kHelp) {
    if (entry.command != command) continue;
    std::string text(entry.text);
    ReplaceMark(text, "@strict", kStrict);
    ReplaceMark(text, "@common\n", kCommonOptions);
    return text;
  }
  return {};
}

std::string DidYouMean(std::string_view given, std::span<const std::string_view> names,
                       std::string_view prefix) {
  if (given.empty()) return {};
  std::string_view best;
  std::size_t best_distance = 3;
  for (std::string_view name : names) {
    std::size_t distance = name.starts_with(given) ? 1 : EditDistance(given, name);
    if (distance < best_distance) {
      best = name;
      best_distance = distance;
    }
  }
  if (best.empty()) return {};
  return " (did you mean " + std::string(prefix) + std::string(best) + "?)";
}

}  // namespace brix::brixq
