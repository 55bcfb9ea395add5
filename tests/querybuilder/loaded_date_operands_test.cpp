// A loaded definition of indexed Date fields whose operands are day-number texts, date texts
// and empty operands (a missing element is Empty), in every clause kind; one numeric field holds
// dates as day numbers.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"

namespace brix {
namespace {

// The conditions in tree order: ConditionID, TAB, description, LF.
std::string Descriptions(const xqb_Query& query) {
  std::string text;
  for (const auto& table : *query.Tables()) {
    for (const auto& field : *table->Fields()) {
      for (const auto& condition : *field->Conditions()) {
        text += std::to_string(condition->ConditionID()) + "\t" +
                query.DescribeCondition(*table, *field, *condition) + "\n";
      }
    }
  }
  return text;
}

TEST(LoadedDateOperands, SearchFilterAndDescriptionsOfEveryClauseKind) {
  const ScopedClock monday(43059 + 545.0 / 1440);  // Monday 20 November 2017, 09:05
  std::ifstream in(BRIX_TEST_DATA_DIR "/date_operands.xml", std::ios::binary);
  auto query = xqb_Query::Create();
  query->LoadXMLDef(std::string{std::istreambuf_iterator<char>(in), {}});
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
  const std::string from_param =
      "(Data_vigoare = #12-Nov-2017# OR Data_vigoare = #12-Nov-2017# OR "
      "Data_vigoare = #12-Nov-2017#)";
  const std::string searched_param =
      "((Data_vigoare contains (12-Nov-2017)) OR (Data_vigoare contains (12-Nov-2017)) OR "
      "(Data_vigoare contains (12-Nov-2017)))";
  // clang-format on
  EXPECT_EQ(query->ReturnDTConditions(), request);
  EXPECT_EQ(query->ReturnWHEREConditions(), filter);
  EXPECT_EQ(Descriptions(*query), descriptions);
  query->AddParamValues(
      "Vigoare",
      Variant(VariantArray{
          {Variant("43051"), Variant(""), Variant("11/12/2017"), Variant("43051.5")}, 0}));
  EXPECT_EQ(query->ReturnWHEREConditions(), filter + " AND " + from_param);
  EXPECT_EQ(query->ReturnDTConditions(), request + " AND " + searched_param);
}

}  // namespace
}  // namespace brix
