// brixq end to end: the built command on the sample definitions and on malformed input, checked
// on standard output, standard error and exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
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
    "(Guvernul))) AND ((Numar contains (1~~100))) AND ((Data_emiterii contains (01-Jan-2001~~31-Dec-2024))) "
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
  static const std::vector<std::string> kCommands = {"sql",     "where", "dt",    "describe",
                                                     "clauses", "save",  "run",   "check",
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

// Indexed Date fields whose operands are day-number texts, date texts and empty operands (a
// missing element is Empty), in every clause kind; one numeric field holds dates as day numbers.
TEST(Brixq, ReadsDateOperandsOfALoadedDefinition) {
  const std::string file = BRIX_TEST_DATA_DIR "/date_operands.xml";
  const std::string monday = "--date=2017-11-20T09:05:00";  // Today is day 43059
  // clang-format off
  // A day-number text is that day, a date text its date; empty operands write nothing.
  const std::string request =
      "((Data_emiterii contains (12-Nov-2017~~31-Dec-2017)) OR "
      "(Data_emiterii contains (12-Nov-2017~~31-Dec-2017)) OR "
      "(Data_emiterii contains (12-Nov-2017~~))) AND "
      "((Data_publicarii contains (~~)) OR (Data_publicarii contains (~~)) OR "
      "(Data_publicarii contains (~~)) OR (Data_publicarii contains (~~)) OR "
      "(Data_publicarii contains (09-Jul-1905~~)) OR (Data_publicarii contains ())) AND "
      "((Data_intrarii contains (29-Jan-1900~~)) OR (Data_intrarii contains (~~)) OR "
      "(Data_intrarii contains (31-Dec-1899~~)) OR (Data_intrarii contains (06-Jan-1900~~)) OR "
      "(Data_intrarii contains (09-Jan-1900))) AND "
      // The comparisons discard the field's text but no longer fail on its operands.
      "( OR (Data_abrogarii contains (12-Nov-2017))) AND "
      "((Data_semnarii contains (12-Nov-2017*)) OR (Data_semnarii contains (43051 w/33 43052)) OR "
      "(Data_semnarii contains (12-Nov-2017))) AND "
      "((Luna_emiterii contains (201711~~201712)) OR (Luna_emiterii contains (201711)))";
  const std::string filter =
      // The missing upper bound of the last range is day 0.
      "(Data_emiterii BETWEEN #43051# AND #43100# OR Data_emiterii BETWEEN #43051# AND #43100# OR "
      "Data_emiterii BETWEEN #43051# AND #0#) AND "
      "(Data_publicarii = #43059# OR Data_publicarii BETWEEN #43059# AND #43065# OR "
      "Data_publicarii BETWEEN #43040# AND #43069# OR "
      "Data_publicarii BETWEEN #42736# AND #43100# OR "
      "Data_publicarii BETWEEN #42736# AND #43100# OR Data_publicarii = #09:05#) AND "
      "(Data_intrarii BETWEEN #43029# AND #43059# OR Data_intrarii BETWEEN #43059# AND #43059# OR "
      "Data_intrarii BETWEEN #42694# AND #43059# OR Data_intrarii BETWEEN #43059# AND #43066# OR "
      "Data_intrarii = #43069#) AND "
      "(Data_abrogarii <> #12-Nov-2017# OR Data_abrogarii >= #12-Nov-2017# OR "
      "Data_abrogarii > #12-Nov-2017# OR Data_abrogarii <= ## OR Data_abrogarii < ## OR "
      "Data_abrogarii LIKE #%2017%# OR Data_abrogarii NOT LIKE #%43051%# OR "
      "Data_abrogarii LIKE #11/%# OR Data_abrogarii NOT LIKE #12-%# OR "
      "Data_abrogarii IS NULL  OR Data_abrogarii IS NULL OR Data_abrogarii IS NOT NULL  OR "
      "Data_abrogarii IN (43051, 43052) OR Data_abrogarii NOT IN (43051) OR "
      "Data_abrogarii >= #09:05# OR Data_abrogarii <= #09:05# OR "
      "Data_abrogarii = #12-Nov-2017#) AND "
      "(Luna_emiterii BETWEEN 43051 AND 12/31/2017 OR Luna_emiterii = 43051.75)";
  // Date fields describe their operands as text; the numeric field shows them as dates.
  const std::string descriptions =
      "401\tData emiterii este intre 43051 si 43100.75\n"
      "402\tData emiterii este intre 11/12/2017 si 31-Dec-2017\n"
      "403\tData emiterii este intre 43051 si \n"
      "411\tData publicarii este astazi\n"
      "412\tData publicarii este saptamana aceasta\n"
      "413\tData publicarii este luna aceasta\n"
      "414\tData publicarii este anul acesta\n"
      "415\tData publicarii este in anul 2017\n"
      "416\tData publicarii este ora curenta\n"
      "421\tData intrarii este in ultimele 30 zile\n"
      "422\tData intrarii este in ultimele  luni\n"
      "423\tData intrarii este in ultimii 1 ani\n"
      "424\tData intrarii in urmatoarele 7 zile\n"
      "425\tData intrarii peste 10 zile\n"
      "432\tData abrogarii nu este egal cu 11/12/2017\n"
      "433\tData abrogarii este mai mare sau egal cu 43051\n"
      "434\tData abrogarii este mai mare ca 12-Nov-2017\n"
      "435\tData abrogarii este mai mic sau egal cu \n"
      "436\tData abrogarii este mai mic ca \n"
      "437\tData abrogarii contine 2017\n"
      "438\tData abrogarii nu contine 43051\n"
      "439\tData abrogarii incepe cu 11/\n"
      "440\tData abrogarii nu incepe cu 12-\n"
      "441\tData abrogarii lipseste\n"
      "442\tData abrogarii este <NULL>\n"
      "443\tData abrogarii nu lipseste\n"
      "444\tData abrogarii este in lista (43051, 43052)\n"
      "445\tData abrogarii nu este in lista (43051)\n"
      "446\tData abrogarii este mai mare decat ora curenta\n"
      "447\tData abrogarii este mai mic decat ora curenta\n"
      "431\tData abrogarii sa fie 43051.5\n"
      "451\tData semnarii contine cuvintele 43051\n"
      "452\tData semnarii contine apropiat cuvintele 43051 43052\n"
      "453\tData semnarii contine expresia 11/12/2017\n"
      "461\tLuna emiterii este intre 12-Nov-2017 si 31-Dec-2017\n"
      "462\tLuna emiterii sa fie 12-Nov-2017\n"
      "471\tData intrarii in vigoare sa fie \n";
  // Parameter values arrive as text, day numbers and dates alike; the empty one is skipped.
  const std::string param = "--param=Vigoare=43051,,11/12/2017,43051.5";
  const std::string from_param =
      "(Data_vigoare = #12-Nov-2017# OR Data_vigoare = #12-Nov-2017# OR "
      "Data_vigoare = #12-Nov-2017#)";
  const std::string searched_param =
      "((Data_vigoare contains (12-Nov-2017)) OR (Data_vigoare contains (12-Nov-2017)) OR "
      "(Data_vigoare contains (12-Nov-2017)))";
  ExpectRuns({
      {{"dt", monday, file},           0, request + "\n"},
      {{"where", monday, file},        0, filter + "\n", "", "", true},
      {{"describe", monday, file},     0, descriptions},
      {{"where", monday, param, file}, 0, filter + " AND " + from_param + "\n", "", "", true},
      {{"dt", monday, param, file},    0, request + " AND " + searched_param + "\n"},
  });
  // clang-format on
}

TEST(Brixq, EncodesAndDecodesBase64BetweenTheStandardStreams) {
  const std::string span_range = "--span needs a whole number from -2147483648 to 2147483647, not ";
  // clang-format off
  ExpectRuns({
      {{"b64", "encode"},                   0, "TWFu", "", "Man"},
      {{"b64", "encode"},                   0, "",     "", ""},
      {{"b64", "encode"},                   0, "AP8=", "", std::string("\0\xFF", 2)},
      {{"b64", "encode", "--span", "4"},    0, "Zm9v\r\nYmFy\r\n", "", "foobar"},
      {{"b64", "encode", "--span=5"},       0, "Zm9vY\r\nmFyIQ\r\n==\r\n", "", "foobar!"},
      {{"b64", "decode"},                   0, "foobar", "", "Zm9v\r\nYmFy\r\n"},
      {{"b64", "decode"},                   0, std::string("\0\xFF\0", 3), "", "AP8A"},
      // Decoding rejects nothing: "=" inside the text leaves the counted bytes at the end 0.
      {{"b64", "decode"},                   0, std::string("MMan\0\0", 6), "", "TQ==TWFu"},
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
      {{"run", "--db", "/no/such.db", kOrders}, 1, "",
       "cannot open the database /no/such.db: unable to open database file (error 20014)"},
      {{"run", "--refuse-host-sql", kOrders}, 1, "",
       "The calculated field Total is SQL written by the host (\"\"Orders\".\"Quantity\" * \"Orders\".\"Unit Price\"\"), "
       "and the options refuse host SQL. (error 0x80042779)"},
      {{"run", "--postgres", "host=/no/such/folder", kOrders}, 1, "",
       "PostgreSQL: cannot connect with \"host=/no/such/folder\": connection to server on socket "
       "\"/no/such/folder/.s.PGSQL.5432\" failed: No such file or directory Is the server running "
       "locally and accepting connections on that socket? (error 21000)"},
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

// A definition with one of each problem the check reports; its statement still renders.
const std::string kFaulty =
    "<PropertyBag><xqb_Query name=\"Q\"><TablesCount>1</TablesCount>\n"
    "<xqb_Table name=\"Table1\"><DBName>Orders</DBName><FieldsCount>2</FieldsCount>\n"
    "<xqb_Field name=\"Field1\"><DBName>Quantity</DBName><DBType>5</DBType><ShowAsType>5</ShowAsType>"
    "<Alias/><LinksWithField>Customer.ID</LinksWithField><ConditionsCount>3</ConditionsCount>\n"
    "<xqb_Condition name=\"Condition1\"><ConditionID>1</ConditionID><Clause>33</Clause></xqb_Condition>\n"
    "<xqb_Condition name=\"Condition2\"><ConditionID>2</ConditionID><Clause>4</Clause><Value>two</Value></xqb_Condition>\n"
    "<xqb_Condition name=\"Condition3\"><ConditionID>3</ConditionID><Clause>17</Clause><Value>(1, 2</Value></xqb_Condition>\n"
    "</xqb_Field>\n"
    "<xqb_Field name=\"Field2\"><DBName>Day</DBName><Alias>Day</Alias><DBType>3</DBType><ShowAsType>3</ShowAsType>"
    "<ConditionsCount>1</ConditionsCount>\n"
    "<xqb_Condition name=\"Condition1\"><ConditionID>1</ConditionID><Clause>3</Clause><Value>banana</Value></xqb_Condition>\n"
    "</xqb_Field></xqb_Table></xqb_Query></PropertyBag>";

TEST(Brixq, ChecksADefinitionAndWarnsBeforeRunningIt) {
  const std::string problems =
      "xqb_Query/Table1/Field1: field Quantity has an empty Alias: the statement writes \"AS\" with no name after it\n"
      "xqb_Query/Table1/Field1: LinksWithField \"Customer.ID\" names no field of the query\n"
      "xqb_Query/Table1/Field1/Condition1: Clause 33 is not a clause (1 to 32)\n"
      "xqb_Query/Table1/Field1/Condition2: Value \"two\" does not read as Numeric (Type mismatch)\n"
      "xqb_Query/Table1/Field1/Condition3: The IN list \"(1, 2\" does not read as (item, item, ...) of "
      "numbers and 'quoted texts': expected \",\" or \")\" at character 6.\n"
      "xqb_Query/Table1/Field2/Condition1: ConditionID 1 is also the ID of xqb_Query/Table1/Field1/Condition1: "
      "look-ups by ID find that one\n"
      "xqb_Query/Table1/Field2/Condition1: Value \"banana\" does not read as Date (Type mismatch)\n";
  const std::string where = "(Quantity OR Quantity >= two OR Quantity IN (1, 2) AND (Day = #banana#)\n";
  std::string warnings, errors;
  for (std::size_t at = 0, end; (end = problems.find('\n', at)) != std::string::npos; at = end + 1) {
    warnings += "brixq: warning: " + problems.substr(at, end + 1 - at);
    errors += "brixq: " + problems.substr(at, end + 1 - at);
  }
  for (const auto& [args, status, out, err] : std::vector<std::tuple<std::vector<std::string>, int, std::string, std::string>>{
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
  for (const std::string command :
       {"sql", "where", "dt", "describe", "clauses", "save", "run", "check", "params", "b64", "envelope"}) {
    SCOPED_TRACE(command);
    Outcome help = RunBrixq({command, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.starts_with("Usage: brixq " + command)) << help.out;
    EXPECT_NE(help.out.find("Examples:"), std::string::npos);
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
