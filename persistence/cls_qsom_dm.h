// The saved query record: identity, category, the query definition text, rights, stamps,
// report grouping, document codes and report files, persisted through a property bag.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/property_bag.h"

namespace brix {

template <class T>
struct PropertyRow;

/// One saved query or report definition as a catalogue keeps it. New records hold empty texts, 0
/// and False. The persisted order keeps "AS_G6" before "AS_G1", as saved records have it.
class clsQSOM_DM : public Persistable {
 public:
  static std::shared_ptr<clsQSOM_DM> Create();
  clsQSOM_DM(const clsQSOM_DM&) = delete;
  clsQSOM_DM& operator=(const clsQSOM_DM&) = delete;

  std::string TypeName() const override { return "clsQSOM_DM"; }
  std::string PersistentClassName() const override { return "clsQSOM_DM"; }

  /// Writes every key in persistence order, each with no default.
  void WriteProperties(PropertyBag& PropBag) override;
  /// Reads every key in the same order, with no default: a missing key raises 327, and a failure
  /// raises with the source "[QSOM_DM.Class_ReadProperties]" (writing:
  /// "[QSOM_DM.Class_WriteProperties]"), the failure's number and "Unable to ... the saved query
  /// record", CR LF, "Reason: " and its text.
  void ReadProperties(PropertyBag& PropBag) override;

  const std::string& ID() const { return id_; }
  void SetID(std::string value) { id_ = std::move(value); }
  const std::string& Name() const { return name_; }
  void SetName(std::string value) { name_ = std::move(value); }
  const std::string& Category() const { return category_; }
  void SetCategory(std::string value) { category_ = std::move(value); }
  const std::string& Description() const { return description_; }
  void SetDescription(std::string value) { description_ = std::move(value); }
  const std::string& UsedFor() const { return used_for_; }
  void SetUsedFor(std::string value) { used_for_ = std::move(value); }
  const std::string& QueryDef() const { return query_def_; }
  void SetQueryDef(std::string value) { query_def_ = std::move(value); }
  bool IsEditable() const { return is_editable_; }
  void SetIsEditable(bool value) { is_editable_ = value; }
  const std::string& AccessRights() const { return access_rights_; }
  void SetAccessRights(std::string value) { access_rights_ = std::move(value); }
  const std::string& CreatDe() const { return creat_de_; }
  void SetCreatDe(std::string value) { creat_de_ = std::move(value); }
  std::int32_t CreatData() const { return creat_data_; }
  void SetCreatData(std::int32_t value) { creat_data_ = value; }
  const std::string& CreatOra() const { return creat_ora_; }
  void SetCreatOra(std::string value) { creat_ora_ = std::move(value); }
  const std::string& ModificatDe() const { return modificat_de_; }
  void SetModificatDe(std::string value) { modificat_de_ = std::move(value); }
  std::int32_t ModificatData() const { return modificat_data_; }
  void SetModificatData(std::int32_t value) { modificat_data_ = value; }
  const std::string& ModificatOra() const { return modificat_ora_; }
  void SetModificatOra(std::string value) { modificat_ora_ = std::move(value); }
  const std::string& G6() const { return g6_; }
  void SetG6(std::string value) { g6_ = std::move(value); }
  const std::string& G1() const { return g1_; }
  void SetG1(std::string value) { g1_ = std::move(value); }
  const std::string& G1D() const { return g1_d_; }
  void SetG1D(std::string value) { g1_d_ = std::move(value); }
  const std::string& G2() const { return g2_; }
  void SetG2(std::string value) { g2_ = std::move(value); }
  const std::string& G2D() const { return g2_d_; }
  void SetG2D(std::string value) { g2_d_ = std::move(value); }
  const std::string& G3() const { return g3_; }
  void SetG3(std::string value) { g3_ = std::move(value); }
  const std::string& G3D() const { return g3_d_; }
  void SetG3D(std::string value) { g3_d_ = std::move(value); }
  const std::string& G4() const { return g4_; }
  void SetG4(std::string value) { g4_ = std::move(value); }
  const std::string& G4D() const { return g4_d_; }
  void SetG4D(std::string value) { g4_d_ = std::move(value); }
  const std::string& G5() const { return g5_; }
  void SetG5(std::string value) { g5_ = std::move(value); }
  const std::string& G5D() const { return g5_d_; }
  void SetG5D(std::string value) { g5_d_ = std::move(value); }
  bool UseGrupari() const { return use_grupari_; }
  void SetUseGrupari(bool value) { use_grupari_ = value; }
  bool UseIerarhic() const { return use_ierarhic_; }
  void SetUseIerarhic(bool value) { use_ierarhic_ = value; }
  bool UseTematica() const { return use_tematica_; }
  void SetUseTematica(bool value) { use_tematica_ = value; }
  bool UseTipAct() const { return use_tip_act_; }
  void SetUseTipAct(bool value) { use_tip_act_ = value; }
  bool UseTipPub() const { return use_tip_pub_; }
  void SetUseTipPub(bool value) { use_tip_pub_ = value; }
  std::int32_t CodSectiune() const { return cod_sectiune_; }
  void SetCodSectiune(std::int32_t value) { cod_sectiune_ = value; }
  std::int32_t Cod_DocStart() const { return cod__doc_start_; }
  void SetCod_DocStart(std::int32_t value) { cod__doc_start_ = value; }
  std::int32_t Cod_DocCrt() const { return cod__doc_crt_; }
  void SetCod_DocCrt(std::int32_t value) { cod__doc_crt_ = value; }
  std::int32_t Cod_DocEnd() const { return cod__doc_end_; }
  void SetCod_DocEnd(std::int32_t value) { cod__doc_end_ = value; }
  const std::string& CssFile() const { return css_file_; }
  void SetCssFile(std::string value) { css_file_ = std::move(value); }
  const std::string& RpxDesign() const { return rpx_design_; }
  void SetRpxDesign(std::string value) { rpx_design_ = std::move(value); }

 private:
  clsQSOM_DM();
  static const std::vector<PropertyRow<clsQSOM_DM>>& Rows();

  std::string id_;
  std::string name_;
  std::string category_;
  std::string description_;
  std::string used_for_;
  std::string query_def_;
  bool is_editable_ = false;
  std::string access_rights_;
  std::string creat_de_;
  std::int32_t creat_data_ = 0;
  std::string creat_ora_;
  std::string modificat_de_;
  std::int32_t modificat_data_ = 0;
  std::string modificat_ora_;
  std::string g6_;
  std::string g1_;
  std::string g1_d_;
  std::string g2_;
  std::string g2_d_;
  std::string g3_;
  std::string g3_d_;
  std::string g4_;
  std::string g4_d_;
  std::string g5_;
  std::string g5_d_;
  bool use_grupari_ = false;
  bool use_ierarhic_ = false;
  bool use_tematica_ = false;
  bool use_tip_act_ = false;
  bool use_tip_pub_ = false;
  std::int32_t cod_sectiune_ = 0;
  std::int32_t cod__doc_start_ = 0;
  std::int32_t cod__doc_crt_ = 0;
  std::int32_t cod__doc_end_ = 0;
  std::string css_file_;
  std::string rpx_design_;
};

}  // namespace brix
