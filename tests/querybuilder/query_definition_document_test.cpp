// The query definition document: the golden document, random save/load fixed points, and the
// loading rules for missing, extra and malformed elements.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/regular_definition_reader.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::RaisesError;
using Ints = std::vector<std::int32_t>;
using Flags = std::vector<bool>;
using Texts = std::vector<std::string>;

TEST(QueryDefinitionDocument, GoldenDocumentLoadsEveryPropertyAndSavesBackIdentically) {
  std::ifstream in(std::string(BRIX_TEST_DATA_DIR) + "/query_definition.xml", std::ios::binary);
  const std::string golden{std::istreambuf_iterator<char>(in), {}};
  auto q = xqb_Query::Create();
  q->LoadXMLDef(golden);
  auto t = q->Tables()->Item(Variant(1));
  auto f = t->Fields()->Item(Variant("[unit price]"));
  auto c = f->Conditions()->Item(Variant("4711"));
  EXPECT_EQ((Texts{q->QueryName(), q->QueryDescription(), q->Tag(), q->AccessRights(), t->DBName(),
                   t->Description(), t->Tag()}),
            (Texts{"Facturi restante", "Facturi & clienți", "q-tag", "RW", "[Order Items]",
                   "Pozitii", "t1"}));
  EXPECT_EQ((Ints{q->QueryType(), q->StatementType(), q->GridLineStyle(), q->GridLines()}),
            (Ints{2, 3, 2, -1}));
  EXPECT_EQ((Flags{q->DistinctRows(), q->GroupsCollapsed(), q->ShadeGroupHeadings(),
                   q->bUseNaturalLanguage(), q->bUsePhonicSearching(), q->bUseStemming(),
                   q->bUseWordNetSynonyms(), q->bSYN()}),
            (Flags{true, true, true, true, false, true, false, true}));
  EXPECT_EQ((Texts{f->DBName(), f->Alias(), f->Caption(), f->CalculatedFormula(),
                   f->LinksWithField(), f->Script(), f->ScriptLanguage(), f->RunAt(),
                   f->DefaultScriptProc(), f->ValueListSource(), f->AvailableClauses(), f->Tag()}),
            (Texts{"[Unit Price]", "Pret", "Pret unitar", "Qty*Price>0", "Orders.ID", "x = 1",
                   "VBScript", "Server", "Main", "SELECT 1", "|3|1|", "f1"}));
  EXPECT_EQ(
      (Ints{f->DBType(), f->ShowAsType(), f->OrderByLevel(), f->OrderByOrder(), f->GroupByLevel(),
            f->ControlType(), f->Latime(), f->AggregateFunction(), f->GroupLevel(), f->GroupOrder(),
            f->SortLevel(), f->SortOrder(), f->AppearanceOrder(), f->UIOrder()}),
      (Ints{5, 12, 2, -1, 3, 1, 2400, 6, 4, 1, 5, -1, 6, 7}));
  EXPECT_EQ((Flags{f->UseInStatement(), f->HasScriptAsSource(), f->ExecScriptAfterRetrieve(),
                   f->IsEditable(), f->IsRequired(), f->IsAvailable(), f->IsVisible(),
                   f->IsReturned(), f->IsGroupField(), f->IsSortField(), f->IsDTIndex()}),
            (Flags{false, true, true, true, true, false, false, true, true, true, true}));
  // Types are not restored: numbers come back as the text they were saved as.
  EXPECT_EQ(
      (Texts{c->ParamName(), c->Value().AsString(), c->SecondaryValue().AsString(), c->Tag()}),
      (Texts{"pPret", "12.5", "1E+15", "c1"}));
  EXPECT_EQ((Ints{c->ConditionID(), c->Clause(), c->WhereClauseLogic(), c->IsEditable()}),
            (Ints{4711, 1, 2, false}));
  // Saving writes the library's own version, whatever the release that saved the golden text.
  std::string expected = golden;
  const std::size_t version = expected.find("<Version>") + 9;
  expected.replace(version, expected.find("</Version>") - version, q->GetVersion());
  EXPECT_EQ(q->SaveXMLDef(), expected);
}

TEST(QueryDefinitionDocument, AnOperandHoldingAnArrayOfVariantsCannotBeSaved) {
  auto query = xqb_Query::Create();
  test_support::AddCondition(*query->Tables()->Add("T")->Fields()->Add("F"), 1, qbe_ClauseInList,
                             Variant(VariantArray{{Variant(1)}, 0}));
  EXPECT_TRUE(RaisesError([&] { query->SaveXMLDef(); }, kErrSaveXMLDef,
                          "[OrlaXML_qb].[xqb_Persistence].[SaveXMLDef]",
                          "Couldn't save xml query definition!\r\nInvalid PropertyValue type."));
}

// The element of child `n` of kind `kind` ("Query", "Table" or "Field") holding `body`.
std::string Child(const std::string& kind, const std::string& body, int n = 1) {
  const std::string tag = "xqb_" + kind;
  return "<" + tag + " name=\"" + kind + std::to_string(n) + "\">" + body + "</" + tag + ">";
}

std::string QueryDocument(const std::string& body) {
  return "<PropertyBag>" + Child("Query", body) + "</PropertyBag>";
}

// A document with one query holding one table "T" holding one field made of `body`.
std::string FieldDocument(const std::string& body) {
  return QueryDocument("<TablesCount>1</TablesCount>" +
                       Child("Table", "<DBName>T</DBName><FieldsCount>1</FieldsCount>" +
                                          Child("Field", "<DBName>F</DBName>" + body)));
}

// The query's name and statement type, then per table its name and its fields' clause lists.
std::string Summary(xqb_Query& query) {
  std::string text = query.QueryName() + " " + std::to_string(query.StatementType());
  for (const auto& table : *query.Tables()) {
    text += " [" + table->DBName();
    for (const auto& field : *table->Fields()) text += " " + field->AvailableClauses();
    text += "]";
  }
  return text;
}

// Loading into a query named "Kept" whose statement type is SQL Server (3).
TEST(QueryDefinitionDocument, LoadRulesAndWrappedFailures) {
  const std::string two = "<TablesCount>2</TablesCount>";
  const std::string load =
      "-2147211403 [OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]: Couldn't load xml query "
      "definition!\r\n";
  // clang-format off
  const std::vector<std::pair<std::string, std::string>> cases = {  // document, summary or error
      // Missing elements give the values of a new object; a document without a query changes nothing.
      {QueryDocument("<QueryName>Old</QueryName>"),            "Old 1"},
      {"<PropertyBag><Other/></PropertyBag>",                  "Kept 3"},
      {"<PropertyBag>" + Child("Query", "<QueryName>A</QueryName>") + Child("Query", "<QueryName>B</QueryName>", 2) + "</PropertyBag>", "A 1"},
      // More tables counted than saved are added at their defaults; children come back in the
      // order of their numbers; names are normalised again.
      {QueryDocument(two + Child("Table", "<DBName>A</DBName>")), " 1 [A] []"},
      {QueryDocument(two + Child("Table", "<DBName>B</DBName>", 2) + Child("Table", "<DBName>A</DBName>")), " 1 [A] [B]"},
      {QueryDocument("<TablesCount>1</TablesCount>" + Child("Table", "<DBName>dbo. Order</DBName>")), " 1 [dbo.[ Order]]"},
      // A missing or empty clause list gives the defaults of the field's type.
      {FieldDocument("<ShowAsType>5</ShowAsType>"),            " 1 [T |1|3|4|5|8|9|11|17|19|6|20|]"},
      {FieldDocument("<ShowAsType>2</ShowAsType><AvailableClauses/>"), " 1 [T |3|]"},
      {QueryDocument("<TablesCount>many</TablesCount>"),       load + "Type mismatch: TablesCount of xqb_Query (line 1) is \"many\""},
      {QueryDocument("<TablesCount>3000000000</TablesCount>"), load + "Overflow: TablesCount of xqb_Query (line 1) is \"3000000000\""},
      {FieldDocument("<OrderByLevel>40000</OrderByLevel>"),    load + "Overflow: OrderByLevel of xqb_Query/Table1/Field1 (line 1) is \"40000\""},
      {QueryDocument("<QueryName vartype=\"null\"/>"),         load + "Invalid use of Null: QueryName of xqb_Query (line 1)"},
      {QueryDocument("<TablesCount>2000000000</TablesCount>"), load + "A table with this name already exists!"},
      {"<PropertyBag><xqb_Query>",                             load + "Start-end tags mismatch at line 1, column 24."},
      {QueryDocument("<TablesCount>1</TablesCount>" + Child("Table", "<FieldsCount>2</FieldsCount>" + Child("Field", "<DBName>F</DBName>") + Child("Field", "<DBName>F</DBName>", 2))),
                                                                                                load + "A field with this name already exists in this table!"},
  };
  // clang-format on
  for (const auto& [document, expected] : cases) {
    auto query = xqb_Query::Create();
    query->SetQueryName("Kept");
    query->SetStatementType(qbe_StatementSQLServer);
    EXPECT_EQ(test_support::Outcome([&] { return query->LoadXMLDef(document), Summary(*query); }),
              expected)
        << document;
  }
}

}  // namespace
}  // namespace brix

namespace brix {
namespace {

// A load holds a document to its bounds on every reading path: the usual shape, one that the
// bag reads (a property written twice makes it irregular), and a bag read by a host itself. The
// direct reading ends at the bound instead of handing the document to the bag.
TEST(QueryDefinitionDocument, LoadsHoldDocumentsToTheirBounds) {
  using namespace std::string_literals;
  auto source = xqb_Query::Create();
  source->SetQueryName(std::string(100, 'n'));  // the longest value
  auto field = source->Tables()->Add("T")->Fields()->Add("F");
  for (int n = 1; n <= 4; ++n) field->Conditions()->Add(qbe_ClauseEqualTo, Variant(n));
  const std::string regular = source->SaveXMLDef();
  std::string irregular = regular;
  irregular.insert(irregular.find("<QueryName>"), "<Tag>x</Tag>");
  std::string claimed = regular;  // a count that claims what the document does not hold
  claimed.replace(claimed.find("<ConditionsCount>4"), 18, "<ConditionsCount>5");
  const std::string load = std::to_string(kErrLoadXMLDef) +
                           " [OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]: Couldn't load xml query "
                           "definition!\r\n";
  const std::string bag = std::to_string(kErrLoadLimit) + " brixobjects4.kelpXMLPBag: ";
  const std::string objects =
      "The document holds more than 5 objects (tables, fields and conditions); SetLoadLimits "
      "raises the bound.";
  std::string objects6 = objects;
  objects6.replace(objects6.find('5'), 1, "6");
  const std::string value =
      "A value of 100 bytes is longer than the 99 a document may hold; SetLoadLimits raises the "
      "bound.";
  struct Case {
    const std::string& document;
    xqb_LoadLimits limits;
    std::string loaded, restored, direct;  // LoadXMLDef, RestoreState, the direct reading
  };
  const std::vector<Case> cases = {
      // one table, one field, four conditions
      {regular, {6, 100}, "loaded", "loaded", "read"},
      {regular, {5, 100}, load + objects, bag + objects, bag + objects},
      {regular, {6, 99}, load + value, bag + value, bag + value},
      {irregular, {6, 100}, "loaded", "loaded", "not read"},
      {irregular, {5, 100}, load + objects, bag + objects, "not read"},
      {irregular, {6, 99}, load + value, bag + value, "not read"},
      {claimed, {7, 100}, "loaded", "loaded", "read"},
      {claimed, {6, 100}, load + objects6, bag + objects6, bag + objects6},
  };
  for (const Case& c : cases) {
    const std::string shown = std::to_string(c.limits.MaxObjects) + " " +
                              std::to_string(c.limits.MaxValueLength) + " " +
                              c.document.substr(c.document.find("Count>"), 8);
    auto query = xqb_Query::Create();
    query->SetLoadLimits(c.limits);
    EXPECT_EQ(test_support::Outcome([&] { return query->LoadXMLDef(c.document), "loaded"s; }),
              c.loaded)
        << shown;
    auto reader = XMLPropBag::Create();
    reader->SetLoadLimits(c.limits);
    reader->SetContents(c.document);
    EXPECT_EQ(test_support::Outcome([&] { return reader->RestoreState(query.get()), "loaded"s; }),
              c.restored)
        << shown;
    XMLReadBudget budget(c.limits);
    EXPECT_EQ(test_support::Outcome([&] {
                return ReadRegularDefinition(c.document, *query, budget) ? "read"s : "not read"s;
              }),
              c.direct)
        << shown;
  }
}

}  // namespace
}  // namespace brix

namespace brix {
namespace {

// The line of a value that does not convert counts in the text as read, whatever its encoding:
// a byte-order mark, UTF-16 or an 8-bit code page must not move it.
TEST(QueryDefinitionDocument, LoadErrorLinesHoldInEveryEncoding) {
  const std::string body =
      "<PropertyBag>\n<xqb_Query>\n<TablesCount>many</TablesCount>\n</xqb_Query>\n</PropertyBag>";
  const auto utf16 = [](std::string_view text) {
    std::string bytes = "\xFF\xFE";
    for (char c : text) bytes += std::string{c, '\0'};
    return bytes;
  };
  const std::vector<std::string> documents = {
      body, "\xEF\xBB\xBF" + body, utf16(body),
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + body};
  for (const std::string& document : documents) {
    try {
      xqb_Query::Create()->LoadXMLDef(document);
      ADD_FAILURE() << "loaded";
    } catch (const Error& error) {
      EXPECT_NE(error.Description().find("TablesCount of xqb_Query (line 3)"), std::string::npos)
          << error.Description();
    }
  }
}

}  // namespace
}  // namespace brix
