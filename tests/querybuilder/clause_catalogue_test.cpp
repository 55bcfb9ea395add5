// Every clause kind through the catalogue and each text generator, the catalogue's other texts,
// the available-clause list of a field (defaults per type, string rules and listing), and the
// condition sentences: operand texts per type, month names and the prefixes.
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

using test_support::AddCondition;
using test_support::AddField;
using test_support::AddTable;
using test_support::BuildQuery;
using test_support::FieldRow;
using test_support::Outcome;
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

// The clauses `field` lists, each followed by "|", the list's first "|" before them.
std::string Listed(const xqb_Field& field) {
  std::string text = "|";
  for (std::int32_t clause : field.ReturnAvailableClauses()) text += std::to_string(clause) + "|";
  return text == "|" ? "" : text;
}

TEST(XqbField, ClauseListPerShowAsTypeAndItsListing) {
  const std::string dates = "|1|3|4|5|8|9|11|18|14|16|15|21|22|23|24|28|29|6|20|";
  const std::string strings = "|2|3|10|11|12|13|17|19|4|5|8|9|6|20|";
  const std::string numbers = "|1|3|4|5|8|9|11|17|19|6|20|";
  // clang-format off
  // ShowAsType, the list set by hand (nullptr: the type's defaults), the list then, the listing
  const std::vector<std::tuple<std::int32_t, const char*, std::string, std::string>> cases = {
      {qbe_DataBoolean,      nullptr,      "|3|",                          "|3|"},
      {qbe_DataDate,         nullptr,      dates,                          "|1|3|4|5|8|9|11|18|14|15|21|22|23|24|28|29|6|20|"},  // never 16
      {qbe_DataMemo,         nullptr,      strings,                        strings},
      {qbe_DataString,       nullptr,      strings,                        strings},
      {qbe_DataNumeric,      nullptr,      numbers,                        numbers},
      {qbe_DataDecimal,      nullptr,      numbers,                        numbers},
      {qbe_DataUserDefined3, nullptr,      "|25|26|27|",                   "|25|26|27|"},
      {qbe_DataTime,         nullptr,      "|30|31|32|1|3|4|5|8|9|11|6|20|", "|30|31|32|1|3|4|5|8|9|11|6|20|"},
      {qbe_DataDate,         "",           "",                             dates},  // an empty list lists every candidate
      {qbe_DataString,       "",           "",                             strings},
      {qbe_DataBoolean,      "|5|",        "|5|",                          "|3|"},  // Boolean lists 3 regardless
      {qbe_DataBLOB,         "|3|2|",      "|3|2|",                        ""},
      {qbe_DataString,       "|3|99|7|2|", "|3|99|7|2|",                   "|2|3|"},  // candidate order, not list order
      {qbe_DataUserDefined3, "|25|27|",    "|25|27|",                      "|25|27|"},
  };
  // clang-format on
  for (const auto& [type, list, after, listed] : cases) {
    auto field = xqb_Field::Create();
    field->SetClauseAvailable(qbe_ClauseIsNull);  // replaced when the type is set
    field->SetShowAsType(static_cast<qbe_DataType>(type));
    if (list) field->SetAvailableClauses(list);
    EXPECT_EQ(field->AvailableClauses() + " " + Listed(*field), after + " " + listed) << type;
  }
  for (auto type : {qbe_DataBLOB, qbe_DataUTCDate, qbe_DataUserDefined1, qbe_DataUserDefined2,
                    static_cast<qbe_DataType>(0), static_cast<qbe_DataType>(13)}) {
    auto field = xqb_Field::Create();
    field->SetShowAsType(type);
    EXPECT_EQ(field->AvailableClauses() + Listed(*field), "") << type;
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
    EXPECT_EQ(op == '?' && field->ClauseAvailable(K(clause)), available) << before;
    EXPECT_EQ(field->AvailableClauses(), after) << before << " " << op << clause;
  }
}

constexpr double kClock = 40240;

// The description of one condition on the field `name` of the only table.
std::string Describe(qbe_DataType db_type, qbe_DataType show_as, qbe_ClauseOperator clause,
                     const V& value, const V& secondary = V(""), const char* name = "F") {
  ScopedClock fixed(kClock);
  auto query = BuildQuery({{"T",
                            {{.name = name,
                              .type = db_type,
                              .conditions = {{clause, value, secondary}},
                              .show_as = show_as}}}});
  return query->ReturnConditionDescription(1);
}

TEST(ConditionDescriber, OperandTexts) {
  constexpr auto B = qbe_DataBoolean, S = qbe_DataString, N = qbe_DataNumeric, D = qbe_DataDate;
  // clang-format off
  const std::vector<std::tuple<qbe_DataType, qbe_DataType, qbe_ClauseOperator, V, V, std::string>> cases = {
      {B,              B,            qbe_ClauseEqualTo,   V(true),        V(""),          "F sa fie Da"},
      {B,              B,            qbe_ClauseEqualTo,   V(-1),          V(""),          "F sa fie Da"},
      // A Boolean read back from a definition is the text "True", which is not True.
      {B,              B,            qbe_ClauseEqualTo,   V("True"),      V(""),          "F sa fie Nu"},
      {B,              B,            qbe_ClauseBetween,   V(true),        V::Null(),      "F este intre Da si Nu"},
      {S,              S,            qbe_ClauseEqualTo,   V("x"),         V(""),          "F sa fie 'x'"},
      {S,              qbe_DataMemo, qbe_ClauseBetween,   V("a"),         V::Null(),      "F este intre 'a' si ''"},
      {S,              N,            qbe_ClauseEqualTo,   V("x"),         V(""),          "F sa fie x"},
      {qbe_DataMemo,   S,            qbe_ClauseEqualTo,   V("x"),         V(""),          "F sa fie x"},
      {N,              D,            qbe_ClauseEqualTo,   V(Date{40238}), V(""),          "F sa fie 01-Mar-2010"},
      {N,              D,            qbe_ClauseBetween,   V(40238),       V("3/31/2010"), "F este intre 01-Mar-2010 si 31-Mar-2010"},
      {qbe_DataDecimal, D,           qbe_ClauseBetween,   V("40239"),     V("abc"),       "F este intre 02-Mar-2010 si abc"},
      // A day-number text with a fraction is its day; Empty and Null write nothing.
      {N,              D,            qbe_ClauseBetween,   V("43051.75"),  V(),            "F este intre 12-Nov-2017 si "},
      {N,              D,            qbe_ClauseNotEqual,  V::Null(),      V(""),          "F nu este egal cu "},
      {qbe_DataDecimal, D,           qbe_ClauseLastXDays, V(5),           V(""),          "F este in ultimele 5 zile"},
      {N,              D,            qbe_ClauseYear,      V(2010.0),      V(""),          "F este in anul 2010"},
      // Counted clauses never read the second operand.
      {N,              D,            qbe_ClauseOverXDays, V("7"),         V(VariantArray{}), "F peste 7 zile"},
      {N,              N,            qbe_ClauseEqualTo,   V(2.5),         V(""),          "F sa fie 2.5"},
      {D,              D,            qbe_ClauseEqualTo,   V(Date{40238}), V(""),          "F sa fie 3/1/2010"},
      // Operands that do not convert raise.
      {S,              S,            qbe_ClauseEqualTo,   V(VariantArray{}), V(""),       "13 brixobjects4: Type mismatch"},
      {B,              B,            qbe_ClauseEqualTo,   V(VariantArray{}), V(""),       "13 brixobjects4: Type mismatch"},
      {N,              D,            qbe_ClauseEqualTo,   V::Nothing(),   V(""),          "91 brixobjects4: Object variable or With block variable not set"},
  };
  // clang-format on
  for (const auto& [db_type, show_as, clause, value, secondary, expected] : cases) {
    EXPECT_EQ(Outcome([&] { return Describe(db_type, show_as, clause, value, secondary); }),
              expected);
  }
}

TEST(ConditionDescriber, MonthNames) {
  // The month is the operand's text, exactly, whatever the field's type makes of it.
  std::string months;
  for (const V& month : {V(0), V(1), V(2), V(3), V(4), V(5), V(6), V(7), V(8), V(9), V(10), V(11),
                         V(12), V(13), V("3"), V("03")}) {
    const auto type = month.Type() == vbString ? qbe_DataString : qbe_DataNumeric;
    months += Describe(type, type, qbe_ClauseEqualTo, month, V(""), "Publicatie_Luna").substr(23);
    months += "|";
  }
  EXPECT_EQ(months,
            "|Ianuarie|Februarie|Martie|Aprilie|Mai|Iunie|Iulie|August|Septembrie|Octombrie|"
            "Noiembrie|Decembrie||Martie||");
}

TEST(ConditionDescriber, PrefixAndSearch) {
  ScopedClock fixed(kClock);
  auto query = xqb_Query::Create();
  auto activ =
      AddField(*query->Tables()->Add("Clienti", "Clienti activi"), "Activ", qbe_DataBoolean);
  AddCondition(*activ, 5, qbe_ClauseEqualTo, V(true));
  EXPECT_EQ(query->ReturnConditionDescription(5), "Activ sa fie Da");
  auto other = AddField(*AddTable(*query, "Facturi"), "Suma", qbe_DataNumeric);
  AddCondition(*other, 5, qbe_ClauseEqualTo, V(1));  // same identity, later in the tree
  EXPECT_EQ(query->ReturnConditionDescription(5), "Activ (Clienti activi) sa fie Da");
  EXPECT_EQ(query->ReturnConditionDescription(6), "");
}

}  // namespace
}  // namespace brix
