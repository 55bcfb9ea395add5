// The available-clause list of a field: string rules, defaults per type, and its listing.
#include "querybuilder/xqb_field.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::RaisesRuntimeError;
using Clauses = std::vector<std::int32_t>;

Clauses Listed(const xqb_Field& field) {
  KeyedCollection<std::int32_t> listed = field.ReturnAvailableClauses();
  return {listed.begin(), listed.end()};
}

auto K(std::int32_t clause) { return static_cast<qbe_ClauseOperator>(clause); }

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
  enum Op { kSet, kUnset, kTest };
  struct Case {
    const char* before;
    Op op;
    std::int32_t clause;
    const char* after;
    bool available;  // for kTest
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"",      kSet,   3,  "|3|",   false},
      {"|3|",   kSet,   5,  "|3|5|", false},
      {"|3|",   kSet,   3,  "|3|",   false},
      {"|3|",   kUnset, 3,  "",      false},
      {"|3|5|", kUnset, 3,  "|5|",   false},
      {"|3|5|", kUnset, 7,  "|3|5|", false},
      {"|3|3|", kUnset, 3,  "|3|",   false},  // one left-to-right pass
      {"|11|1|", kUnset, 1, "|11|",  false},
      {"|11|",  kTest,  1,  "|11|",  false},
      {"|11|",  kTest,  11, "|11|",  true},
      {"|1|3|", kTest,  3,  "|1|3|", true},
      {"",      kTest,  3,  "",      false},
  };
  // clang-format on
  for (const auto& c : cases) {
    auto field = xqb_Field::Create();
    field->SetAvailableClauses(c.before);
    if (c.op == kSet) field->SetClauseAvailable(K(c.clause));
    if (c.op == kUnset) field->UnsetClauseAvailable(K(c.clause));
    if (c.op == kTest) {
      EXPECT_EQ(field->ClauseAvailable(K(c.clause)), c.available) << c.before;
    }
    EXPECT_EQ(field->AvailableClauses(), c.after) << c.before << " " << c.clause;
  }
}

TEST(XqbField, ListingFollowsCandidateOrder) {
  const Clauses strings = {2, 3, 10, 11, 12, 13, 17, 19, 4, 5, 8, 9, 6, 20};
  const Clauses dates = {1, 3, 4, 5, 8, 9, 11, 18, 14, 16, 15, 21, 22, 23, 24, 28, 29, 6, 20};
  Clauses dates_without_16 = dates;
  std::erase(dates_without_16, 16);
  Clauses dates_without_1_16 = dates_without_16;
  std::erase(dates_without_1_16, 1);
  struct Case {
    const char* name;
    qbe_DataType show_as_type;
    Clauses unset;
    const char* list;  // replaces the list when not null
    Clauses expected;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"date defaults never list 16", qbe_DataDate,         {},      nullptr,       dates_without_16},
      {"date without 1",              qbe_DataDate,         {1},     nullptr,       dates_without_1_16},
      {"empty date list lists 16",    qbe_DataDate,         {},      "",            dates},
      {"string list emptied by hand", qbe_DataString,       strings, nullptr,       strings},
      {"Boolean lists 3 regardless",  qbe_DataBoolean,      {3},     nullptr,       {3}},
      {"Boolean without 3 in list",   qbe_DataBoolean,      {},      "|5|",         {3}},
      {"hand-set clauses on BLOB",    qbe_DataBLOB,         {},      "|3|2|",       {}},
      {"candidate, not list order",   qbe_DataString,       {},      "|3|99|7|2|",  {2, 3}},
      {"full-text type",              qbe_DataUserDefined3, {26},    nullptr,       {25, 27}},
  };
  // clang-format on
  for (const auto& c : cases) {
    auto field = xqb_Field::Create();
    field->SetShowAsType(c.show_as_type);
    for (std::int32_t clause : c.unset) field->UnsetClauseAvailable(K(clause));
    if (c.list) field->SetAvailableClauses(c.list);
    EXPECT_EQ(Listed(*field), c.expected) << c.name;
  }
}

TEST(XqbField, NameAndConditions) {
  auto field = xqb_Field::Create();
  field->SetDBName("dbo.Order Date");
  EXPECT_EQ(field->DBName(), "dbo.[Order Date]");
  auto shared = xqb_Conditions::Create();
  field->SetConditions(shared);
  EXPECT_EQ(field->Conditions(), shared);
  field->SetConditions(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { field->Conditions(); }, kErrObjectVariableNotSet));
}

}  // namespace
}  // namespace brix
