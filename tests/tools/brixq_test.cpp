// brixq end to end: the built command on the sample definitions and on malformed input, checked
// on standard output, standard error and exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "persistence/c_marshall.h"
#include "persistence/cls_user.h"
#include "querybuilder/xqb_query.h"
#include "runtime/text.h"

namespace brix {
namespace {

struct Outcome {
  std::string out, err;
  int status;  // exit status; not 0, 1 or 2 when the command crashed
};

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Runs brixq through the shell with `input` as its standard input.
Outcome RunBrixq(const std::vector<std::string>& args, const std::string& input = "") {
  const std::string files = ::testing::TempDir() + "brixq_" + std::to_string(getpid());
  std::ofstream(files + ".in", std::ios::binary) << input;
  std::string command = BRIXQ_PATH;
  for (const std::string& arg : args) command += " '" + ReplaceAll(arg, "'", "'\\''") + "'";
  command += " <'" + files + ".in' >'" + files + ".out' 2>'" + files + ".err'";
  int status = std::system(command.c_str());
  Outcome outcome{ReadFile(files + ".out"), ReadFile(files + ".err"), WEXITSTATUS(status)};
  for (const char* ext : {".in", ".out", ".err"}) std::remove((files + ext).c_str());
  return outcome;
}

const std::string kOrders = BRIX_EXAMPLES_DIR "/orders.xml";
const std::string kLegal = BRIX_EXAMPLES_DIR "/legal_documents.xml";
const std::string kParams = BRIX_EXAMPLES_DIR "/parameter_query.xml";

// The qualified filter with the joins, as `where --qualified --joins` prints it.
const std::string kOrdersWhere =
    " (Customers.ID = Orders.CustomerID) AND ([Customers].City IN ('Cluj', 'Iasi')) AND "
    "([Orders].[Order Day] BETWEEN #45352# AND #45382#) AND ([Orders].Quantity >= 2) AND "
    "([Orders].Status = 'livrata' OR [Orders].Status LIKE 'in %')";
const std::string kOrdersSelect =
    "SELECT [Orders].[Order No] AS Comanda, [Orders].[Order Day] AS Data, "
    "[Customers].Name AS Client, [Customers].City AS Oras, [Orders].Quantity AS Cantitate, "
    "[Orders].[Unit Price] AS Pret, \"Orders\".\"Quantity\" * \"Orders\".\"Unit Price\" AS Total, "
    "[Orders].Status AS Stare FROM [Customers], [Orders] WHERE " +
    kOrdersWhere + " ORDER BY Orders.[Order Day] DESC, Orders.[Order No] ASC";
const std::string kLegalRequest =
    "((Titlu contains (codul muncii))) AND ((Emitent contains (Parlamentul)) OR (Emitent contains "
    "(Guvernul))) AND ((Numar contains (1~~100))) AND ((Data_emiterii contains "
    "(01-Jan-2001~~31-Dec-2024))) "
    "AND ((contract* AND munca*) AND (concediu w/33 odihna))";
const std::string kLegalFilter =
    "(Emitent = 'Parlamentul' OR Emitent = 'Guvernul') AND (Numar BETWEEN 1 AND 100) AND "
    "(Data_emiterii BETWEEN #36892# AND #45657#) AND (Data_publicarii BETWEEN ";
// The parameterized filter of the orders on PostgreSQL, one line per parameter.
const std::string kOrdersPostgresWhere =
    "(\"City\" IN ($1, $2)) AND (\"Order Day\" BETWEEN $3 AND $4) AND (\"Quantity\" >= $5) AND "
    "(\"Status\" = $6 OR \"Status\" ILIKE $7 ESCAPE E'\\\\')\n$1 text Cluj\n$2 text Iasi\n"
    "$3 date 2024-03-01\n$4 date 2024-03-31\n$5 integer 2\n$6 text livrata\n$7 text in %\n";
const std::string kTopRange = "--top needs a whole number from 0 to 2147483647, not ";
const std::string kDateForm = "--date needs YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, not ";

// A definition whose one condition is "the time now", which shows the clock's time of day.
std::string TimeNowDefinition() {
  auto query = xqb_Query::Create();
  auto start = query->Tables()->Add("Visits")->Fields()->Add("Start");
  start->SetShowAsType(qbe_DataTime);
  start->Conditions()->Add(qbe_ClauseTimeNow);
  return query->SaveXMLDef();
}

struct Case {
  std::vector<std::string> args;
  int status;
  std::string out;
  std::string err = "";    // the message after "brixq: "; after a status 2 the help hint follows
  std::string input = "";  // standard input
  bool warns = false;      // standard error holds warnings, not checked here
};

// The line after a usage error: the help of the command named, or the overview.
std::string HelpHint(const std::vector<std::string>& args) {
  static const std::vector<std::string> kCommands = {"sql",     "where", "dt",      "describe",
                                                     "clauses", "save",  "run",     "check",
                                                     "params",  "b64",   "envelope"};
  if (args.empty() || std::find(kCommands.begin(), kCommands.end(), args[0]) == kCommands.end()) {
    return "see brixq --help\n";
  }
  return "see brixq " + args[0] + " --help\n";
}

void ExpectRuns(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.args));
    Outcome outcome = RunBrixq(c.args, c.input);
    EXPECT_EQ(outcome.status, c.status);
    EXPECT_EQ(outcome.out, c.out);
    if (c.warns) continue;
    std::string err =
        c.err.empty() ? "" : "brixq: " + c.err + "\n" + (c.status == 2 ? HelpHint(c.args) : "");
    EXPECT_EQ(outcome.err, err);
  }
}

TEST(Brixq, PrintsWhatTheLibraryMakesOfTheSamples) {
  // clang-format off
  ExpectRuns({
      {{"sql", kOrders},                       0, kOrdersSelect + "\n"},
      {{"sql", "--top", "3", kOrders},         0, kOrdersSelect + " LIMIT 3\n"},
      {{"sql", "--top", "0", kOrders},         0, kOrdersSelect + "\n"},  // 0: no limit
      {{"sql", kOrders, "--top=2147483647"},   0, kOrdersSelect + " LIMIT 2147483647\n"},
      {{"where", "--qualified", "--joins", kOrders}, 0, kOrdersWhere + "\n"},
      // Table keys ignore letter case, as the collection's lookup does.
      {{"where", "--table", "customers", "--qualified", kOrders}, 0, "([Customers].City IN ('Cluj', 'Iasi'))\n"},
      {{"dt", kLegal},                         0, kLegalRequest + "\n"},
      {{"dt", "--near", "5", kLegal},          0, ReplaceAll(kLegalRequest, "w/33", "w/5") + "\n"},
      {{"dt", "--near=0", kLegal},             0, kLegalRequest + "\n"},
      // --date fixes Today (the last two years end on the given day) and the time of day.
      {{"where", "--date", "2024-03-15", kLegal},       0, kLegalFilter + "#44635# AND #45366#)\n"},
      {{"where", kLegal, "--date=2020-02-29T23:59:59"}, 0, kLegalFilter + "#43159# AND #43890#)\n"},
      {{"where", "--date", "2024-03-15T09:05:59", "-"}, 0, "(Start = '09:05')\n", "", TimeNowDefinition()},
      {{"describe", kOrders}, 0,
       "101\tOras (Clienti) este in lista '('Cluj', 'Iasi')'\n"
       "102\tData comenzii (Comenzi) este intre 01-Mar-2024 si 31-Mar-2024\n"
       "103\tCantitate (Comenzi) este mai mare sau egal cu 2\n"
       "104\tStare (Comenzi) sa fie 'livrata'\n"
       "105\tStare (Comenzi) incepe cu 'in '\n"},
      {{"clauses", kParams}, 0,
       "Customers\tID\t1 3 4 5 8 9 11 17 19 6 20\n"
       "Customers\tName\t2 3 10 11 12 13 17 19 4 5 8 9 6 20\n"
       "Customers\tCity\t2 3 10 11 12 13 17 19 4 5 8 9 6 20\n"},
      // Saving a saved document gives it back byte for byte, its own CR LF the only line end.
      {{"save", kParams},                      0, ReadFile(kParams)},
      // The parameter condition itself writes nothing; each value becomes a condition.
      {{"where", kParams},                     0, "\n"},
      {{"where", "--param", "Oras=Cluj,,Iasi", kParams}, 0, "(City = 'Cluj' OR City = 'Iasi')\n"},
      {{"where", "--param", "Oras=Cluj", "--param", "Oras=Iasi", kParams}, 0,
       "(City = 'Cluj' OR City = 'Iasi')\n"},
      {{"where", "--dialect", "postgresql", kOrders}, 0, kOrdersPostgresWhere},
      {{"where", "--json", "--table", "Customers", kOrders}, 0,
       "{\n  \"dialect\": \"sqlite\",\n  \"sql\": \"(\\\"City\\\" IN (?1, ?2))\",\n  \"parameters\": [\n"
       "    {\"type\": \"text\", \"value\": \"Cluj\"},\n    {\"type\": \"text\", \"value\": \"Iasi\"}\n  ]\n}\n"},
      {{"sql", "--json", "--dialect=postgresql", kParams}, 0,
       "{\n  \"dialect\": \"postgresql\",\n  \"sql\": \"SELECT \\\"Customers\\\".\\\"ID\\\" AS \\\"ID\\\", "
       "\\\"Customers\\\".\\\"Name\\\" AS \\\"Client\\\", \\\"Customers\\\".\\\"City\\\" AS \\\"Oras\\\" FROM "
       "\\\"Customers\\\" ORDER BY \\\"Customers\\\".\\\"ID\\\" ASC\",\n  \"parameters\": []\n}\n"},
      // Dates run as dates: the acts published in the two years up to Today.
      {{"run", "--date", "2024-03-15", kLegal}, 0,
       "Titlu                                                Emitent      Numar  Data_emiterii  Data_publicarii\n"
       "---------------------------------------------------  -----------  -----  -------------  ---------------\n"
       "Legea nr. 88/2023 pentru modificarea Codului muncii  Parlamentul     88  2023-03-30     2023-04-03\n"
       "(1 row)\n"},
      {{"run", kOrders}, 0,
       "Comanda  Data        Client          Oras  Cantitate  Pret  Total  Stare\n"
       "-------  ----------  --------------  ----  ---------  ----  -----  ------------\n"
       "   1007  2024-03-28  Florin Stan     Iasi          2  22.0   44.0  in asteptare\n"
       "   1008  2024-03-28  Dan O'Neill     Cluj          6  8.75   52.5  livrata\n"
       "   1003  2024-03-12  Bogdan Ionescu  Iasi          5   7.2   36.0  in curs\n"
       "   1002  2024-03-05  Ana Popescu     Cluj          2  40.0   80.0  livrata\n"
       "(4 rows)\n"},
      {{"run", "--top", "1", "--param", "Oras=Iasi", kParams}, 0,
       "ID  Client          Oras\n"
       "--  --------------  ----\n"
       " 2  Bogdan Ionescu  Iasi\n"
       "(1 row)\n"},
      {{"--version"},                          0, "brixq " + xqb_Query::Create()->GetVersion() + "\n"},
  });
  // clang-format on
}

TEST(Brixq, EncodesAndDecodesBase64BetweenTheStandardStreams) {
  const std::string span_range = "--span needs a whole number from -2147483648 to 2147483647, not ";
  // clang-format off
  ExpectRuns({
      {{"b64", "encode"},                   0, "TWFu", "", "Man"},
      {{"b64", "encode"},                   0, "",     "", ""},
      {{"b64", "encode", "--span", "4"},    0, "Zm9v\r\nYmFy\r\n", "", "foobar"},
      {{"b64", "encode", "--span=5"},       0, "Zm9vY\r\nmFyIQ\r\n==\r\n", "", "foobar!"},
      {{"b64", "decode"},                   0, "foobar", "", "Zm9v\r\nYmFy\r\n"},
      {{"b64", "encode", "--span", "0"},    1, "", "--span 0: Invalid procedure call or argument (error 5)", "x"},
      {{"b64"},                             2, "", "missing b64 action (encode or decode)"},
      {{"b64", "frob"},                     2, "", "unknown b64 action \"frob\""},
      {{"b64", "decode", "--span", "4"},    2, "", "the command b64 decode takes no option --span"},
      {{"b64", "encode", "--span"},         2, "", "--span needs a value"},
      {{"b64", "encode", "--span", "4x"},   2, "", span_range + "\"4x\""},
      {{"b64", "encode", "--spam", "3"},    2, "", "unknown option \"--spam\" (did you mean --span?)"},
      {{"b64", "encode", "--date", "2024-01-01"}, 2, "", "unknown option \"--date\": b64 reads no definition"},
      {{"b64", "encode", kOrders},          2, "", "b64 reads standard input and takes no FILE: \"" + kOrders + "\""},
  });
  // clang-format on
  // A document and every byte value survive encoding in lines and decoding.
  std::string document = ReadFile(kOrders);
  for (int c = 0; c < 256; ++c) document += static_cast<char>(c);
  Outcome encoded = RunBrixq({"b64", "encode", "--span", "76"}, document);
  EXPECT_EQ(RunBrixq({"b64", "decode"}, encoded.out).out, document);
}

// An envelope a host would send: a record, a flag, and an answer with its error.
std::string EnvelopeBytes(bool compressed) {
  auto record = clsUser::Create();
  record->SetUserName("ana");
  auto envelope = cMarshall::Create();
  envelope->SetbMakeCompress(compressed);
  envelope->SetClassName("Users");
  envelope->SetProcedureName("Login");
  envelope->AddParam("User", Variant(record));
  envelope->AddParam("Bytes", Variant(ByteArray{1, 2, 3}));
  envelope->AddParam("Empty", Variant());
  envelope->SetErrorNo(13);
  envelope->SetErrorSource("[Login]");
  envelope->SetErrorDescription("Type mismatch");
  const ByteArray bytes = envelope->GetContents();
  return std::string(bytes.begin(), bytes.end());
}

TEST(Brixq, ShowsWhatAnEnvelopeCarries) {
  const std::string shown =
      "class: Users\nprocedure: Login\nsession: (none)\n"
      "error: 13, source \"[Login]\", description \"Type mismatch\"\n"
      "return: (Unsupported data type, error 517)\nparameters: 3\n  User: Object clsUser\n"
      "  Bytes: Byte() 3 bytes\n  Empty: (Unsupported data type, error 0x80040205)\n";
  // clang-format off
  ExpectRuns({
      {{"envelope", "-"},                 0, shown, "", EnvelopeBytes(false)},
      {{"envelope", "-", "--compressed"}, 0, shown, "", EnvelopeBytes(true)},
      {{"envelope", "-"},                 1, "", "- holds a compressed envelope: add --compressed (error 5)", EnvelopeBytes(true)},
      {{"envelope", "-", "--compressed"}, 1, "", "- holds an envelope that is not compressed: leave out --compressed (error 5)", EnvelopeBytes(false)},
      {{"envelope", "-"},                 1, "", "The property bag's bytes are damaged: they are not a property bag at byte 4. (error 5)", "garbage"},
      {{"envelope"},                      2, "", "missing envelope FILE"},
      {{"envelope", "a", "b"},            2, "", "envelope takes one FILE, not also \"b\""},
  });
  // clang-format on
}

TEST(Brixq, ReportsErrorsWithTheirNumberAndStatus) {
  // clang-format off
  ExpectRuns({
      {{"sql", "/no/such/file.xml"}, 1, "", "File not found: /no/such/file.xml (error 53)"},
      {{"sql", BRIX_EXAMPLES_DIR},   1, "", "Path/File access error: " BRIX_EXAMPLES_DIR " (is a folder) (error 75)"},
      {{"where", "--table", "Invoices", kOrders}, 1, "",
       "--table: the definition has no table \"Invoices\" (error 5)"},
      {{"run", "--refuse-host-sql", kOrders}, 1, "",
       "The calculated field Total is SQL written by the host (\"\"Orders\".\"Quantity\" * \"Orders\".\"Unit Price\"\"), "
       "and the options refuse host SQL. (error 0x80042779)"},
      // Object error numbers print as 32-bit hexadecimal.
      {{"sql", "--dialect", "postgresql", "-"}, 1, "",
       "The name \"[]\" has an empty part and cannot be written as an identifier. (error 0x8004277A)",
       "<PropertyBag><xqb_Query><TablesCount>1</TablesCount><xqb_Table name=\"Table1\"><DBName>T</DBName>"
       "<FieldsCount>1</FieldsCount><xqb_Field name=\"Field1\"><DBName>[]</DBName><Alias>A</Alias>"
       "</xqb_Field></xqb_Table></xqb_Query></PropertyBag>"},
      {{"sql", "--dialect", "mysql", kOrders}, 2, "", "--dialect needs sqlite or postgresql, not \"mysql\""},
      {{"sql", "--dialect", "postgres", kOrders}, 2, "", "--dialect needs sqlite or postgresql, not \"postgres\" (did you mean postgresql?)"},
      {{"wher", kOrders},                    2, "", "unknown command \"wher\" (did you mean where?)"},
      {{"sql", "--tpo", "1", kOrders},       2, "", "unknown option \"--tpo\" (did you mean --top?)"},
      {{"clauses", "--names", kOrders},      2, "", "clauses --names takes no FILE"},
      {{"where", "--param", "oras=x", kParams}, 1, "",
       "--param oras: the definition has no parameter condition named \"oras\" (letter case counts; it has Oras) (error 5)"},
      {{"where", "--param", "Oras=x", kOrders}, 1, "",
       "--param Oras: the definition has no parameter condition named \"Oras\" (it has none) (error 5)"},
      {{"run", "--db", "x.db", "--postgres", "y", kOrders}, 2, "", "--db and --postgres exclude each other"},
      {{"dt", "--json", kOrders},            2, "", "the command dt takes no option --json"},
      {{"run", "-"},    1, "", "there is no statement to run (no tables) (error 20001)", "<PropertyBag/>"},
      // A load failure of the library comes on one line, the parser's reason after its text.
      {{"sql", "-"},    1, "", "Couldn't load xml query definition! Start-end tags mismatch at line 1, column 498. (error 0x80042775)", ReadFile(kOrders).substr(0, 500)},
      {{},                                    2, "", "missing COMMAND"},
      {{"select", kOrders},                   2, "", "unknown command \"select\""},
      {{"sql", "-t", "3", kOrders},           2, "", "unknown option \"-t\""},
      // Whether the command takes the option is checked before its value.
      {{"sql", "--joins=yes", kOrders},       2, "", "the command sql takes no option --joins"},
      {{"where", "--joins=yes", kOrders},     2, "", "--joins takes no value"},
      {{"sql"},                               2, "", "missing FILE"},
      {{"sql", kOrders, kLegal},              2, "", "more than one FILE: \"" + kLegal + "\""},
      {{"sql", kOrders, "--top"},             2, "", "--top needs a value"},
      {{"sql", "--param", "=x", kOrders},     2, "", "--param needs NAME=V1,V2,..., not \"=x\""},
      {{"sql", "--top", "5x", kOrders},       2, "", kTopRange + "\"5x\""},
      {{"sql", "--top", "-1", kOrders},       2, "", kTopRange + "\"-1\""},
      {{"sql", "--top", "2147483648", kOrders}, 2, "", kTopRange + "\"2147483648\""},
      {{"sql", "--top=", kOrders},            2, "", kTopRange + "\"\""},
      {{"dt", "--near", "32768", kLegal},     2, "", "--near needs a whole number from -32768 to 32767, not \"32768\""},
      {{"sql", "--date", "2023-02-29", kOrders},          2, "", kDateForm + "\"2023-02-29\""},
      {{"sql", "--date", "2024-3-15", kOrders},           2, "", kDateForm + "\"2024-3-15\""},
      {{"sql", "--date", "2024-03-15T24:00:00", kOrders}, 2, "", kDateForm + "\"2024-03-15T24:00:00\""},
      {{"sql", "--date", "0099-12-31", kOrders},          2, "", kDateForm + "\"0099-12-31\""},
  });
  // clang-format on
}

// A database that does not open is named, the engine's own reason after it.
TEST(Brixq, NamesTheDatabaseItCannotOpen) {
  for (const auto& [args, start, end] :
       std::vector<std::tuple<std::vector<std::string>, std::string, std::string>>{
           {{"run", "--db", "/no/such.db", kOrders},
            "brixq: cannot open the database /no/such.db: ",
            " (error 20014)\n"},
           {{"run", "--postgres", "host=/no/such/folder", kOrders},
            "brixq: PostgreSQL: cannot connect with \"host=/no/such/folder\": ",
            " (error 21000)\n"},
       }) {
    const Outcome outcome = RunBrixq(args);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.starts_with(start) && outcome.err.ends_with(end)) << outcome.err;
    EXPECT_EQ(outcome.out, "");
  }
}

// A definition with one of each problem the check reports; its statement still renders.
const std::string kFaulty =
    "<PropertyBag><xqb_Query name=\"Q\"><TablesCount>1</TablesCount>\n"
    "<xqb_Table name=\"Table1\"><DBName>Orders</DBName><FieldsCount>2</FieldsCount>\n"
    "<xqb_Field "
    "name=\"Field1\"><DBName>Quantity</DBName><DBType>5</DBType><ShowAsType>5</ShowAsType>"
    "<Alias/><LinksWithField>Customer.ID</LinksWithField><ConditionsCount>3</ConditionsCount>\n"
    "<xqb_Condition "
    "name=\"Condition1\"><ConditionID>1</ConditionID><Clause>33</Clause></xqb_Condition>\n"
    "<xqb_Condition "
    "name=\"Condition2\"><ConditionID>2</ConditionID><Clause>4</Clause><Value>two</Value></"
    "xqb_Condition>\n"
    "<xqb_Condition name=\"Condition3\"><ConditionID>3</ConditionID><Clause>17</Clause><Value>(1, "
    "2</Value></xqb_Condition>\n"
    "</xqb_Field>\n"
    "<xqb_Field "
    "name=\"Field2\"><DBName>Day</DBName><Alias>Day</Alias><DBType>3</DBType><ShowAsType>3</"
    "ShowAsType>"
    "<ConditionsCount>1</ConditionsCount>\n"
    "<xqb_Condition "
    "name=\"Condition1\"><ConditionID>1</ConditionID><Clause>3</Clause><Value>banana</Value></"
    "xqb_Condition>\n"
    "</xqb_Field></xqb_Table></xqb_Query></PropertyBag>";

TEST(Brixq, ChecksADefinitionAndWarnsBeforeRunningIt) {
  const std::string problems =
      "xqb_Query/Table1/Field1: field Quantity has an empty Alias: the statement writes \"AS\" "
      "with no name after it\n"
      "xqb_Query/Table1/Field1: LinksWithField \"Customer.ID\" names no field of the query\n"
      "xqb_Query/Table1/Field1/Condition1: Clause 33 is not a clause (1 to 32)\n"
      "xqb_Query/Table1/Field1/Condition2: Value \"two\" does not read as Numeric (Type mismatch)\n"
      "xqb_Query/Table1/Field1/Condition3: The IN list \"(1, 2\" does not read as (item, item, "
      "...) of "
      "numbers and 'quoted texts': expected \",\" or \")\" at character 6.\n"
      "xqb_Query/Table1/Field2/Condition1: ConditionID 1 is also the ID of "
      "xqb_Query/Table1/Field1/Condition1: "
      "look-ups by ID find that one\n"
      "xqb_Query/Table1/Field2/Condition1: Value \"banana\" does not read as Date (Type "
      "mismatch)\n";
  const std::string where =
      "(Quantity OR Quantity >= two OR Quantity IN (1, 2) AND (Day = #banana#)\n";
  std::string warnings, errors;
  for (std::size_t at = 0, end; (end = problems.find('\n', at)) != std::string::npos;
       at = end + 1) {
    warnings += "brixq: warning: " + problems.substr(at, end + 1 - at);
    errors += "brixq: " + problems.substr(at, end + 1 - at);
  }
  for (const auto& [args, status, out, err] :
       std::vector<std::tuple<std::vector<std::string>, int, std::string, std::string>>{
           {{"check", "-"}, 1, problems, ""},
           {{"check", kOrders}, 0, "", ""},
           {{"where", "-"}, 0, where, warnings},
           {{"where", "--strict", "-"}, 1, "", errors},
           {{"params", kParams}, 0, "Oras\n", ""},
           {{"params", kOrders}, 0, "", ""},
       }) {
    SCOPED_TRACE(testing::PrintToString(args));
    Outcome outcome = RunBrixq(args, kFaulty);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.err, err);
  }
  // A value that does not convert names its element, the element's path and its line.
  Outcome banana = RunBrixq({"sql", "-"}, ReplaceAll(kFaulty, "<DBType>3<", "<DBType>banana<"));
  EXPECT_EQ(banana.status, 1);
  EXPECT_EQ(banana.err,
            "brixq: Couldn't load xml query definition! Type mismatch: DBType of "
            "xqb_Query/Table1/Field2 (line 8) is \"banana\" (error 0x80042775)\n");
}

TEST(Brixq, ExplainsEachCommand) {
  for (const std::string command : {"sql", "where", "dt", "describe", "clauses", "save", "run",
                                    "check", "params", "b64", "envelope"}) {
    SCOPED_TRACE(command);
    Outcome help = RunBrixq({command, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.starts_with("Usage: brixq " + command)) << help.out;
    EXPECT_NE(help.out.find("Examples:"), std::string::npos);
    // Every option the help lists is one the command takes ("--name VALUE" takes a value).
    std::istringstream lines(help.out);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("  --")) continue;
      const std::string option = line.substr(2, line.find(' ', 2) - 2);
      std::vector<std::string> args = {command};
      if (command == "b64") args.push_back("encode");
      args.push_back(option);
      if (line.size() > option.size() + 3 && std::isupper(line[option.size() + 3])) {
        static const std::map<std::string, std::string> kValues = {
            {"--date", "2024-01-01"}, {"--param", "A=1"}, {"--dialect", "sqlite"}};
        args.push_back(kValues.contains(option) ? kValues.at(option) : "1");
      }
      args.push_back("--help");
      EXPECT_EQ(RunBrixq(args).status, 0) << line;
    }
  }
  Outcome names = RunBrixq({"clauses", "--names"});
  EXPECT_EQ(std::count(names.out.begin(), names.out.end(), '\n'), 32);
  EXPECT_NE(names.out.find("17\tqbe_ClauseInList\tin lista: ___\n"), std::string::npos);
}

// The text of the first block fenced as ````kind` after `from` in `text`.
std::string FencedBlock(const std::string& text, const std::string& kind, std::size_t from = 0) {
  const std::string fence = "```" + kind + "\n";
  std::size_t start = text.find(fence, from);
  if (start == std::string::npos) return {};
  start += fence.size();
  return text.substr(start, text.find("```", start) - start);
}

TEST(Brixq, LoadsTheDocumentedExampleAsDocumented) {
  const std::string doc = ReadFile(BRIX_DOCS_DIR "/definition_format.md");
  const std::string example = FencedBlock(doc, "xml");
  const std::string statement = FencedBlock(doc, "text", doc.find(example));
  ASSERT_FALSE(example.empty());
  EXPECT_EQ(RunBrixq({"sql", "-"}, example).out, statement);
  Outcome check = RunBrixq({"check", "-"}, example);
  EXPECT_EQ(check.status, 0) << check.out;
}

}  // namespace
}  // namespace brix
