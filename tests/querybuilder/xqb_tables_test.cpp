// The tables collection: adding by name and by object against the case-sensitive existence test.
#include "querybuilder/xqb_tables.h"

#include <gtest/gtest.h>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::RaisesError;
using V = Variant;

TEST(XqbTables, KeysIgnoreCaseTheExistenceTestsDoNot) {
  auto tables = xqb_Tables::Create();
  auto table = tables->Add(" Order Items ");
  EXPECT_EQ(table->DBName() + "|" + table->Description(), "[Order Items]| Order Items ");
  EXPECT_EQ(tables->Add("B", "Comenzi")->Description(), "Comenzi");
  EXPECT_EQ(tables->Item(V("[order items]")), table);
  EXPECT_FALSE(tables->TableExists("[order items]") || tables->TableExists("Order Items"));
  auto fields = xqb_Fields::Create();
  auto field = fields->Add("Order Date");
  EXPECT_EQ(field->DBName() + "|" + field->Alias() + "|" + field->Caption(),
            "[Order Date]|Order Date|Order Date");
  fields->Add("Name");
  auto table_b = xqb_Table::Create();
  table_b->SetDBName("B");
  auto field_name = xqb_Field::Create();
  field_name->SetDBName("Name");
  const std::string table_exists = "A table with this name already exists!";
  const std::string field_exists = "A field with this name already exists in this table!";
  const std::string lib(kLibraryName), used_key = StandardMessage(kErrKeyAlreadyAssociated);
  // The existence tests compare the given text with the stored names; the keys ignore case.
  // clang-format off
  const std::vector<std::tuple<std::function<void()>, std::int32_t, std::string, std::string>> cases = {
      {[&] { tables->Add("B", "x"); },               kErrTableExists,          "[Add Table]",       table_exists},
      {[&] { tables->AddObjectTable(table_b); },     kErrTableExists,          "[AddObjectTable]",  table_exists},
      {[&] { tables->Add("[ORDER ITEMS]"); },        kErrKeyAlreadyAssociated, lib,                 used_key},
      {[&] { tables->AddObjectTable(nullptr); },     kErrObjectVariableNotSet, lib,                 StandardMessage(91)},
      {[&] { fields->Add("Name"); },                 kErrFieldExists,          "[Add Field]",       field_exists},
      {[&] { fields->AddObjectField(field_name); },  kErrFieldExists,          "[AddObjectField]",  field_exists},
      {[&] { fields->Add("Order Date"); },           kErrKeyAlreadyAssociated, lib,                 used_key},
      {[&] { fields->Add("name"); },                 kErrKeyAlreadyAssociated, lib,                 used_key},
  };
  // clang-format on
  for (const auto& [action, number, source, description] : cases) {
    EXPECT_TRUE(RaisesError(action, number, source, description)) << number << source;
  }
  EXPECT_EQ(tables->Count() * 10 + fields->Count(), 22);
}

}  // namespace
}  // namespace brix
