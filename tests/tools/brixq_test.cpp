// brixq end to end: the built command on the sample definitions and on malformed input, checked
// on standard output, standard error and exit status.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "tests/tools/brixq_runner.h"

namespace brix {
namespace {

using test_support::CommandResult;
using test_support::ReadFileBytes;
using test_support::RunBrixq;

std::string Example(const std::string& name) { return std::string(BRIX_EXAMPLES_DIR) + "/" + name; }
const std::string kOrders = Example("orders.xml");
const std::string kLegal = Example("legal_documents.xml");
const std::string kParams = Example("parameter_query.xml");

const std::string kOrdersSelect =
    "SELECT [Orders].[Order No] AS Comanda, date([Orders].[Order Day] + 2415018.5) AS [Order Date]"
    ", [Customers].Name AS Client, [Customers].City AS Oras, [Orders].Quantity AS Cantitate, "
    "[Orders].[Unit Price] AS Pret, [Orders].Quantity * [Orders].[Unit Price] AS Total, "
    "[Orders].Status AS Stare FROM [Customers], [Orders] WHERE  (Customers.ID = Orders.CustomerID)"
    " AND ([Customers].City IN ('Cluj', 'Iasi')) AND ([Orders].[Order Day] BETWEEN 45352 AND "
    "45382) AND ([Orders].Quantity >= 2) AND ([Orders].Status = 'livrata' OR [Orders].Status LIKE "
    "'in %') ORDER BY Orders.[Order Day] DESC, Orders.[Order No] ASC";
const std::string kLegalRequest =
    "((Titlu contains (codul muncii))) AND ((Emitent contains (Parlamentul)) OR (Emitent contains "
    "(Guvernul))) AND ((Numar contains (1~~100))) AND ((Data_emiterii contains (200101~~202412))) "
    "AND ((contract* AND munca*) AND (concediu w/33 odihna))";
const std::string kLegalFilter =
    "(Emitent = 'Parlamentul' OR Emitent = 'Guvernul') AND (Numar BETWEEN 1 AND 100) AND "
    "(Data_emiterii BETWEEN 36892 AND 45657) AND (Data_publicarii BETWEEN ";

struct Success {
  std::vector<std::string> args;
  std::string out;
};

TEST(Brixq, PrintsWhatTheLibraryMakesOfTheSamples) {
  const std::vector<Success> cases = {
      {{"sql", kOrders}, kOrdersSelect + "\n"},
      {{"sql", "--top", "3", kOrders}, kOrdersSelect + " LIMIT 3\n"},
      {{"sql", kOrders, "--top=2147483647"}, kOrdersSelect + " LIMIT 2147483647\n"},
      {{"where", kOrders},
       "(City IN ('Cluj', 'Iasi')) AND ([Order Day] BETWEEN 45352 AND 45382) AND (Quantity >= 2) "
       "AND (Status = 'livrata' OR Status LIKE 'in %')\n"},
      {{"where", "--qualified", "--joins", kOrders},
       " (Customers.ID = Orders.CustomerID) AND ([Customers].City IN ('Cluj', 'Iasi')) AND "
       "([Orders].[Order Day] BETWEEN 45352 AND 45382) AND ([Orders].Quantity >= 2) AND "
       "([Orders].Status = 'livrata' OR [Orders].Status LIKE 'in %')\n"},
      // Table keys ignore letter case, as the collection's lookup does.
      {{"where", "--table", "customers", "--qualified", kOrders},
       "([Customers].City IN ('Cluj', 'Iasi'))\n"},
      {{"dt", kLegal}, kLegalRequest + "\n"},
      {{"dt", "--near", "5", kLegal},
       std::string(kLegalRequest).replace(kLegalRequest.find("w/33"), 4, "w/5") + "\n"},
      {{"dt", "--near=0", kLegal}, kLegalRequest + "\n"},
      {{"dt", kOrders}, "\n"},
      // --date fixes Today: the last two years end on the given day.
      {{"where", "--date", "2024-03-15", kLegal}, kLegalFilter + "#44635# AND #45366#)\n"},
      {{"where", kLegal, "--date=2020-02-29T23:59:59"}, kLegalFilter + "#43159# AND #43890#)\n"},
      {{"describe", kOrders},
       "101\tOras (Clienti) este in lista '('Cluj', 'Iasi')'\n"
       "102\tData comenzii (Comenzi) este intre 01-Mar-2024 si 31-Mar-2024\n"
       "103\tCantitate (Comenzi) este mai mare sau egal cu 2\n"
       "104\tStare (Comenzi) sa fie 'livrata'\n"
       "105\tStare (Comenzi) incepe cu 'in '\n"},
      {{"describe", kLegal},
       "201\tTitlu contine expresia 'codul muncii'\n"
       "202\tEmitent sa fie 'Parlamentul'\n"
       "203\tEmitent sa fie 'Guvernul'\n"
       "204\tNumar este intre 1 si 100\n"
       "205\tData emiterii este intre 01-Jan-2001 si 31-Dec-2024\n"
       "206\tData publicarii este in ultimii 2 ani\n"
       "207\tTextul documentului contine cuvintele contract munca\n"
       "208\tTextul documentului contine apropiat cuvintele concediu odihna\n"},
      {{"clauses", kParams},
       "Customers\tID\t1 3 4 5 8 9 11 17 19 6 20\n"
       "Customers\tName\t2 3 10 11 12 13 17 19 4 5 8 9 6 20\n"
       "Customers\tCity\t2 3 10 11 12 13 17 19 4 5 8 9 6 20\n"},
      // The parameter condition itself writes nothing; each value becomes a condition.
      {{"where", kParams}, "\n"},
      {{"where", "--param", "Oras=Cluj,,Iasi", kParams}, "(City = 'Cluj' OR City = 'Iasi')\n"},
      {{"where", "--param", "Oras=Cluj", "--param", "Oras=Iasi", "--param", "Other=x", kParams},
       "(City = 'Cluj' OR City = 'Iasi')\n"},
      {{"run", kOrders},
       "Comanda  Order Date  Client          Oras  Cantitate  Pret  Total  Stare\n"
       "-------  ----------  --------------  ----  ---------  ----  -----  ------------\n"
       "   1007  2024-03-28  Florin Stan     Iasi          2  22.0   44.0  in asteptare\n"
       "   1008  2024-03-28  Dan O'Neill     Cluj          6  8.75   52.5  livrata\n"
       "   1003  2024-03-12  Bogdan Ionescu  Iasi          5   7.2   36.0  in curs\n"
       "   1002  2024-03-05  Ana Popescu     Cluj          2  40.0   80.0  livrata\n"
       "(4 rows)\n"},
      {{"run", "--top", "1", "--param", "Oras=Iasi", kParams},
       "ID  Client          Oras\n"
       "--  --------------  ----\n"
       " 2  Bogdan Ionescu  Iasi\n"
       "(1 row)\n"},
      {{"--version"}, "brixq " + xqb_Query::Create()->GetVersion() + "\n"},
  };
  for (const Success& c : cases) {
    CommandResult result = RunBrixq(c.args);
    EXPECT_EQ(result.out, c.out) << c.args[0] << " " << c.args[1];
    EXPECT_EQ(result.err, "") << c.args[0] << " " << c.args[1];
    EXPECT_EQ(result.status, 0) << c.args[0] << " " << c.args[1];
  }
}

TEST(Brixq, SaveGivesTheStoredDocumentByteForByte) {
  // The samples are saved documents, so saving them again is a fixed point; the document's own
  // CR LF is its only line end.
  for (const std::string& sample : {kOrders, kLegal, kParams}) {
    CommandResult result = RunBrixq({"save", sample});
    EXPECT_EQ(result.out, ReadFileBytes(sample));
    EXPECT_TRUE(result.out.ends_with("</PropertyBag>\r\n")) << sample;
    EXPECT_EQ(result.status, 0);
  }
}

TEST(Brixq, ReadsTheDefinitionFromStandardInput) {
  CommandResult result = RunBrixq({"sql", "-"}, ReadFileBytes(kOrders));
  EXPECT_EQ(result.out, kOrdersSelect + "\n");
  EXPECT_EQ(result.status, 0);
}

TEST(Brixq, DateFixesTheTimeOfDayToo) {
  auto query = xqb_Query::Create();
  auto field = query->Tables()->Add("Visits")->Fields()->Add("Start");
  field->Conditions()->Add(qbe_ClauseTimeNow);
  CommandResult result =
      RunBrixq({"where", "--date", "2024-03-15T09:05:59", "-"}, query->SaveXMLDef());
  EXPECT_EQ(result.out, "(Start = '09:05')\n");
  EXPECT_EQ(result.status, 0);
}

struct Failure {
  std::vector<std::string> args;
  std::string input;  // standard input
  int status;
  std::string err;  // for status 2, the message printed before the usage text
};

TEST(Brixq, ReportsErrorsWithTheirNumberAndStatus) {
  const std::vector<Failure> cases = {
      {{"sql", "/no/such/file.xml"},
       "",
       1,
       "brixq: File not found: /no/such/file.xml (error 53)\n"},
      {{"sql", BRIX_EXAMPLES_DIR},
       "",
       1,
       "brixq: Path/File access error: " BRIX_EXAMPLES_DIR " (is a folder) (error 75)\n"},
      {{"where", "--table", "Invoices", kOrders},
       "",
       1,
       "brixq: --table: the definition has no table \"Invoices\" (error 5)\n"},
      {{"run", "--db", "/no/such/sample.db", kOrders},
       "",
       1,
       "brixq: cannot open the database /no/such/sample.db: unable to open database file "
       "(error 20014)\n"},
      // Access-style date literals do not compile on SQLite.
      {{"run", kLegal},
       "",
       1,
       "brixq: SQLite cannot run the statement: unrecognized token: \"#\" (error 20001)\n"},
      {{"run", "-"},
       "<PropertyBag/>",
       1,
       "brixq: there is no statement to run (no tables) (error 20001)\n"},
      {{}, "", 2, "brixq: missing COMMAND"},
      {{"select", kOrders}, "", 2, "brixq: unknown command \"select\""},
      {{"sql", "--frobnicate", kOrders}, "", 2, "brixq: unknown option \"--frobnicate\""},
      {{"sql", "-t", "3", kOrders}, "", 2, "brixq: unknown option \"-t\""},
      {{"where", "--top", "3", kOrders}, "", 2, "brixq: the command where takes no option --top"},
      {{"sql", "--joins=yes", kOrders}, "", 2, "brixq: the command sql takes no option --joins"},
      {{"where", "--joins=yes", kOrders}, "", 2, "brixq: --joins takes no value"},
      {{"sql"}, "", 2, "brixq: missing FILE"},
      {{"sql", kOrders, kLegal}, "", 2, "brixq: more than one FILE: \"" + kLegal + "\""},
      {{"sql", kOrders, "--top"}, "", 2, "brixq: --top needs a value"},
      {{"sql", "--param", "=x", kOrders}, "", 2, "brixq: --param needs NAME=V1,V2,..., not \"=x\""},
  };
  for (const Failure& c : cases) {
    CommandResult result = RunBrixq(c.args, c.input);
    std::string label = c.args.empty() ? "(no arguments)" : c.args[0];
    EXPECT_EQ(result.status, c.status) << label;
    EXPECT_EQ(result.out, "") << label;
    if (c.status == 2) {
      EXPECT_EQ(result.err, c.err + "\n\n" + RunBrixq({"--help"}).out) << label;
    } else {
      EXPECT_EQ(result.err, c.err) << label;
    }
  }
}

TEST(Brixq, RejectsNumbersAndDatesThatDoNotParseWhole) {
  const std::vector<std::vector<std::string>> cases = {
      {"--top", "5x", "--top needs a whole number from 0 to 2147483647, not \"5x\""},
      {"--top", "-1", "--top needs a whole number from 0 to 2147483647, not \"-1\""},
      {"--top", "2147483648",
       "--top needs a whole number from 0 to 2147483647, not \"2147483648\""},
      {"--top", "", "--top needs a whole number from 0 to 2147483647, not \"\""},
      {"--near", "32768", "--near needs a whole number from -32768 to 32767, not \"32768\""},
      {"--date", "2023-02-29",
       "--date needs YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, not \"2023-02-29\""},
      {"--date", "2024-3-15", "--date needs YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, not \"2024-3-15\""},
      {"--date", "2024-03-15T24:00:00",
       "--date needs YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, not \"2024-03-15T24:00:00\""},
      {"--date", "0099-12-31",
       "--date needs YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, not \"0099-12-31\""},
  };
  for (const auto& c : cases) {
    std::string command = c[0] == "--near" ? "dt" : "sql";
    CommandResult result = RunBrixq({command, c[0], c[1], kLegal});
    EXPECT_EQ(result.status, 2) << c[1];
    EXPECT_TRUE(result.err.starts_with("brixq: " + c[2] + "\n\nUsage: brixq")) << result.err;
    EXPECT_EQ(result.out, "");
  }
}

TEST(Brixq, WrapsLoadFailuresOfTheLibrary) {
  CommandResult result = RunBrixq({"sql", "-"}, ReadFileBytes(kOrders).substr(0, 500));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  // The parser's own reason follows the library's text, on the same line.
  EXPECT_TRUE(result.err.starts_with("brixq: Couldn't load xml query definition! ")) << result.err;
  EXPECT_TRUE(result.err.ends_with(" (error -2147211403)\n")) << result.err;
  EXPECT_EQ(result.err.find('\r'), std::string::npos);
}

}  // namespace
}  // namespace brix
