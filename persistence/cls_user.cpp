// The user record's persistence: its keys in order, the second "GroupPriority" included.
#include "persistence/cls_user.h"

#include "persistence/record_row.h"
#include "runtime/error.h"

namespace brix {

const std::vector<PropertyRow<clsUser>>& clsUser::Rows() {
  using property_rows::Member;
  static const std::vector<PropertyRow<clsUser>> rows = {
      Member("ID", &clsUser::id_),
      Member("UserName", &clsUser::user_name_),
      Member("Parola", &clsUser::parola_),
      Member("FullName", &clsUser::full_name_),
      Member("JobTitle", &clsUser::job_title_),
      Member("EMail", &clsUser::e_mail_),
      Member("Department", &clsUser::department_),
      Member("Phone", &clsUser::phone_),
      Member("MobilePhone", &clsUser::mobile_phone_),
      Member("GroupName", &clsUser::group_name_),
      Member("GroupPriority", &clsUser::group_priority_),
      Member("UserApplication", &clsUser::user_application_),
      Member("UserHDDSerial", &clsUser::user_hdd_serial_),
      Member("UserIP", &clsUser::user_ip_),
      Member("UserSession", &clsUser::user_session_),
      Member("UserLanguage", &clsUser::user_language_),
      Member("UserLayout", &clsUser::user_layout_),
      Member("PN_USERDEFSTR1", &clsUser::user_def_str1_),
      Member("PN_USERDEFSTR2", &clsUser::user_def_str2_),
      Member("PN_USERDEFSTR3", &clsUser::user_def_str3_),
      Member("PN_USERDEFSTR4", &clsUser::user_def_str4_),
      Member("PN_USERDEFSTR5", &clsUser::user_def_str5_),
      Member("U_ASISTENT0", &clsUser::str_asistent0_),
      Member("U_ASISTENT1", &clsUser::str_asistent1_),
      Member("U_ASISTENT2", &clsUser::str_asistent2_),
      Member("U_ASISTENT3", &clsUser::str_asistent3_),
      Member("U_ASISTENT4", &clsUser::str_asistent4_),
      Member("U_ASISTENT5", &clsUser::str_asistent5_),
      Member("CanAccessReports", &clsUser::can_access_reports_),
      Member("CanModifyLookup", &clsUser::can_modify_lookup_),
      Member("CanModifyUsers", &clsUser::can_modify_users_),
      Member("CanSwitchUsers", &clsUser::can_switch_users_),
      Member("CanAccessFinancialData", &clsUser::can_access_financial_data_),
      Member("GroupPriority", &clsUser::group_priority_),  // written twice on purpose
      Member("USERDMAccessRights", &clsUser::dm_access_rights_),
  };
  return rows;
}

clsUser::clsUser() { RegisterRecordClasses(); }

std::shared_ptr<clsUser> clsUser::Create() { return std::shared_ptr<clsUser>(new clsUser()); }

void clsUser::WriteProperties(PropertyBag& PropBag) { PersistRows(Rows(), *this, PropBag, true); }

void clsUser::ReadProperties(PropertyBag& PropBag) { PersistRows(Rows(), *this, PropBag, false); }

}  // namespace brix
