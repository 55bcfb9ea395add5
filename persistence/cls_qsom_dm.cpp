// The saved query record's persistence: its keys in order, "AS_G6" before "AS_G1".
#include "persistence/cls_qsom_dm.h"

#include <array>
#include <variant>

#include "persistence/record_row.h"
#include "runtime/error.h"

namespace brix {

struct clsQSOM_DM::Row : RecordRow<clsQSOM_DM> {};

const clsQSOM_DM::Row* clsQSOM_DM::Rows(std::size_t& count) {
  static const std::array<Row, 36> rows = {{
      {"ID", &clsQSOM_DM::id_},
      {"Name", &clsQSOM_DM::name_},
      {"Category", &clsQSOM_DM::category_},
      {"Description", &clsQSOM_DM::description_},
      {"UsedFor", &clsQSOM_DM::used_for_},
      {"QueryDef", &clsQSOM_DM::query_def_},
      {"IsEditable", &clsQSOM_DM::is_editable_},
      {"AccessRights", &clsQSOM_DM::access_rights_},
      {"CreatDe", &clsQSOM_DM::creat_de_},
      {"CreatData", &clsQSOM_DM::creat_data_},
      {"CreatOra", &clsQSOM_DM::creat_ora_},
      {"ModificatDe", &clsQSOM_DM::modificat_de_},
      {"ModificatData", &clsQSOM_DM::modificat_data_},
      {"ModificatOra", &clsQSOM_DM::modificat_ora_},
      {"AS_G6", &clsQSOM_DM::g6_},
      {"AS_G1", &clsQSOM_DM::g1_},
      {"AS_G1D", &clsQSOM_DM::g1_d_},
      {"AS_G2", &clsQSOM_DM::g2_},
      {"AS_G2D", &clsQSOM_DM::g2_d_},
      {"AS_G3", &clsQSOM_DM::g3_},
      {"AS_G3D", &clsQSOM_DM::g3_d_},
      {"AS_G4", &clsQSOM_DM::g4_},
      {"AS_G4D", &clsQSOM_DM::g4_d_},
      {"AS_G5", &clsQSOM_DM::g5_},
      {"AS_G5D", &clsQSOM_DM::g5_d_},
      {"AS_USEGRUPARI", &clsQSOM_DM::use_grupari_},
      {"AS_USEIERARHIC", &clsQSOM_DM::use_ierarhic_},
      {"AS_USETEMATICA", &clsQSOM_DM::use_tematica_},
      {"AS_USETIPACT", &clsQSOM_DM::use_tip_act_},
      {"AS_USETIPPUB", &clsQSOM_DM::use_tip_pub_},
      {"AS_CODSECTIUNE", &clsQSOM_DM::cod_sectiune_},
      {"AS_COD_DOCSTART", &clsQSOM_DM::cod__doc_start_},
      {"AS_COD_DOCCRT", &clsQSOM_DM::cod__doc_crt_},
      {"AS_COD_DOCEND", &clsQSOM_DM::cod__doc_end_},
      {"AS_STRCSS", &clsQSOM_DM::css_file_},
      {"AS_STRRPX", &clsQSOM_DM::rpx_design_},
  }};
  count = rows.size();
  return rows.data();
}

clsQSOM_DM::clsQSOM_DM() { RegisterRecordClasses(); }

std::shared_ptr<clsQSOM_DM> clsQSOM_DM::Create() {
  return std::shared_ptr<clsQSOM_DM>(new clsQSOM_DM());
}

void clsQSOM_DM::WriteProperties(PropertyBag& PropBag) {
  static constexpr RecordTrap kTrap{"[QSOM_DM.Class_WriteProperties]",
                                    "Unable to write the saved query record"};
  std::size_t count = 0;
  const Row* rows = Rows(count);
  PersistRows(rows, count, *this, PropBag, true, &kTrap);
}

void clsQSOM_DM::ReadProperties(PropertyBag& PropBag) {
  static constexpr RecordTrap kTrap{"[QSOM_DM.Class_ReadProperties]",
                                    "Unable to read the saved query record"};
  std::size_t count = 0;
  const Row* rows = Rows(count);
  PersistRows(rows, count, *this, PropBag, false, &kTrap);
}

}  // namespace brix
