// The saved query record's persistence: its keys in order, "AS_G6" before "AS_G1".
#include "persistence/cls_qsom_dm.h"

#include "persistence/record_row.h"
#include "runtime/error.h"

namespace brix {

const std::vector<PropertyRow<clsQSOM_DM>>& clsQSOM_DM::Rows() {
  using property_rows::Member;
  static const std::vector<PropertyRow<clsQSOM_DM>> rows = {
      Member("ID", &clsQSOM_DM::id_),
      Member("Name", &clsQSOM_DM::name_),
      Member("Category", &clsQSOM_DM::category_),
      Member("Description", &clsQSOM_DM::description_),
      Member("UsedFor", &clsQSOM_DM::used_for_),
      Member("QueryDef", &clsQSOM_DM::query_def_),
      Member("IsEditable", &clsQSOM_DM::is_editable_),
      Member("AccessRights", &clsQSOM_DM::access_rights_),
      Member("CreatDe", &clsQSOM_DM::creat_de_),
      Member("CreatData", &clsQSOM_DM::creat_data_),
      Member("CreatOra", &clsQSOM_DM::creat_ora_),
      Member("ModificatDe", &clsQSOM_DM::modificat_de_),
      Member("ModificatData", &clsQSOM_DM::modificat_data_),
      Member("ModificatOra", &clsQSOM_DM::modificat_ora_),
      Member("AS_G6", &clsQSOM_DM::g6_),
      Member("AS_G1", &clsQSOM_DM::g1_),
      Member("AS_G1D", &clsQSOM_DM::g1_d_),
      Member("AS_G2", &clsQSOM_DM::g2_),
      Member("AS_G2D", &clsQSOM_DM::g2_d_),
      Member("AS_G3", &clsQSOM_DM::g3_),
      Member("AS_G3D", &clsQSOM_DM::g3_d_),
      Member("AS_G4", &clsQSOM_DM::g4_),
      Member("AS_G4D", &clsQSOM_DM::g4_d_),
      Member("AS_G5", &clsQSOM_DM::g5_),
      Member("AS_G5D", &clsQSOM_DM::g5_d_),
      Member("AS_USEGRUPARI", &clsQSOM_DM::use_grupari_),
      Member("AS_USEIERARHIC", &clsQSOM_DM::use_ierarhic_),
      Member("AS_USETEMATICA", &clsQSOM_DM::use_tematica_),
      Member("AS_USETIPACT", &clsQSOM_DM::use_tip_act_),
      Member("AS_USETIPPUB", &clsQSOM_DM::use_tip_pub_),
      Member("AS_CODSECTIUNE", &clsQSOM_DM::cod_sectiune_),
      Member("AS_COD_DOCSTART", &clsQSOM_DM::cod__doc_start_),
      Member("AS_COD_DOCCRT", &clsQSOM_DM::cod__doc_crt_),
      Member("AS_COD_DOCEND", &clsQSOM_DM::cod__doc_end_),
      Member("AS_STRCSS", &clsQSOM_DM::css_file_),
      Member("AS_STRRPX", &clsQSOM_DM::rpx_design_),
  };
  return rows;
}

clsQSOM_DM::clsQSOM_DM() { RegisterRecordClasses(); }

std::shared_ptr<clsQSOM_DM> clsQSOM_DM::Create() {
  return std::shared_ptr<clsQSOM_DM>(new clsQSOM_DM());
}

void clsQSOM_DM::WriteProperties(PropertyBag& PropBag) {
  static constexpr RecordTrap kTrap{"[QSOM_DM.Class_WriteProperties]",
                                    "Unable to write the saved query record"};
  PersistRows(Rows(), *this, PropBag, true, &kTrap);
}

void clsQSOM_DM::ReadProperties(PropertyBag& PropBag) {
  static constexpr RecordTrap kTrap{"[QSOM_DM.Class_ReadProperties]",
                                    "Unable to read the saved query record"};
  PersistRows(Rows(), *this, PropBag, false, &kTrap);
}

}  // namespace brix
