// The user record: identity, contact, group, session and workstation data, free texts,
// assistants and rights flags, persisted through a property bag.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/property_bag.h"

namespace brix {

template <class T>
struct PropertyRow;

/// The signed-in user as a persistable record. New records hold empty texts, 0 and False. The
/// key "GroupPriority" is written and read twice (after "CanAccessFinancialData" again): saved
/// records carry both, so both stay.
class clsUser : public Persistable {
 public:
  static std::shared_ptr<clsUser> Create();
  clsUser(const clsUser&) = delete;
  clsUser& operator=(const clsUser&) = delete;

  std::string TypeName() const override { return "clsUser"; }
  std::string PersistentClassName() const override { return "clsUser"; }

  /// Writes every key in persistence order, each with no default.
  void WriteProperties(PropertyBag& PropBag) override;
  /// Reads every key in the same order, with no default: a missing key raises 327.
  void ReadProperties(PropertyBag& PropBag) override;

  const std::string& ID() const { return id_; }
  void SetID(std::string value) { id_ = std::move(value); }
  const std::string& UserName() const { return user_name_; }
  void SetUserName(std::string value) { user_name_ = std::move(value); }
  const std::string& Parola() const { return parola_; }
  void SetParola(std::string value) { parola_ = std::move(value); }
  const std::string& FullName() const { return full_name_; }
  void SetFullName(std::string value) { full_name_ = std::move(value); }
  const std::string& JobTitle() const { return job_title_; }
  void SetJobTitle(std::string value) { job_title_ = std::move(value); }
  const std::string& EMail() const { return e_mail_; }
  void SetEMail(std::string value) { e_mail_ = std::move(value); }
  const std::string& Department() const { return department_; }
  void SetDepartment(std::string value) { department_ = std::move(value); }
  const std::string& Phone() const { return phone_; }
  void SetPhone(std::string value) { phone_ = std::move(value); }
  const std::string& MobilePhone() const { return mobile_phone_; }
  void SetMobilePhone(std::string value) { mobile_phone_ = std::move(value); }
  const std::string& GroupName() const { return group_name_; }
  void SetGroupName(std::string value) { group_name_ = std::move(value); }
  const std::string& GroupPriority() const { return group_priority_; }
  void SetGroupPriority(std::string value) { group_priority_ = std::move(value); }
  const std::string& UserApplication() const { return user_application_; }
  void SetUserApplication(std::string value) { user_application_ = std::move(value); }
  const std::string& UserHDDSerial() const { return user_hdd_serial_; }
  void SetUserHDDSerial(std::string value) { user_hdd_serial_ = std::move(value); }
  const std::string& UserIP() const { return user_ip_; }
  void SetUserIP(std::string value) { user_ip_ = std::move(value); }
  const std::string& UserSession() const { return user_session_; }
  void SetUserSession(std::string value) { user_session_ = std::move(value); }
  const std::string& UserLanguage() const { return user_language_; }
  void SetUserLanguage(std::string value) { user_language_ = std::move(value); }
  std::int32_t UserLayout() const { return user_layout_; }
  void SetUserLayout(std::int32_t value) { user_layout_ = value; }
  const std::string& UserDefSTR1() const { return user_def_str1_; }
  void SetUserDefSTR1(std::string value) { user_def_str1_ = std::move(value); }
  const std::string& UserDefSTR2() const { return user_def_str2_; }
  void SetUserDefSTR2(std::string value) { user_def_str2_ = std::move(value); }
  const std::string& UserDefSTR3() const { return user_def_str3_; }
  void SetUserDefSTR3(std::string value) { user_def_str3_ = std::move(value); }
  const std::string& UserDefSTR4() const { return user_def_str4_; }
  void SetUserDefSTR4(std::string value) { user_def_str4_ = std::move(value); }
  const std::string& UserDefSTR5() const { return user_def_str5_; }
  void SetUserDefSTR5(std::string value) { user_def_str5_ = std::move(value); }
  const std::string& strASISTENT0() const { return str_asistent0_; }
  void SetstrASISTENT0(std::string value) { str_asistent0_ = std::move(value); }
  const std::string& strASISTENT1() const { return str_asistent1_; }
  void SetstrASISTENT1(std::string value) { str_asistent1_ = std::move(value); }
  const std::string& strASISTENT2() const { return str_asistent2_; }
  void SetstrASISTENT2(std::string value) { str_asistent2_ = std::move(value); }
  const std::string& strASISTENT3() const { return str_asistent3_; }
  void SetstrASISTENT3(std::string value) { str_asistent3_ = std::move(value); }
  const std::string& strASISTENT4() const { return str_asistent4_; }
  void SetstrASISTENT4(std::string value) { str_asistent4_ = std::move(value); }
  const std::string& strASISTENT5() const { return str_asistent5_; }
  void SetstrASISTENT5(std::string value) { str_asistent5_ = std::move(value); }
  bool CanAccessReports() const { return can_access_reports_; }
  void SetCanAccessReports(bool value) { can_access_reports_ = value; }
  bool CanModifyLookup() const { return can_modify_lookup_; }
  void SetCanModifyLookup(bool value) { can_modify_lookup_ = value; }
  bool CanModifyUsers() const { return can_modify_users_; }
  void SetCanModifyUsers(bool value) { can_modify_users_ = value; }
  bool CanSwitchUsers() const { return can_switch_users_; }
  void SetCanSwitchUsers(bool value) { can_switch_users_ = value; }
  bool CanAccessFinancialData() const { return can_access_financial_data_; }
  void SetCanAccessFinancialData(bool value) { can_access_financial_data_ = value; }
  const std::string& DMAccessRights() const { return dm_access_rights_; }
  void SetDMAccessRights(std::string value) { dm_access_rights_ = std::move(value); }

 private:
  clsUser();
  static const std::vector<PropertyRow<clsUser>>& Rows();

  std::string id_;
  std::string user_name_;
  std::string parola_;
  std::string full_name_;
  std::string job_title_;
  std::string e_mail_;
  std::string department_;
  std::string phone_;
  std::string mobile_phone_;
  std::string group_name_;
  std::string group_priority_;
  std::string user_application_;
  std::string user_hdd_serial_;
  std::string user_ip_;
  std::string user_session_;
  std::string user_language_;
  std::int32_t user_layout_ = 0;
  std::string user_def_str1_;
  std::string user_def_str2_;
  std::string user_def_str3_;
  std::string user_def_str4_;
  std::string user_def_str5_;
  std::string str_asistent0_;
  std::string str_asistent1_;
  std::string str_asistent2_;
  std::string str_asistent3_;
  std::string str_asistent4_;
  std::string str_asistent5_;
  bool can_access_reports_ = false;
  bool can_modify_lookup_ = false;
  bool can_modify_users_ = false;
  bool can_switch_users_ = false;
  bool can_access_financial_data_ = false;
  std::string dm_access_rights_;
};

}  // namespace brix
