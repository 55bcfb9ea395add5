// The user record's persistence: its keys in order, the second "GroupPriority" included.
#include "persistence/cls_user.h"

#include <array>
#include <variant>

#include "persistence/record_row.h"
#include "runtime/error.h"

namespace brix {

struct clsUser::Row : RecordRow<clsUser> {};

const clsUser::Row* clsUser::Rows(std::size_t& count) {
  static const std::array<Row, 35> rows = {{
      {"ID", &clsUser::id_},
      {"UserName", &clsUser::user_name_},
      {"Parola", &clsUser::parola_},
      {"FullName", &clsUser::full_name_},
      {"JobTitle", &clsUser::job_title_},
      {"EMail", &clsUser::e_mail_},
      {"Department", &clsUser::department_},
      {"Phone", &clsUser::phone_},
      {"MobilePhone", &clsUser::mobile_phone_},
      {"GroupName", &clsUser::group_name_},
      {"GroupPriority", &clsUser::group_priority_},
      {"UserApplication", &clsUser::user_application_},
      {"UserHDDSerial", &clsUser::user_hdd_serial_},
      {"UserIP", &clsUser::user_ip_},
      {"UserSession", &clsUser::user_session_},
      {"UserLanguage", &clsUser::user_language_},
      {"UserLayout", &clsUser::user_layout_},
      {"PN_USERDEFSTR1", &clsUser::user_def_str1_},
      {"PN_USERDEFSTR2", &clsUser::user_def_str2_},
      {"PN_USERDEFSTR3", &clsUser::user_def_str3_},
      {"PN_USERDEFSTR4", &clsUser::user_def_str4_},
      {"PN_USERDEFSTR5", &clsUser::user_def_str5_},
      {"U_ASISTENT0", &clsUser::str_asistent0_},
      {"U_ASISTENT1", &clsUser::str_asistent1_},
      {"U_ASISTENT2", &clsUser::str_asistent2_},
      {"U_ASISTENT3", &clsUser::str_asistent3_},
      {"U_ASISTENT4", &clsUser::str_asistent4_},
      {"U_ASISTENT5", &clsUser::str_asistent5_},
      {"CanAccessReports", &clsUser::can_access_reports_},
      {"CanModifyLookup", &clsUser::can_modify_lookup_},
      {"CanModifyUsers", &clsUser::can_modify_users_},
      {"CanSwitchUsers", &clsUser::can_switch_users_},
      {"CanAccessFinancialData", &clsUser::can_access_financial_data_},
      {"GroupPriority", &clsUser::group_priority_},  // written twice on purpose
      {"USERDMAccessRights", &clsUser::dm_access_rights_},
  }};
  count = rows.size();
  return rows.data();
}

clsUser::clsUser() { RegisterRecordClasses(); }

std::shared_ptr<clsUser> clsUser::Create() { return std::shared_ptr<clsUser>(new clsUser()); }

void clsUser::WriteProperties(PropertyBag& PropBag) {
  std::size_t count = 0;
  const Row* rows = Rows(count);
  PersistRows(rows, count, *this, PropBag, true);
}

void clsUser::ReadProperties(PropertyBag& PropBag) {
  std::size_t count = 0;
  const Row* rows = Rows(count);
  PersistRows(rows, count, *this, PropBag, false);
}

}  // namespace brix
