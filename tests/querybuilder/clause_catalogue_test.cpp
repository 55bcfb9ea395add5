// Every clause kind through the catalogue and each text generator, and the catalogue's other
// texts.
#include "querybuilder/clause_catalogue.h"

#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "querybuilder/condition_describer.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_field.h"
#include "runtime/clock.h"
#include "tests/support/expect_error.h"
#include "tests/support/query_tree.h"

namespace brix {
namespace {

using test_support::BuildQuery;
using test_support::FieldRow;
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

// The texts of `values`, each followed by "|".
template <class Enum>
std::string Texts(std::string (*describe)(Enum), std::initializer_list<std::int32_t> values) {
  std::string text;
  for (std::int32_t value : values) text += describe(static_cast<Enum>(value)) + "|";
  return text;
}

TEST(ClauseCatalogue, OtherTextsIncludingValuesOutsideEachRange) {
  EXPECT_EQ(Texts(DataTypeDescription, {0, 1, 6, 7, 12}), "|BLOB|String|||");
  EXPECT_EQ(Texts(SortTypeDescription, {0, 1, -1, 2}), "None|Ascending|Descending||");
  EXPECT_EQ(Texts(AggregateFunctionDescription, {-1, 0, 7, 8}), "|None|Value count||");
  EXPECT_EQ(Texts(WhereClauseLogicDescription, {1, 2, 0}), " AND | OR ||");
  auto condition = xqb_Condition::Create();  // logic AND, clause 0
  EXPECT_EQ(condition->WhereClauseDescription() + "|" + condition->ClauseDescription(), " AND |");
}

}  // namespace
}  // namespace brix
