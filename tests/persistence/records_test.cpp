// The user and saved-query records: every property through a bag's bytes, the persisted key
// order with its kept oddities, and the errors of a damaged record.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "persistence/cls_qsom_dm.h"
#include "persistence/cls_user.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::Outcome;

std::shared_ptr<clsUser> FullUser() {
  auto user = clsUser::Create();
  user->SetID("17");
  user->SetUserName("ana");
  user->SetParola("p@ss \"ț\"");
  user->SetFullName("Ana Ionescu");
  user->SetGroupPriority("2");
  user->SetUserLayout(-5);
  user->SetUserDefSTR5("cinci");
  user->SetstrASISTENT0("zero");
  user->SetstrASISTENT5("cinci");
  user->SetCanModifyUsers(true);
  user->SetCanAccessFinancialData(true);
  user->SetDMAccessRights("RW");
  return user;
}

std::string UserSummary(const clsUser& u) {
  return u.ID() + "|" + u.UserName() + "|" + u.Parola() + "|" + u.FullName() + "|" +
         u.GroupPriority() + "|" + std::to_string(u.UserLayout()) + "|" + u.UserDefSTR5() + "|" +
         u.strASISTENT0() + "|" + u.strASISTENT5() + "|" + std::to_string(u.CanAccessReports()) +
         std::to_string(u.CanModifyUsers()) + std::to_string(u.CanAccessFinancialData()) + "|" +
         u.DMAccessRights();
}

template <class Record>
std::shared_ptr<Record> ThroughBytes(const std::shared_ptr<Record>& record) {
  auto bag = PropertyBag::Create();
  bag->WriteProperty("R", Variant(record));
  auto copy = PropertyBag::Create();
  copy->SetContents(bag->Contents());
  return std::dynamic_pointer_cast<Record>(copy->ReadProperty("R").AsObject());
}

TEST(ClsUser, EveryPropertySurvivesItsBytesInTheKeptKeyOrder) {
  auto user = FullUser();
  auto copy = ThroughBytes(user);
  ASSERT_TRUE(copy);
  EXPECT_EQ(UserSummary(*copy), UserSummary(*user));
  auto bag = PropertyBag::Create();
  user->WriteProperties(*bag);
  const std::vector<std::string> names = bag->Names();
  ASSERT_EQ(names.size(), 34u);  // "GroupPriority" written twice, stored once
  EXPECT_EQ(names[10], "GroupPriority");
  EXPECT_EQ(names[16], "UserLayout");
  EXPECT_EQ(names[17], "PN_USERDEFSTR1");
  EXPECT_EQ(names[22], "U_ASISTENT0");
  EXPECT_EQ(names.back(), "USERDMAccessRights");
}

TEST(ClsQsomDm, EveryPropertySurvivesItsBytesAndAnErrorNamesTheRecord) {
  auto record = clsQSOM_DM::Create();
  record->SetQueryDef("<PropertyBag><xqb_Query name=\"a<b\"/></PropertyBag>\r\n");
  record->SetG6("six");
  record->SetG1("one");
  record->SetIsEditable(true);
  record->SetCod_DocEnd(-2147483647 - 1);
  record->SetModificatData(45000);
  record->SetRpxDesign("raport.rpx");
  auto copy = ThroughBytes(record);
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->QueryDef() + copy->G6() + copy->G1() + std::to_string(copy->IsEditable()) +
                std::to_string(copy->Cod_DocEnd()) + std::to_string(copy->ModificatData()) +
                copy->RpxDesign(),
            record->QueryDef() + "sixone1-214748364845000raport.rpx");
  auto bag = PropertyBag::Create();
  record->WriteProperties(*bag);
  const std::vector<std::string> names = bag->Names();
  ASSERT_EQ(names.size(), 36u);
  EXPECT_EQ(names[14], "AS_G6");
  EXPECT_EQ(names[15], "AS_G1");
  // A stored text where a number belongs, and a missing key.
  bag->WriteProperty("AS_CODSECTIUNE", Variant("x"));
  EXPECT_EQ(Outcome([&] { return clsQSOM_DM::Create()->ReadProperties(*bag), std::string(); }),
            "13 [QSOM_DM.Class_ReadProperties]: Unable to read the saved query record\r\nReason: "
            "Type mismatch");
  EXPECT_EQ(Outcome([&] {
              return clsQSOM_DM::Create()->ReadProperties(*PropertyBag::Create()), std::string();
            }),
            "327 [QSOM_DM.Class_ReadProperties]: Unable to read the saved query record\r\nReason: "
            "Data value named 'ID' not found");
}

}  // namespace
}  // namespace brix
