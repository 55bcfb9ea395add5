// Display texts of the catalogue, including the values outside each range, and a condition's own.
#include "querybuilder/clause_catalogue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "querybuilder/xqb_condition.h"

namespace brix {
namespace {

template <class Enum, std::string (*Describe)(Enum)>
std::string Text(std::int32_t value) {
  return Describe(static_cast<Enum>(value));
}
constexpr auto kClause = Text<qbe_ClauseOperator, ClauseDescription>;
constexpr auto kType = Text<qbe_DataType, DataTypeDescription>;
constexpr auto kSort = Text<qbe_SortType, SortTypeDescription>;
constexpr auto kAggregate = Text<qbe_AggregateFunctionType, AggregateFunctionDescription>;
constexpr auto kLogic = Text<qbe_WhereClauseLogic, WhereClauseLogicDescription>;

TEST(ClauseCatalogue, Texts) {
  struct Case {
    std::string (*text)(std::int32_t);
    std::int32_t value;
    std::string expected;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {kClause, 0,  ""},
      {kClause, 1,  "intre ___ si ___"},
      {kClause, 7,  "este <NULL>"},
      {kClause, 14, "astazi"},
      {kClause, 16, "luna aceasta"},
      {kClause, 17, "in lista: ___"},
      {kClause, 19, "nu este in lista ___"},
      {kClause, 28, "in urmatoarele ___ zile"},
      {kClause, 32, "este mai mic decat ora curenta"},
      {kClause, 33, ""},
      {kClause, -1, ""},
      {kType,   0,  ""},
      {kType,   1,  "BLOB"},
      {kType,   5,  "Numeric"},
      {kType,   6,  "String"},
      {kType,   7,  ""},
      {kType,   11, ""},
      {kType,   12, ""},
      {kType,   13, ""},
      {kSort,   0,  "None"},
      {kSort,   1,  "Ascending"},
      {kSort,   -1, "Descending"},
      {kSort,   2,  ""},
      {kSort,   -2, ""},
      {kAggregate, 0,  "None"},
      {kAggregate, 3,  "Average"},
      {kAggregate, 6,  "Standard deviation"},
      {kAggregate, 7,  "Value count"},
      {kAggregate, 8,  ""},
      {kAggregate, -1, ""},
      {kLogic,  1,  " AND "},
      {kLogic,  2,  " OR "},
      {kLogic,  3,  ""},
      {kLogic,  0,  ""},
  };
  // clang-format on
  for (const auto& c : cases) EXPECT_EQ(c.text(c.value), c.expected) << c.value;
}

TEST(ClauseCatalogue, ConditionTexts) {
  auto condition = xqb_Condition::Create();
  EXPECT_EQ(condition->WhereClauseDescription() + "|" + condition->ClauseDescription(), " AND |");
  condition->SetClause(qbe_ClauseInList);
  condition->SetWhereClauseLogic(qbe_LogicNone);
  EXPECT_EQ(condition->WhereClauseDescription() + "|" + condition->ClauseDescription(),
            "|in lista: ___");
}

}  // namespace
}  // namespace brix
