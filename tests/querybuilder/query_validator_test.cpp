// The definition check: one problem per fault, with its element path; nothing for sound trees.
#include "querybuilder/query_validator.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "querybuilder/xqb_query.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

// A sound query: two tables linked by a field, each field with a sound condition.
struct Tree {
  std::shared_ptr<xqb_Query> query = xqb_Query::Create();
  std::shared_ptr<xqb_Field> city, quantity, day, id;
  Tree() {
    auto customers = query->Tables()->Add("Customers");
    id = customers->Fields()->Add("ID");
    id->SetDBType(qbe_DataNumeric);
    id->SetShowAsType(qbe_DataNumeric);
    city = customers->Fields()->Add("City");
    city->SetShowAsType(qbe_DataString);
    city->Conditions()->Add(qbe_ClauseInList, Variant("('Cluj', 'Iasi')"));
    auto orders = query->Tables()->Add("Orders");
    quantity = orders->Fields()->Add("Quantity");
    quantity->SetDBType(qbe_DataNumeric);
    quantity->SetShowAsType(qbe_DataNumeric);
    quantity->SetLinksWithField("customers.id");  // letter case aside, as engines read names
    quantity->Conditions()->Add(qbe_ClauseBetween, Variant("2"), Variant("5"));
    day = orders->Fields()->Add("Day");
    day->SetDBType(qbe_DataDate);
    day->SetShowAsType(qbe_DataDate);
    day->Conditions()->Add(qbe_ClauseEqualTo, Variant("2024-03-01"));
  }
};

std::shared_ptr<xqb_Condition> First(const std::shared_ptr<xqb_Field>& field) {
  return field->Conditions()->Item(Variant(1));
}

TEST(QueryValidator, ReportsEachFaultAtItsElement) {
  struct Case {
    std::string name;
    std::function<void(Tree&)> spoil;
    std::string path, message;
  };
  const std::vector<Case> cases = {
      {"clause outside the catalogue",
       [](Tree& t) { First(t.city)->SetClause(qbe_ClauseOperator{0}); },
       "xqb_Query/Table1/Field2/Condition1", "Clause 0 is not a clause (1 to 32)"},
      {"clause the field does not offer",
       [](Tree& t) { t.city->UnsetClauseAvailable(qbe_ClauseInList); },
       "xqb_Query/Table1/Field2/Condition1",
       "Clause 17 (in lista: ___) is not available for field City (it offers 2 3 10 11 12 13 19 4 "
       "5 8 9 6 20)"},
      {"full-text clause off the index",
       [](Tree& t) { t.city->Conditions()->Add(qbe_ClauseContainsWords, Variant("a")); },
       "xqb_Query/Table1/Field2/Condition2",
       "Clause 26 (contine cuvintele) searches the full-text index, but field City is not indexed "
       "(IsDTIndex False): no text writes the condition"},
      {"empty alias", [](Tree& t) { t.day->SetAlias(""); }, "xqb_Query/Table2/Field2",
       "field Day has an empty Alias: the statement writes \"AS\" with no name after it"},
      {"text on a numeric field",
       [](Tree& t) { First(t.quantity)->SetSecondaryValue(Variant("five")); },
       "xqb_Query/Table2/Field1/Condition1",
       "SecondaryValue \"five\" does not read as Numeric (Type mismatch)"},
      {"no date on a date field", [](Tree& t) { First(t.day)->SetValue(Variant("soon")); },
       "xqb_Query/Table2/Field2/Condition1",
       "Value \"soon\" does not read as Date (Type mismatch)"},
      {"count that is no number",
       [](Tree& t) {
         First(t.day)->SetClause(qbe_ClauseLastXDays);
         First(t.day)->SetValue(Variant("x"));
       },
       "xqb_Query/Table2/Field2/Condition1",
       "Value \"x\" is no count for clause 18 (Type mismatch)"},
      {"IN list item of another type",
       [](Tree& t) { t.id->Conditions()->Add(qbe_ClauseInList, Variant("(1, 'x')")); },
       "xqb_Query/Table1/Field1/Condition1",
       "the list item \"x\" does not read as Numeric (Type mismatch)"},
      {"same ID twice", [](Tree& t) { First(t.day)->SetConditionID(First(t.city)->ConditionID()); },
       "xqb_Query/Table2/Field2/Condition1", "ConditionID "},
      {"link to no field", [](Tree& t) { t.quantity->SetLinksWithField("Clients.ID"); },
       "xqb_Query/Table2/Field1", "LinksWithField \"Clients.ID\" names no field of the query"},
  };
  EXPECT_TRUE(Tree().query->Validate().empty());
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Tree tree;
    c.spoil(tree);
    auto render = [&] { return test_support::Outcome([&] { return tree.query->ReturnSQL(); }); };
    const std::string sql = render();
    const std::vector<QueryProblem> problems = tree.query->Validate();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].path, c.path);
    EXPECT_TRUE(problems[0].message.starts_with(c.message)) << problems[0].message;
    EXPECT_EQ(render(), sql);  // the check changes nothing
  }
}

TEST(QueryValidator, LeavesParameterAndHostSqlAlone) {
  Tree tree;
  auto parameter = tree.day->Conditions()->Add(qbe_ClauseEqualTo, Variant("later"));
  parameter->SetParamName("Zi");
  tree.quantity->SetLinksWithField("coalesce(Customers.ID, 0)");
  EXPECT_TRUE(tree.query->Validate().empty());
  EXPECT_EQ(tree.query->ParameterNames(), std::vector<std::string>{"Zi"});
}

}  // namespace
}  // namespace brix
