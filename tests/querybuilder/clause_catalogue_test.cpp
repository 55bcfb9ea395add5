// Every clause kind through the catalogue and each text generator, the catalogue's other texts,
// and the available-clause list of a field: defaults per type, string rules and listing.
#include "querybuilder/clause_catalogue.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "querybuilder/xqb_query.h"
#include "runtime/clock.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::FieldRow;
using Clauses = std::vector<std::int32_t>;
using V = Variant;

auto K(std::int32_t clause) { return static_cast<qbe_ClauseOperator>(clause); }

TEST(ClauseCatalogue, EveryKindThroughEveryText) {
  ScopedClock clock(40240 + 14.5 / 24);  // 14:30
  const std::string range = "(F BETWEEN '7' AND '9')", bare_range = "(F BETWEEN 7 AND 9)";
  // clang-format off
  // The condition is F kind '7' '9'. The dtSearch request on a text field, by class: R range,
  // E one operand, W words, X not searchable (empties the field), N no text.
  const std::map<char, std::string> full_text = {{'R', "((F contains (7~~9)))"}, {'E', "((F contains (7)))"},
                                                 {'W', "((F contains (7*)))"}, {'X', "()"}, {'N', "((F)"}};
  // kind, catalogue text, WHERE on String and Memo fields, WHERE on Numeric, Boolean, Decimal and
  // BLOB fields, description after "F ", dtSearch class
  const std::vector<std::tuple<int, std::string, std::string, std::string, std::string, char>> rows = {
      {0,  "",                                "(F)",                          "(F)",              "",                                'N'},
      {1,  "intre ___ si ___",                range,                          bare_range,         "este intre 7 si 9",               'R'},
      {2,  "contine",                         "(F LIKE '%7%')",               "(F LIKE %7%)",     "contine 7",                       'E'},
      {3,  "sa fie",                          "(F = '7')",                    "(F = 7)",          "sa fie 7",                        'E'},
      {4,  "este mai mare sau egal cu",       "(F >= '7')",                   "(F >= 7)",         "este mai mare sau egal cu 7",     'X'},
      {5,  "este mai mare ca",                "(F > '7')",                    "(F > 7)",          "este mai mare ca 7",              'X'},
      {6,  "lipseste",                        "(F = '' OR F IS NULL )",       "(F IS NULL )",     "lipseste",                        'X'},
      {7,  "este <NULL>",                     "(F IS NULL)",                  "(F IS NULL)",      "este <NULL>",                     'X'},
      {8,  "este mai mic sau egal cu",        "(F <= '7')",                   "(F <= 7)",         "este mai mic sau egal cu 7",      'X'},
      {9,  "este mai mic ca",                 "(F < '7')",                    "(F < 7)",          "este mai mic ca 7",               'X'},
      {10, "nu contine",                      "(F NOT LIKE '%7%')",           "(F NOT LIKE %7%)", "nu contine 7",                    'X'},
      {11, "nu este",                         "(F <> '7')",                   "(F <> 7)",         "nu este egal cu 7",               'X'},
      {12, "nu incepe cu",                    "(F NOT LIKE '7%')",            "(F NOT LIKE 7%)",  "nu incepe cu 7",                  'X'},
      {13, "incepe cu",                       "(F LIKE '7%')",                "(F LIKE 7%)",      "incepe cu 7",                     'X'},
      {14, "astazi",                          "(F = '7')",                    "(F = 7)",          "este astazi",                     'R'},
      {15, "saptamana aceasta",               range,                          bare_range,         "este saptamana aceasta",          'R'},
      {16, "luna aceasta",                    range,                          bare_range,         "este luna aceasta",               'R'},
      {17, "in lista: ___",                   "(F IN 7)",                     "(F IN 7)",         "este in lista 7",                 'X'},
      {18, "din ultimele zile ___",           range,                          bare_range,         "este in ultimele 7 zile",         'R'},
      {19, "nu este in lista ___",            "(F NOT IN 7)",                 "(F NOT IN 7)",     "nu este in lista 7",              'X'},
      {20, "nu lipseste",                     "(F <> '' OR F IS NOT NULL )",  "(F IS NOT NULL )", "nu lipseste",                     'X'},
      {21, "din ultimele luni ___",           range,                          bare_range,         "este in ultimele 7 luni",         'R'},
      {22, "din acest an",                    range,                          bare_range,         "este anul acesta",                'R'},
      {23, "din anul ___",                    range,                          bare_range,         "este in anul 7",                  'R'},
      {24, "din ultimii ani ___",             range,                          bare_range,         "este in ultimii 7 ani",           'R'},
      {25, "contine apropiat cuvintele",      "",                             "",                 "contine apropiat cuvintele 7",    'E'},
      {26, "contine cuvintele",               "",                             "",                 "contine cuvintele 7",             'W'},
      {27, "contine expresia",                "",                             "",                 "contine expresia 7",              'E'},
      {28, "in urmatoarele ___ zile",         range,                          bare_range,         "in urmatoarele 7 zile",           'R'},
      {29, "peste ___ zile",                  "(F = '7')",                    "(F = 7)",          "peste 7 zile",                    'E'},
      {30, "este ora curenta",                "(F = '14:30')",                "(F = 14:30)",      "este ora curenta",                'E'},
      {31, "este mai mare decat ora curenta", "(F >= '14:30')",               "(F >= 14:30)",     "este mai mare decat ora curenta", 'X'},
      {32, "este mai mic decat ora curenta",  "(F <= '14:30')",               "(F <= 14:30)",     "este mai mic decat ora curenta",  'X'},
      {33, "",                                "(F)",                          "(F)",              "",                                'N'},
      {-1, "",                                "(F)",                          "(F)",              "",                                'N'},
  };
  // clang-format on
  for (const auto& [kind, text, quoted, bare, phrase, full_text_class] : rows) {
    EXPECT_EQ(ClauseDescription(K(kind)), text) << kind;
    for (auto type : {qbe_DataMemo, qbe_DataString, qbe_DataNumeric, qbe_DataBoolean,
                      qbe_DataDecimal, qbe_DataBLOB}) {
      FieldRow field{.name = "F", .type = type, .conditions = {{K(kind), V("7"), V("9")}}};
      field.dt_index = true;
      auto query = BuildQuery({{"T", {field}}});
      const bool text_type = type == qbe_DataMemo || type == qbe_DataString;
      EXPECT_EQ(query->ReturnWHEREConditions(), text_type ? quoted : bare) << kind << " " << type;
      if (type != qbe_DataMemo) continue;
      EXPECT_EQ(query->ReturnConditionDescription(1), "F " + phrase) << kind;
      EXPECT_EQ(query->ReturnDTConditions(), full_text.at(full_text_class)) << kind;
    }
  }
}

template <class Enum, std::string (*Describe)(Enum)>
std::string Text(std::int32_t value) {
  return Describe(static_cast<Enum>(value));
}

TEST(ClauseCatalogue, OtherTextsIncludingValuesOutsideEachRange) {
  const auto type = Text<qbe_DataType, DataTypeDescription>;
  const auto sort = Text<qbe_SortType, SortTypeDescription>;
  const auto aggregate = Text<qbe_AggregateFunctionType, AggregateFunctionDescription>;
  const auto logic = Text<qbe_WhereClauseLogic, WhereClauseLogicDescription>;
  // clang-format off
  const std::vector<std::tuple<std::string (*)(std::int32_t), std::int32_t, std::string>> cases = {
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

Clauses Listed(const xqb_Field& field) {
  KeyedCollection<std::int32_t> listed = field.ReturnAvailableClauses();
  return {listed.begin(), listed.end()};
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
