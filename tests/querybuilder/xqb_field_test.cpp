// The clauses a field offers: the defaults of each type, the string rules and the listing.
#include "querybuilder/xqb_field.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/query_tree.h"

namespace brix {
namespace {

auto K(std::int32_t clause) { return static_cast<qbe_ClauseOperator>(clause); }

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

}  // namespace
}  // namespace brix
