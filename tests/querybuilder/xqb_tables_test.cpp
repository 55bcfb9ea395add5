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
using V = Variant;

TEST(XqbTables, AddNormalisesTheNameNotTheDescription) {
  auto tables = xqb_Tables::Create();
  auto table = tables->Add(" Order Items ");
  EXPECT_EQ(table->DBName(), "[Order Items]");
  EXPECT_EQ(table->Description(), " Order Items ");
  EXPECT_EQ(tables->Add("B", "Comenzi")->Description(), "Comenzi");
  // The key lookup ignores case; the existence test compares the stored name exactly.
  EXPECT_EQ(tables->Item(V("[order items]")), table);
  EXPECT_FALSE(tables->TableExists("[order items]"));
  EXPECT_FALSE(tables->TableExists("Order Items"));
  EXPECT_TRUE(tables->TableExists("[Order Items]"));
  EXPECT_TRUE(RaisesRuntimeError([&] { tables->Add("[ORDER ITEMS]"); }, kErrKeyAlreadyAssociated));
  EXPECT_TRUE(RaisesError([&] { tables->Add("B", "x"); }, kErrTableExists, "[Add Table]",
                          "A table with this name already exists!"));
  auto other = xqb_Table::Create();
  other->SetDBName("B");
  EXPECT_TRUE(RaisesError([&] { tables->AddObjectTable(other); }, kErrTableExists,
                          "[AddObjectTable]", "A table with this name already exists!"));
  EXPECT_TRUE(RaisesRuntimeError([&] { tables->AddObjectTable(nullptr); }, kErrObjectVariableNotSet));
  EXPECT_EQ(tables->Count(), 2);
}

TEST(XqbFields, AddSetsAliasAndCaptionAndRefusesDuplicates) {
  const std::string exists = "A field with this name already exists in this table!";
  auto fields = xqb_Fields::Create();
  auto field = fields->Add("Order Date");
  EXPECT_EQ(field->DBName() + "|" + field->Alias() + "|" + field->Caption(),
            "[Order Date]|Order Date|Order Date");
  fields->Add("Name");
  EXPECT_TRUE(RaisesError([&] { fields->Add("Name"); }, kErrFieldExists, "[Add Field]", exists));
  auto object = xqb_Field::Create();
  object->SetDBName("Name");
  EXPECT_TRUE(RaisesError([&] { fields->AddObjectField(object); }, kErrFieldExists,
                          "[AddObjectField]", exists));
  // The test compares the given text, the key is the stored one and ignores case.
  EXPECT_TRUE(RaisesRuntimeError([&] { fields->Add("Order Date"); }, kErrKeyAlreadyAssociated));
  EXPECT_TRUE(RaisesRuntimeError([&] { fields->Add("name"); }, kErrKeyAlreadyAssociated));
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
  EXPECT_EQ(fields->Item(V("name")), name);
  fields->Remove(V("Name"));
  EXPECT_FALSE(fields->FieldExists("Other"));
  name->SetDBName("City");  // not held any more: its rename must not matter
  EXPECT_TRUE(fields->FieldExists("City"));
  fields->Remove(V(1));
  EXPECT_FALSE(fields->FieldExists("City"));

  auto tables = xqb_Tables::Create();
  auto table = tables->Add("A");
  tables->Clear();
  table->SetDBName("B");
  EXPECT_FALSE(tables->TableExists("B") || tables->TableExists("A"));
  tables->AddObjectTable(table);
  EXPECT_TRUE(tables->TableExists("B"));
}

TEST(XqbTable, FieldsPropertyHoldsTheGivenCollection) {
  auto table = xqb_Table::Create();
  auto fields = xqb_Fields::Create();
  table->SetFields(fields);
  EXPECT_EQ(table->Fields(), fields);
  table->SetFields(nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { table->Fields(); }, kErrObjectVariableNotSet));
}

}  // namespace
}  // namespace brix
