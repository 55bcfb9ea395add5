// Field defaults, the available-clause list (string rules, defaults per type) and its listing.
#include "querybuilder/xqb_field.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::RaisesRuntimeError;

std::vector<std::int32_t> Listed(const xqb_Field& field) {
  KeyedCollection<std::int32_t> listed = field.ReturnAvailableClauses();
  return {listed.begin(), listed.end()};
}

const std::vector<std::int32_t> kStringClauses = {2, 3, 10, 11, 12, 13, 17, 19, 4, 5, 8, 9, 6, 20};

TEST(XqbField, NewFieldDefaults) {
  auto field = xqb_Field::Create();
  EXPECT_EQ(field->DBType(), qbe_DataString);
  EXPECT_EQ(field->ShowAsType(), qbe_DataString);
  EXPECT_EQ(field->AvailableClauses(), "");
  EXPECT_FALSE(field->ClauseAvailable(qbe_ClauseEqualTo));
  EXPECT_EQ(Listed(*field), kStringClauses);
  EXPECT_EQ(field->Latime(), 1500);
  EXPECT_TRUE(field->IsVisible());
  EXPECT_TRUE(field->IsAvailable());
  EXPECT_TRUE(field->UseInStatement());
  EXPECT_FALSE(field->IsEditable());
  EXPECT_FALSE(field->IsDTIndex());
  EXPECT_EQ(field->ControlType(), qbe_ControlText);
  EXPECT_EQ(field->OrderByOrder(), qbe_SortNone);
  EXPECT_EQ(field->AggregateFunction(), qbe_AggregateNone);
  EXPECT_EQ(field->UIOrder(), 0);
  EXPECT_EQ(field->Conditions()->Count(), 0);
  EXPECT_EQ(field->ClauseDescription(), "");
  EXPECT_EQ(field->ClauseDescription(qbe_ClauseToday), "astazi");
  EXPECT_EQ(field->DataTypeDescription(qbe_DataMemo), "Memo");
  field->SetShowAsType(qbe_DataString);
  EXPECT_TRUE(field->ClauseAvailable(qbe_ClauseEqualTo));
}

TEST(XqbField, DefaultClauseListPerShowAsType) {
  struct Case {
    std::int32_t show_as_type;
    const char* list;
  } const cases[] = {
      {qbe_DataBoolean, "|3|"},
      {qbe_DataDate, "|1|3|4|5|8|9|11|18|14|16|15|21|22|23|24|28|29|6|20|"},
      {qbe_DataMemo, "|2|3|10|11|12|13|17|19|4|5|8|9|6|20|"},
      {qbe_DataString, "|2|3|10|11|12|13|17|19|4|5|8|9|6|20|"},
      {qbe_DataNumeric, "|1|3|4|5|8|9|11|17|19|6|20|"},
      {qbe_DataDecimal, "|1|3|4|5|8|9|11|17|19|6|20|"},
      {qbe_DataUserDefined3, "|25|26|27|"},
      {qbe_DataTime, "|30|31|32|1|3|4|5|8|9|11|6|20|"},
      {qbe_DataBLOB, ""},
      {qbe_DataUTCDate, ""},
      {qbe_DataUserDefined1, ""},
      {qbe_DataUserDefined2, ""},
      {0, ""},
      {13, ""},
  };
  for (const auto& c : cases) {
    auto field = xqb_Field::Create();
    field->SetClauseAvailable(qbe_ClauseIsNull);
    field->SetShowAsType(static_cast<qbe_DataType>(c.show_as_type));
    EXPECT_EQ(field->AvailableClauses(), c.list) << c.show_as_type;
    EXPECT_TRUE(field->ConstructDefaultAvailableClauses().IsEmpty());
  }
}

TEST(XqbField, ClauseListStringRules) {
  enum Op { kSet, kUnset, kTest };
  struct Case {
    const char* before;
    Op op;
    std::int32_t clause;
    const char* after;
    bool available;  // for kTest
  } const cases[] = {
      {"", kSet, 3, "|3|", false},
      {"|3|", kSet, 5, "|3|5|", false},
      {"|3|", kSet, 3, "|3|", false},
      {"|3|", kUnset, 3, "", false},
      {"|3|5|", kUnset, 3, "|5|", false},
      {"|3|5|", kUnset, 7, "|3|5|", false},
      {"|3|3|", kUnset, 3, "|3|", false},  // one left-to-right pass
      {"|11|1|", kUnset, 1, "|11|", false},
      {"|11|", kTest, 1, "|11|", false},
      {"|11|", kTest, 11, "|11|", true},
      {"|1|3|", kTest, 3, "|1|3|", true},
      {"", kTest, 3, "", false},
  };
  for (const auto& c : cases) {
    auto field = xqb_Field::Create();
    field->SetAvailableClauses(c.before);
    auto clause = static_cast<qbe_ClauseOperator>(c.clause);
    if (c.op == kSet) field->SetClauseAvailable(clause);
    if (c.op == kUnset) field->UnsetClauseAvailable(clause);
    if (c.op == kTest) {
      EXPECT_EQ(field->ClauseAvailable(clause), c.available) << c.before;
    }
    EXPECT_EQ(field->AvailableClauses(), c.after) << c.before << " " << c.clause;
  }
}

TEST(XqbField, ListingFollowsCandidateOrder) {
  std::vector<std::int32_t> date_defaults = {1,  3,  4,  5,  8,  9,  11, 18, 14, 16,
                                             15, 21, 22, 23, 24, 28, 29, 6,  20};
  std::vector<std::int32_t> date_listed = date_defaults;
  std::erase(date_listed, 16);
  std::vector<std::int32_t> date_without_1 = date_listed;
  std::erase(date_without_1, 1);
  std::vector<std::int32_t> all_strings_unset = kStringClauses;

  struct Case {
    const char* name;
    qbe_DataType show_as_type;
    std::vector<std::int32_t> unset;
    const char* list;  // replaces the list when not null
    std::vector<std::int32_t> expected;
  } const cases[] = {
      {"date defaults never list 16", qbe_DataDate, {}, nullptr, date_listed},
      {"date without 1", qbe_DataDate, {1}, nullptr, date_without_1},
      {"empty date list lists 16", qbe_DataDate, {}, "", date_defaults},
      {"string list emptied by hand", qbe_DataString, all_strings_unset, nullptr, kStringClauses},
      {"Boolean lists 3 regardless", qbe_DataBoolean, {3}, nullptr, {3}},
      {"Boolean without 3 in its list", qbe_DataBoolean, {}, "|5|", {3}},
      {"hand-set clauses on BLOB", qbe_DataBLOB, {}, "|3|2|", {}},
      {"candidate order, not list order", qbe_DataString, {}, "|3|99|7|2|", {2, 3}},
      {"full-text type", qbe_DataUserDefined3, {26}, nullptr, {25, 27}},
  };
  for (const auto& c : cases) {
    auto field = xqb_Field::Create();
    field->SetShowAsType(c.show_as_type);
    for (std::int32_t clause : c.unset) {
      field->UnsetClauseAvailable(static_cast<qbe_ClauseOperator>(clause));
    }
    if (c.list) field->SetAvailableClauses(c.list);
    EXPECT_EQ(Listed(*field), c.expected) << c.name;
  }
}

TEST(XqbField, NamesTypesAndConditions) {
  auto field = xqb_Field::Create();
  field->SetDBName("dbo.Order Date");
  EXPECT_EQ(field->DBName(), "dbo.[Order Date]");
  field->SetShowAsType(qbe_DataBoolean);
  field->SetClauseAvailable(qbe_ClauseNotEqual);
  field->SetDBType(qbe_DataNumeric);
  EXPECT_EQ(field->AvailableClauses(), "|3|11|");
  field->SetShowAsType(qbe_DataBoolean);  // the same type again still rebuilds
  EXPECT_EQ(field->AvailableClauses(), "|3|");

  auto shared = xqb_Conditions::Create();
  field->SetConditions(shared);
  EXPECT_EQ(field->Conditions(), shared);
  field->SetConditions(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { field->Conditions(); }, kErrObjectVariableNotSet));
}

}  // namespace
}  // namespace brix
