// The query definition document: golden documents, random save/load fixed points, and the
// loading rules for missing, extra and malformed elements.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <string>

#include "querybuilder/xqb_query.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::AddCondition;
using test_support::RaisesError;

constexpr const char* kLoadSource = "[OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]";
constexpr const char* kSaveSource = "[OrlaXML_qb].[xqb_Persistence].[SaveXMLDef]";

std::string ReadData(const std::string& name) {
  std::ifstream in(std::string(BRIX_TEST_DATA_DIR) + "/" + name, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::shared_ptr<xqb_Query> Load(std::string_view text) {
  auto query = xqb_Query::Create();
  query->LoadXMLDef(text);
  return query;
}

// A document with one query whose body is `body`.
std::string QueryDocument(const std::string& body) {
  return "<PropertyBag><xqb_Query name=\"Q\">" + body + "</xqb_Query></PropertyBag>";
}

TEST(QueryDefinitionDocument, GoldenDocumentLoadsEveryPropertyAndSavesBackIdentically) {
  std::string golden = ReadData("query_definition.xml");
  auto query = Load(golden);

  EXPECT_EQ(query->QueryDescription(), "Facturi & clienți");
  EXPECT_EQ(query->QueryType(), qbe_LinksSimpleJoin);
  EXPECT_EQ(query->StatementType(), qbe_StatementSQLServer);
  EXPECT_TRUE(query->DistinctRows() && query->GroupsCollapsed() && query->ShadeGroupHeadings());
  EXPECT_EQ(query->GridLineStyle(), qbe_GridLineStyleSmallDots);
  EXPECT_EQ(query->GridLines(), qbe_GridLinesBoth);
  EXPECT_TRUE(query->bUseNaturalLanguage() && query->bUseStemming() && query->bSYN());
  EXPECT_FALSE(query->bUsePhonicSearching() || query->bUseWordNetSynonyms());

  ASSERT_EQ(query->Tables()->Count(), 2);
  auto items = query->Tables()->Item(Variant(1));
  EXPECT_EQ(items->DBName(), "[Order Items]");
  EXPECT_EQ(items->Description(), "Pozitii");
  auto price = items->Fields()->Item(Variant("[unit price]"));
  EXPECT_FALSE(price->UseInStatement());
  EXPECT_EQ(price->DBType(), qbe_DataNumeric);
  EXPECT_EQ(price->ShowAsType(), qbe_DataDecimal);
  EXPECT_EQ(price->CalculatedFormula(), "Qty*Price>0");
  EXPECT_EQ(price->OrderByLevel(), 2);
  EXPECT_EQ(price->OrderByOrder(), qbe_SortDescending);
  EXPECT_EQ(price->GroupByLevel(), 3);
  EXPECT_EQ(price->LinksWithField(), "Orders.ID");
  EXPECT_EQ(price->ControlType(), qbe_ControlCombo);
  EXPECT_EQ(price->Latime(), 2400);
  EXPECT_EQ(price->AggregateFunction(), qbe_AggregateStdDev);
  EXPECT_EQ(price->GroupLevel(), 4);
  EXPECT_EQ(price->GroupOrder(), qbe_SortAscending);
  EXPECT_EQ(price->SortLevel(), 5);
  EXPECT_EQ(price->AppearanceOrder(), 6);
  EXPECT_EQ(price->UIOrder(), 7);
  EXPECT_EQ(price->AvailableClauses(), "|3|1|");
  EXPECT_TRUE(price->IsDTIndex() && price->IsReturned() && !price->IsVisible());

  auto range = price->Conditions()->Item(Variant("4711"));
  EXPECT_EQ(range->ParamName(), "pPret");
  EXPECT_EQ(range->Clause(), qbe_ClauseBetween);
  EXPECT_EQ(range->WhereClauseLogic(), qbe_LogicOr);
  // Types are not restored: numbers come back as the text they were saved as.
  EXPECT_EQ(range->Value().AsString(), "12.5");
  EXPECT_EQ(range->SecondaryValue().AsString(), "1E+15");
  EXPECT_FALSE(range->IsEditable());
  auto is_null = price->Conditions()->Item(Variant(2));
  EXPECT_TRUE(is_null->Value().IsNull());
  EXPECT_TRUE(is_null->SecondaryValue().IsEmpty());

  auto note = query->Tables()->Item(Variant(2))->Fields()->Item(Variant(1));
  auto text = note->Conditions()->Item(Variant(1));
  EXPECT_EQ(text->Value().AsString(), "a<b & \"c\"");
  EXPECT_EQ(text->SecondaryValue().AsString(), "O'Brien\nline");

  EXPECT_EQ(query->SaveXMLDef(), golden);
}

// A random tree: every property of every object set, condition values of every kind that a
// document can hold. Exotic operands (byte arrays, Nothing) make the duplicate test raise, so
// they only appear in a field's only condition, as a definition must be loadable.
class TreeGenerator {
 public:
  explicit TreeGenerator(unsigned seed) : random_(seed) {}

  std::shared_ptr<xqb_Query> Query() {
    auto query = xqb_Query::Create();
    query->SetQueryName(Word() + "é");  // a quote would break the saved name's selection
    query->SetQueryDescription(Text());
    query->SetQueryType(static_cast<qbe_LinksType>(Number(1, 6)));
    query->SetStatementType(static_cast<qbe_StatementType>(Number(1, 3)));
    query->SetDistinctRows(Flag());
    query->SetGroupsCollapsed(Flag());
    query->SetGridLineStyle(static_cast<qbe_GridLineStyle>(Number(0, 2)));
    query->SetGridLines(static_cast<qbe_GridLines>(Number(-1, 2)));
    query->SetShadeGroupHeadings(Flag());
    query->SetTag(Text());
    query->SetAccessRights(Text());
    query->SetbUseNaturalLanguage(Flag());
    query->SetbUsePhonicSearching(Flag());
    query->SetbUseStemming(Flag());
    query->SetbUseWordNetSynonyms(Flag());
    query->SetbSYN(Flag());
    for (int t = Number(0, 3); t > 0; --t) {
      auto table = query->Tables()->Add("T" + std::to_string(t) + " " + Word(), Text());
      table->SetTag(Text());
      for (int f = Number(0, 4); f > 0; --f) Field(*table, f);
    }
    return query;
  }

 private:
  void Field(xqb_Table& table, int number) {
    auto field = table.Fields()->Add("F" + std::to_string(number) + Word());
    field->SetUseInStatement(Flag());
    field->SetDBType(static_cast<qbe_DataType>(Number(1, 12)));
    field->SetShowAsType(static_cast<qbe_DataType>(Number(2, 6)));
    field->SetAlias(Text());
    field->SetCaption(Text());
    field->SetCalculatedFormula(Text());
    field->SetOrderByLevel(static_cast<std::int16_t>(Number(-3, 300)));
    field->SetOrderByOrder(static_cast<qbe_SortType>(Number(-1, 1)));
    field->SetGroupByLevel(static_cast<std::int16_t>(Number(0, 9)));
    field->SetLinksWithField(Text());
    field->SetHasScriptAsSource(Flag());
    field->SetScript(Text());
    field->SetScriptLanguage(Text());
    field->SetRunAt(Text());
    field->SetDefaultScriptProc(Text());
    field->SetExecScriptAfterRetrieve(Flag());
    field->SetIsEditable(Flag());
    field->SetIsRequired(Flag());
    field->SetControlType(static_cast<qbe_ControlType>(Number(0, 3)));
    field->SetIsAvailable(Flag());
    field->SetLatime(Number(-100000, 100000));
    field->SetIsVisible(Flag());
    field->SetIsReturned(Flag());
    field->SetAggregateFunction(static_cast<qbe_AggregateFunctionType>(Number(0, 7)));
    field->SetIsGroupField(Flag());
    field->SetGroupLevel(static_cast<std::int16_t>(Number(-32768, 32767)));
    field->SetGroupOrder(static_cast<qbe_SortType>(Number(-1, 1)));
    field->SetIsSortField(Flag());
    field->SetSortLevel(static_cast<std::int16_t>(Number(0, 5)));
    field->SetSortOrder(static_cast<qbe_SortType>(Number(-1, 1)));
    field->SetAppearanceOrder(static_cast<std::int16_t>(Number(0, 5)));
    field->SetUIOrder(static_cast<std::int16_t>(Number(0, 5)));
    field->SetValueListSource(Text());
    field->SetIsDTIndex(Flag());
    field->SetTag(Text());
    int conditions = Number(0, 4);
    for (int c = 0; c < conditions; ++c) {
      auto condition = test_support::MakeCondition(
          100 * c + Number(0, 99), static_cast<qbe_ClauseOperator>(Number(0, 33)),
          Value(conditions == 1, c), Value(conditions == 1, c));
      if (field->Conditions()->ConditionExists(condition->Clause(), condition->Value())) continue;
      field->Conditions()->AddObjectCondition(condition);
      condition->SetParamName(Text());
      condition->SetWhereClauseLogic(static_cast<qbe_WhereClauseLogic>(Number(1, 3)));
      condition->SetIsEditable(Flag());
      condition->SetTag(Text());
    }
  }

  // Values differ between a field's conditions (by `salt`), so reloaded texts stay distinct.
  Variant Value(bool exotic_allowed, int salt) {
    switch (Number(0, exotic_allowed ? 11 : 9)) {
      case 0:
        return Variant();
      case 1:
        return Variant::Null();
      case 2:
        return Variant(static_cast<std::int16_t>(Number(-300, 300) * 10 + salt));
      case 3:
        return Variant(Number(-100000, 100000) * 10 + salt);
      case 4:
        return Variant(Number(1, 999) / 8.0 + salt * 1000);
      case 5:
        return Variant(Flag());
      case 6:
        return Variant(Date{static_cast<double>(Number(1, 60000) + salt)});
      case 7:
        return Variant(Currency{Number(-99999, 99999) * 10LL + salt});
      case 8:
      case 9:
        return Variant(Text() + std::to_string(salt));
      case 10:
        return Variant(ByteArray{1, 2, static_cast<std::uint8_t>(Number(0, 255))});
      default:
        return Variant::Nothing();
    }
  }

  std::string Text() {
    static const char* const kPieces[] = {"",    "a",  "Ş",       "<b>", "&amp", "x > y",
                                          "\n",  "\r", "]]>",     " ",   "12",   "3/1/2010",
                                          "ț ă", "\"", "'quote'", "\t"};
    std::string text;
    for (int n = Number(0, 3); n > 0; --n) text += kPieces[Number(0, 15)];
    return text;
  }
  std::string Word() { return std::string(1, static_cast<char>('a' + Number(0, 25))); }
  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  bool Flag() { return Number(0, 1) == 1; }

  std::mt19937 random_;
};

TEST(QueryDefinitionDocument, SaveLoadSaveIsAFixedPointForRandomTrees) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::string saved = TreeGenerator(seed).Query()->SaveXMLDef();
    EXPECT_EQ(Load(saved)->SaveXMLDef(), saved);
  }
}

TEST(QueryDefinitionDocument, EmptyClauseListComesBackAsTheTypeDefaults) {
  auto query = xqb_Query::Create();
  auto field = query->Tables()->Add("T")->Fields()->Add("F");
  field->SetShowAsType(qbe_DataBoolean);
  field->UnsetClauseAvailable(qbe_ClauseEqualTo);
  ASSERT_EQ(field->AvailableClauses(), "");

  auto loaded = Load(query->SaveXMLDef());
  auto loaded_field = loaded->Tables()->Item(Variant(1))->Fields()->Item(Variant(1));
  EXPECT_EQ(loaded_field->AvailableClauses(), "|3|");
}

const char* const kField = "<xqb_Field name=\"Field1\"><DBName>F</DBName></xqb_Field>";

struct LoadCase {
  const char* name;
  std::string body;
  std::function<void(xqb_Query&)> check;
};

class LoadRules : public ::testing::TestWithParam<LoadCase> {};

TEST_P(LoadRules, Holds) {
  auto query = Load(QueryDocument(GetParam().body));
  GetParam().check(*query);
}

INSTANTIATE_TEST_SUITE_P(
    QueryDefinitionDocument, LoadRules,
    ::testing::Values(
        LoadCase{"MissingElementsKeepInitialValues", "<QueryName>Old</QueryName>",
                 [](xqb_Query& q) {
                   EXPECT_EQ(q.QueryName(), "Old");
                   EXPECT_EQ(q.StatementType(), qbe_StatementAccess);
                   EXPECT_EQ(q.Tables()->Count(), 0);
                 }},
        LoadCase{"MoreTablesCountedThanSavedAreAddedAtDefaults",
                 "<TablesCount>2</TablesCount><xqb_Table name=\"Table1\"><DBName>A</DBName>"
                 "</xqb_Table>",
                 [](xqb_Query& q) {
                   ASSERT_EQ(q.Tables()->Count(), 2);
                   EXPECT_EQ(q.Tables()->Item(Variant(2))->DBName(), "");
                   EXPECT_EQ(q.Tables()->Item(Variant(2))->Fields()->Count(), 0);
                 }},
        LoadCase{"ChildrenComeBackInTheOrderOfTheirNumbers",
                 "<TablesCount>2</TablesCount>"
                 "<xqb_Table name=\"Table2\"><DBName>Second</DBName></xqb_Table>"
                 "<xqb_Table name=\"Table1\"><DBName>First</DBName></xqb_Table>",
                 [](xqb_Query& q) {
                   EXPECT_EQ(q.Tables()->Item(Variant(1))->DBName(), "First");
                   EXPECT_EQ(q.Tables()->Item(Variant(2))->DBName(), "Second");
                 }},
        LoadCase{"AFieldWithoutAClauseListGetsItsTypeDefaults",
                 std::string("<TablesCount>1</TablesCount><xqb_Table name=\"Table1\"><DBName>T"
                             "</DBName><FieldsCount>1</FieldsCount>") +
                     "<xqb_Field name=\"Field1\"><DBName>F</DBName><ShowAsType>5</ShowAsType>"
                     "</xqb_Field></xqb_Table>",
                 [](xqb_Query& q) {
                   auto field = q.Tables()->Item(Variant(1))->Fields()->Item(Variant(1));
                   EXPECT_EQ(field->AvailableClauses(), "|1|3|4|5|8|9|11|17|19|6|20|");
                 }},
        LoadCase{"NamesAreNormalisedAgainOnReading",
                 std::string("<TablesCount>1</TablesCount><xqb_Table name=\"Table1\"><DBName>"
                             "dbo. Order</DBName><FieldsCount>1</FieldsCount>") +
                     kField + "</xqb_Table>",
                 [](xqb_Query& q) {
                   EXPECT_EQ(q.Tables()->Item(Variant("dbo.[ Order]"))->Fields()->Count(), 1);
                 }}),
    [](const auto& info) { return std::string(info.param.name); });

struct FailureCase {
  const char* name;
  std::string document;
  std::string reason;  // the trapped description after "Couldn't load ...!\r\n"
};

class LoadFailures : public ::testing::TestWithParam<FailureCase> {};

TEST_P(LoadFailures, AreWrappedWithTheTrappedDescription) {
  auto query = xqb_Query::Create();
  EXPECT_TRUE(RaisesError([&] { query->LoadXMLDef(GetParam().document); }, kErrLoadXMLDef,
                          kLoadSource,
                          "Couldn't load xml query definition!\r\n" + GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    QueryDefinitionDocument, LoadFailures,
    ::testing::Values(
        FailureCase{"CountThatIsNotANumber", QueryDocument("<TablesCount>many</TablesCount>"),
                    "Type mismatch"},
        FailureCase{"CountOutOfRange", QueryDocument("<TablesCount>3000000000</TablesCount>"),
                    "Overflow"},
        FailureCase{"BooleanThatIsNotOne", QueryDocument("<DistinctRows>maybe</DistinctRows>"),
                    "Type mismatch"},
        FailureCase{"IntegerOutOfRange",
                    QueryDocument("<TablesCount>1</TablesCount><xqb_Table name=\"Table1\">"
                                  "<FieldsCount>1</FieldsCount><xqb_Field name=\"Field1\">"
                                  "<OrderByLevel>40000</OrderByLevel></xqb_Field></xqb_Table>"),
                    "Overflow"},
        FailureCase{"NullWhereTextIsNeeded", QueryDocument("<QueryName vartype=\"null\"/>"),
                    "Invalid use of Null"},
        FailureCase{"TwoFieldsOfOneName",
                    QueryDocument(std::string("<TablesCount>1</TablesCount><xqb_Table name="
                                              "\"Table1\"><FieldsCount>2</FieldsCount>") +
                                  kField +
                                  "<xqb_Field name=\"Field2\"><DBName>F</DBName>"
                                  "</xqb_Field></xqb_Table>"),
                    "A field with this name already exists in this table!"},
        FailureCase{"HugeCountWithoutElements",
                    QueryDocument("<TablesCount>2000000000</TablesCount>"),
                    "A table with this name already exists!"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(QueryDefinitionDocument, MalformedTextReportsTheParserReason) {
  auto query = xqb_Query::Create();
  try {
    query->LoadXMLDef("<PropertyBag><xqb_Query>");
    FAIL() << "nothing raised";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), kErrLoadXMLDef);
    EXPECT_EQ(error.Source(), kLoadSource);
    EXPECT_EQ(error.Description().rfind("Couldn't load xml query definition!\r\n", 0), 0u);
    EXPECT_GT(error.Description().size(), 40u);
  }
}

TEST(QueryDefinitionDocument, ADocumentWithoutAQueryLeavesTheQueryAsItWas) {
  auto query = xqb_Query::Create();
  query->SetQueryName("Kept");
  query->LoadXMLDef("<PropertyBag><Other/></PropertyBag>");
  EXPECT_EQ(query->QueryName(), "Kept");
}

TEST(QueryDefinitionDocument, AValueWithoutAStringFormFailsTheSave) {
  auto query = xqb_Query::Create();
  auto field = query->Tables()->Add("T")->Fields()->Add("F");
  AddCondition(*field, 1, qbe_ClauseInList, Variant(VariantArray{{Variant(1)}, 0}));
  EXPECT_TRUE(RaisesError([&] { query->SaveXMLDef(); }, kErrSaveXMLDef, kSaveSource,
                          "Couldn't save xml query definition!\r\nInvalid PropertyValue type."));
}

TEST(QueryDefinitionDocument, SavesUnderTheQueryNameAndLoadsTheFirstQuery) {
  auto query = xqb_Query::Create();
  query->SetQueryName("Q1");
  std::string saved = query->SaveXMLDef();
  EXPECT_EQ(saved.rfind("<PropertyBag><xqb_Query name=\"Q1\"><Version>4.0.12</Version>", 0), 0u);

  std::string two =
      "<PropertyBag><xqb_Query name=\"A\"><QueryName>A</QueryName></xqb_Query>"
      "<xqb_Query name=\"B\"><QueryName>B</QueryName></xqb_Query></PropertyBag>";
  EXPECT_EQ(Load(two)->QueryName(), "A");
}

}  // namespace
}  // namespace brix
