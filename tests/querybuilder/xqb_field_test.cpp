// The catalogue's display texts, and the available-clause list of a field: string rules,
// defaults per type, and its listing.
#include "querybuilder/xqb_field.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/xqb_condition.h"

namespace brix {
namespace {

using Clauses = std::vector<std::int32_t>;

Clauses Listed(const xqb_Field& field) {
  KeyedCollection<std::int32_t> listed = field.ReturnAvailableClauses();
  return {listed.begin(), listed.end()};
}

auto K(std::int32_t clause) { return static_cast<qbe_ClauseOperator>(clause); }

template <class Enum, std::string (*Describe)(Enum)>
std::string Text(std::int32_t value) {
  return Describe(static_cast<Enum>(value));
}

TEST(ClauseCatalogue, TextsIncludingValuesOutsideEachRange) {
  const auto clause = Text<qbe_ClauseOperator, ClauseDescription>;
  const auto type = Text<qbe_DataType, DataTypeDescription>;
  const auto sort = Text<qbe_SortType, SortTypeDescription>;
  const auto aggregate = Text<qbe_AggregateFunctionType, AggregateFunctionDescription>;
  const auto logic = Text<qbe_WhereClauseLogic, WhereClauseLogicDescription>;
  // clang-format off
  const std::vector<std::tuple<std::string (*)(std::int32_t), std::int32_t, std::string>> cases = {
      {clause,    0,  ""},
      {clause,    1,  "intre ___ si ___"},
      {clause,    7,  "este <NULL>"},
      {clause,    17, "in lista: ___"},
      {clause,    19, "nu este in lista ___"},
      {clause,    32, "este mai mic decat ora curenta"},
      {clause,    33, ""},
      {clause,    -1, ""},
      {type,      0,  ""},
      {type,      1,  "BLOB"},
      {type,      6,  "String"},
      {type,      7,  ""},
      {type,      12, ""},
      {type,      13, ""},
      {sort,      1,  "Ascending"},
      {sort,      -1, "Descending"},
      {sort,      2,  ""},
      {aggregate, 0,  "None"},
      {aggregate, 7,  "Value count"},
      {aggregate, 8,  ""},
      {logic,     1,  " AND "},
      {logic,     2,  " OR "},
      {logic,     0,  ""},
  };
  // clang-format on
  for (const auto& [text, value, expected] : cases) EXPECT_EQ(text(value), expected) << value;
  auto condition = xqb_Condition::Create();  // logic AND, clause 0
  EXPECT_EQ(condition->WhereClauseDescription() + "|" + condition->ClauseDescription(), " AND |");
}

TEST(XqbField, DefaultClauseListPerShowAsType) {
  // clang-format off
  const std::vector<std::pair<std::int32_t, std::string>> cases = {
      {qbe_DataBoolean,      "|3|"},
      {qbe_DataDate,         "|1|3|4|5|8|9|11|18|14|16|15|21|22|23|24|28|29|6|20|"},
      {qbe_DataMemo,         "|2|3|10|11|12|13|17|19|4|5|8|9|6|20|"},
      {qbe_DataString,       "|2|3|10|11|12|13|17|19|4|5|8|9|6|20|"},
      {qbe_DataNumeric,      "|1|3|4|5|8|9|11|17|19|6|20|"},
      {qbe_DataDecimal,      "|1|3|4|5|8|9|11|17|19|6|20|"},
      {qbe_DataUserDefined3, "|25|26|27|"},
      {qbe_DataTime,         "|30|31|32|1|3|4|5|8|9|11|6|20|"},
      {qbe_DataBLOB,         ""},
      {qbe_DataUTCDate,      ""},
      {qbe_DataUserDefined1, ""},
      {qbe_DataUserDefined2, ""},
      {0,                    ""},
      {13,                   ""},
  };
  // clang-format on
  for (const auto& [type, list] : cases) {
    auto field = xqb_Field::Create();
    field->SetClauseAvailable(qbe_ClauseIsNull);
    field->SetShowAsType(static_cast<qbe_DataType>(type));
    EXPECT_EQ(field->AvailableClauses(), list) << type;
  }
  // A new field has an empty list until its type is set, even the same type again.
  auto field = xqb_Field::Create();
  EXPECT_EQ(field->AvailableClauses(), "");
  field->SetShowAsType(qbe_DataBoolean);
  field->SetClauseAvailable(qbe_ClauseNotEqual);
  field->SetDBType(qbe_DataNumeric);
  EXPECT_EQ(field->AvailableClauses(), "|3|11|");
  field->SetShowAsType(qbe_DataBoolean);
  EXPECT_EQ(field->AvailableClauses(), "|3|");
}

TEST(XqbField, ClauseListStringRules) {
  // clang-format off
  // list before, '+' set, '-' unset or '?' test, clause, list after, the test's answer
  const std::vector<std::tuple<const char*, char, std::int32_t, const char*, bool>> cases = {
      {"",       '+', 3,  "|3|",   false},
      {"|3|",    '+', 5,  "|3|5|", false},
      {"|3|",    '+', 3,  "|3|",   false},
      {"|3|",    '-', 3,  "",      false},
      {"|3|5|",  '-', 3,  "|5|",   false},
      {"|3|5|",  '-', 7,  "|3|5|", false},
      {"|3|3|",  '-', 3,  "|3|",   false},  // one left-to-right pass
      {"|11|1|", '-', 1,  "|11|",  false},
      {"|11|",   '?', 1,  "|11|",  false},
      {"|11|",   '?', 11, "|11|",  true},
      {"|1|3|",  '?', 3,  "|1|3|", true},
      {"",       '?', 3,  "",      false},
  };
  // clang-format on
  for (const auto& [before, op, clause, after, available] : cases) {
    auto field = xqb_Field::Create();
    field->SetAvailableClauses(before);
    if (op == '+') field->SetClauseAvailable(K(clause));
    if (op == '-') field->UnsetClauseAvailable(K(clause));
    if (op == '?') {
      EXPECT_EQ(field->ClauseAvailable(K(clause)), available) << before;
    }
    EXPECT_EQ(field->AvailableClauses(), after) << before << " " << op << clause;
  }
}

TEST(XqbField, ListingFollowsCandidateOrder) {
  const Clauses strings = {2, 3, 10, 11, 12, 13, 17, 19, 4, 5, 8, 9, 6, 20};
  const Clauses dates = {1, 3, 4, 5, 8, 9, 11, 18, 14, 16, 15, 21, 22, 23, 24, 28, 29, 6, 20};
  Clauses dates_without_16 = dates;
  std::erase(dates_without_16, 16);
  // clang-format off
  // ShowAsType, the list set by hand (nullptr: the type's defaults), the clauses listed
  const std::vector<std::tuple<qbe_DataType, const char*, Clauses>> cases = {
      {qbe_DataDate,         nullptr,      dates_without_16},  // the defaults never list 16
      {qbe_DataDate,         "",           dates},             // an empty list lists every candidate
      {qbe_DataString,       "",           strings},
      {qbe_DataBoolean,      "|5|",        {3}},               // Boolean lists 3 regardless
      {qbe_DataBLOB,         "|3|2|",      {}},
      {qbe_DataString,       "|3|99|7|2|", {2, 3}},            // candidate order, not list order
      {qbe_DataUserDefined3, "|25|27|",    {25, 27}},
  };
  // clang-format on
  for (const auto& [type, list, expected] : cases) {
    auto field = xqb_Field::Create();
    field->SetShowAsType(type);
    if (list) field->SetAvailableClauses(list);
    EXPECT_EQ(Listed(*field), expected) << type << " " << (list ? list : "defaults");
  }
}

}  // namespace
}  // namespace brix
