// Display texts of the catalogue, including the values outside each range.
#include "querybuilder/clause_catalogue.h"

#include <gtest/gtest.h>

#include <string>

namespace brix {
namespace {

struct TextCase {
  std::int32_t value;
  std::string expected;
};

TEST(ClauseCatalogue, ClauseTexts) {
  const TextCase cases[] = {{0, ""},
                            {1, "intre ___ si ___"},
                            {7, "este <NULL>"},
                            {14, "astazi"},
                            {16, "luna aceasta"},
                            {17, "in lista: ___"},
                            {19, "nu este in lista ___"},
                            {28, "in urmatoarele ___ zile"},
                            {32, "este mai mic decat ora curenta"},
                            {33, ""},
                            {-1, ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(ClauseDescription(static_cast<qbe_ClauseOperator>(c.value)), c.expected) << c.value;
  }
}

TEST(ClauseCatalogue, DataTypeTexts) {
  const TextCase cases[] = {{0, ""}, {1, "BLOB"}, {5, "Numeric"}, {6, "String"},
                            {7, ""}, {11, ""},    {12, ""},       {13, ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(DataTypeDescription(static_cast<qbe_DataType>(c.value)), c.expected) << c.value;
  }
}

TEST(ClauseCatalogue, SortAggregateAndLogicTexts) {
  const TextCase sorts[] = {{0, "None"}, {1, "Ascending"}, {-1, "Descending"}, {2, ""}, {-2, ""}};
  for (const auto& c : sorts) {
    EXPECT_EQ(SortTypeDescription(static_cast<qbe_SortType>(c.value)), c.expected) << c.value;
  }
  const TextCase aggregates[] = {{0, "None"},        {3, "Average"}, {6, "Standard deviation"},
                                 {7, "Value count"}, {8, ""},        {-1, ""}};
  for (const auto& c : aggregates) {
    EXPECT_EQ(AggregateFunctionDescription(static_cast<qbe_AggregateFunctionType>(c.value)),
              c.expected)
        << c.value;
  }
  const TextCase logic[] = {{1, " AND "}, {2, " OR "}, {3, ""}, {0, ""}};
  for (const auto& c : logic) {
    EXPECT_EQ(WhereClauseLogicDescription(static_cast<qbe_WhereClauseLogic>(c.value)), c.expected)
        << c.value;
  }
}

}  // namespace
}  // namespace brix
