// Tables and fields collections: normalised keys, case-insensitive lookup against the
// case-sensitive existence test, their errors, and the name index under renames.
#include "querybuilder/xqb_tables.h"

#include <gtest/gtest.h>

#include <string>

#include "querybuilder/xqb_fields.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::RaisesError;
using test_support::RaisesRuntimeError;

constexpr const char* kTableExists = "A table with this name already exists!";
constexpr const char* kFieldExists = "A field with this name already exists in this table!";

TEST(XqbTables, AddSetsNameAndDescription) {
  struct Case {
    const char* name;
    const char* description;
    const char* stored_name;
    const char* stored_description;
  } const cases[] = {
      {"Orders", "", "Orders", "Orders"},
      {"Orders", "Comenzi", "Orders", "Comenzi"},
      {"Order Items", "", "[Order Items]", "Order Items"},
      {" Orders ", "", "Orders", " Orders "},
  };
  for (const auto& c : cases) {
    auto tables = xqb_Tables::Create();
    auto table = tables->Add(c.name, c.description);
    EXPECT_EQ(table->DBName(), c.stored_name);
    EXPECT_EQ(table->Description(), c.stored_description);
    EXPECT_EQ(tables->Item(Variant(c.stored_name)), table);
  }
}

TEST(XqbTables, KeyLookupIgnoresCaseTheExistenceTestDoesNot) {
  auto tables = xqb_Tables::Create();
  auto table = tables->Add("Order Items");
  EXPECT_EQ(tables->Item(Variant("[order items]")), table);
  EXPECT_FALSE(tables->TableExists("[order items]"));
  EXPECT_FALSE(tables->TableExists("Order Items"));
  EXPECT_TRUE(tables->TableExists("[Order Items]"));
  EXPECT_TRUE(RaisesRuntimeError([&] { tables->Add("Order Items"); }, kErrKeyAlreadyAssociated));
  EXPECT_TRUE(RaisesRuntimeError([&] { tables->Add("[ORDER ITEMS]"); }, kErrKeyAlreadyAssociated));
  EXPECT_EQ(tables->Count(), 1);
}

TEST(XqbTables, DuplicateNamesRaise1000) {
  auto tables = xqb_Tables::Create();
  tables->Add("Orders");
  EXPECT_TRUE(RaisesError([&] { tables->Add("Orders", "x"); }, kErrTableExists, "[Add Table]",
                          kTableExists));
  auto other = xqb_Table::Create();
  other->SetDBName("Orders");
  EXPECT_TRUE(RaisesError([&] { tables->AddObjectTable(other); }, kErrTableExists,
                          "[AddObjectTable]", kTableExists));
  EXPECT_TRUE(
      RaisesRuntimeError([&] { tables->AddObjectTable(nullptr); }, kErrObjectVariableNotSet));
  tables->Clear();
  EXPECT_EQ(tables->Count(), 0);
  tables->AddObjectTable(other);
  EXPECT_EQ(tables->Item(Variant(1)), other);
}

TEST(XqbFields, AddSetsNameAliasAndCaption) {
  auto fields = xqb_Fields::Create();
  auto field = fields->Add("Total Value");
  EXPECT_EQ(field->DBName(), "[Total Value]");
  EXPECT_EQ(field->Alias(), "Total Value");
  EXPECT_EQ(field->Caption(), "Total Value");
  EXPECT_EQ(fields->Item(Variant("[TOTAL VALUE]")), field);
}

TEST(XqbFields, DuplicatesRaise2000OrTheCollectionError) {
  auto fields = xqb_Fields::Create();
  fields->Add("Name");
  fields->Add("Order Date");
  EXPECT_TRUE(
      RaisesError([&] { fields->Add("Name"); }, kErrFieldExists, "[Add Field]", kFieldExists));
  auto object = xqb_Field::Create();
  object->SetDBName("Name");
  EXPECT_TRUE(RaisesError([&] { fields->AddObjectField(object); }, kErrFieldExists,
                          "[AddObjectField]", kFieldExists));
  // The test compares the given text, the key is the stored one and ignores case.
  EXPECT_TRUE(RaisesRuntimeError([&] { fields->Add("Order Date"); }, kErrKeyAlreadyAssociated));
  EXPECT_TRUE(RaisesRuntimeError([&] { fields->Add("name"); }, kErrKeyAlreadyAssociated));
  EXPECT_FALSE(fields->FieldExists("Order Date"));
  EXPECT_TRUE(fields->FieldExists("[Order Date]"));
  EXPECT_EQ(fields->Count(), 2);
}

TEST(NameIndex, FollowsRenamesRemovalsAndClear) {
  auto fields = xqb_Fields::Create();
  auto name = fields->Add("Name");
  fields->Add("City");
  name->SetDBName("Other");
  EXPECT_TRUE(fields->FieldExists("Other"));
  EXPECT_FALSE(fields->FieldExists("Name"));
  // The collection key stays the one the field was added under.
  EXPECT_EQ(fields->Item(Variant("name")), name);
  EXPECT_TRUE(RaisesRuntimeError([&] { fields->Add("Name"); }, kErrKeyAlreadyAssociated));

  fields->Remove(Variant("Name"));
  EXPECT_FALSE(fields->FieldExists("Other"));
  name->SetDBName("City");  // not held any more: its rename must not matter
  EXPECT_TRUE(fields->FieldExists("City"));
  fields->Remove(Variant(1));
  EXPECT_FALSE(fields->FieldExists("City"));

  auto tables = xqb_Tables::Create();
  auto table = tables->Add("A");
  tables->Clear();
  table->SetDBName("B");
  EXPECT_FALSE(tables->TableExists("B"));
  EXPECT_FALSE(tables->TableExists("A"));
}

TEST(XqbTable, FieldsPropertyHoldsTheGivenCollection) {
  auto table = xqb_Table::Create();
  EXPECT_EQ(table->Fields()->Count(), 0);
  auto fields = xqb_Fields::Create();
  table->SetFields(fields);
  EXPECT_EQ(table->Fields(), fields);
  table->SetFields(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { table->Fields(); }, kErrObjectVariableNotSet));
}

}  // namespace
}  // namespace brix
