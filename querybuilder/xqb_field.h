// One column of a query table: names, types, presentation, statement roles, script attributes,
// the clauses it offers and its conditions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "persistence/ixml_prop_bag.h"
#include "querybuilder/model_collection.h"
#include "querybuilder/xqb_conditions.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/keyed_collection.h"
#include "runtime/variant.h"

namespace brix {

/// A field of a table. Properties are plain stored values unless noted; defaults are those of a
/// new field (which does not build its available-clause list: it starts empty).
class xqb_Field : public IndexedItem, public IXMLPropBag {
 public:
  static std::shared_ptr<xqb_Field> Create();
  xqb_Field(const xqb_Field&) = delete;
  xqb_Field& operator=(const xqb_Field&) = delete;

  std::string TypeName() const override;

  // Persistence in a query definition document (defined with the document's code).
  void WriteProperties(XMLPropBag& PropertyBag) override;
  void ReadProperties(XMLPropBag& PropertyBag) override;

  /// Marks a field held by the full-text index. Default False.
  bool IsDTIndex() const { return is_dt_index_; }
  void SetIsDTIndex(bool value) { is_dt_index_ = value; }

  /// Database name as stored: the setter stores `NormalizeDBName(value)`. Default "".
  const std::string& DBName() const { return db_name_; }
  void SetDBName(std::string_view value);

  /// Default True.
  bool UseInStatement() const { return use_in_statement_; }
  void SetUseInStatement(bool value) { use_in_statement_ = value; }

  /// Type in the database; does not touch the available clauses. Default `qbe_DataString`.
  qbe_DataType DBType() const { return db_type_; }
  void SetDBType(qbe_DataType value) { db_type_ = value; }

  /// Type as which the field is shown and filtered. Default `qbe_DataString`. Every assignment,
  /// even of the same value, rebuilds the available-clause list from the type's defaults.
  qbe_DataType ShowAsType() const { return show_as_type_; }
  void SetShowAsType(qbe_DataType value);

  const std::string& Alias() const { return alias_; }
  void SetAlias(std::string value) { alias_ = std::move(value); }

  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string value) { caption_ = std::move(value); }

  const std::string& CalculatedFormula() const { return calculated_formula_; }
  void SetCalculatedFormula(std::string value) { calculated_formula_ = std::move(value); }

  std::int16_t OrderByLevel() const { return order_by_level_; }
  void SetOrderByLevel(std::int16_t value) { order_by_level_ = value; }

  /// Default `qbe_SortNone`.
  qbe_SortType OrderByOrder() const { return order_by_order_; }
  void SetOrderByOrder(qbe_SortType value) { order_by_order_ = value; }

  std::int16_t GroupByLevel() const { return group_by_level_; }
  void SetGroupByLevel(std::int16_t value) { group_by_level_ = value; }

  /// The field of another table that this one joins with. Default "".
  const std::string& LinksWithField() const { return links_with_field_; }
  void SetLinksWithField(std::string value) { links_with_field_ = std::move(value); }

  bool HasScriptAsSource() const { return has_script_as_source_; }
  void SetHasScriptAsSource(bool value) { has_script_as_source_ = value; }

  const std::string& Script() const { return script_; }
  void SetScript(std::string value) { script_ = std::move(value); }

  const std::string& ScriptLanguage() const { return script_language_; }
  void SetScriptLanguage(std::string value) { script_language_ = std::move(value); }

  const std::string& RunAt() const { return run_at_; }
  void SetRunAt(std::string value) { run_at_ = std::move(value); }

  const std::string& DefaultScriptProc() const { return default_script_proc_; }
  void SetDefaultScriptProc(std::string value) { default_script_proc_ = std::move(value); }

  bool ExecScriptAfterRetrieve() const { return exec_script_after_retrieve_; }
  void SetExecScriptAfterRetrieve(bool value) { exec_script_after_retrieve_ = value; }

  /// Default False (unlike a new condition's).
  bool IsEditable() const { return is_editable_; }
  void SetIsEditable(bool value) { is_editable_ = value; }

  bool IsRequired() const { return is_required_; }
  void SetIsRequired(bool value) { is_required_ = value; }

  /// Default `qbe_ControlText`.
  qbe_ControlType ControlType() const { return control_type_; }
  void SetControlType(qbe_ControlType value) { control_type_ = value; }

  /// Default True.
  bool IsAvailable() const { return is_available_; }
  void SetIsAvailable(bool value) { is_available_ = value; }

  /// Display width of the column. Default 1500.
  std::int32_t Latime() const { return latime_; }
  void SetLatime(std::int32_t value) { latime_ = value; }

  /// Default True.
  bool IsVisible() const { return is_visible_; }
  void SetIsVisible(bool value) { is_visible_ = value; }

  bool IsReturned() const { return is_returned_; }
  void SetIsReturned(bool value) { is_returned_ = value; }

  /// Default `qbe_AggregateNone`.
  qbe_AggregateFunctionType AggregateFunction() const { return aggregate_function_; }
  void SetAggregateFunction(qbe_AggregateFunctionType value) { aggregate_function_ = value; }

  bool IsGroupField() const { return is_group_field_; }
  void SetIsGroupField(bool value) { is_group_field_ = value; }

  std::int16_t GroupLevel() const { return group_level_; }
  void SetGroupLevel(std::int16_t value) { group_level_ = value; }

  qbe_SortType GroupOrder() const { return group_order_; }
  void SetGroupOrder(qbe_SortType value) { group_order_ = value; }

  bool IsSortField() const { return is_sort_field_; }
  void SetIsSortField(bool value) { is_sort_field_ = value; }

  std::int16_t SortLevel() const { return sort_level_; }
  void SetSortLevel(std::int16_t value) { sort_level_ = value; }

  qbe_SortType SortOrder() const { return sort_order_; }
  void SetSortOrder(qbe_SortType value) { sort_order_ = value; }

  std::int16_t AppearanceOrder() const { return appearance_order_; }
  void SetAppearanceOrder(std::int16_t value) { appearance_order_ = value; }

  std::int16_t UIOrder() const { return ui_order_; }
  void SetUIOrder(std::int16_t value) { ui_order_ = value; }

  /// Source of the value list offered for the field's conditions. Default "".
  const std::string& ValueListSource() const { return value_list_source_; }
  void SetValueListSource(std::string value) { value_list_source_ = std::move(value); }

  /// True when "|" + the decimal `clause` + "|" occurs in the available-clause list ("" offers
  /// nothing); so clause 1 is not found in |11|.
  bool ClauseAvailable(qbe_ClauseOperator clause) const;
  /// Appends the clause unless it is available: "" becomes |n|, |3| becomes |3|n|.
  void SetClauseAvailable(qbe_ClauseOperator clause);
  /// Removes every |n| of an available clause; a list left as "|" becomes "".
  void UnsetClauseAvailable(qbe_ClauseOperator clause);

  /// The field's conditions (the held collection itself). Default a new empty collection.
  /// Raises 91 when a null collection was assigned.
  std::shared_ptr<xqb_Conditions> Conditions() const;
  /// Stores the given collection itself (shared with the caller); null is allowed and makes the
  /// getter raise 91.
  void SetConditions(std::shared_ptr<xqb_Conditions> value) { conditions_ = std::move(value); }

  const std::string& Tag() const { return tag_; }
  void SetTag(std::string value) { tag_ = std::move(value); }

  /// A new collection (1-based, no keys) of the available clause numbers, in the fixed candidate
  /// order of `ShowAsType`: a Boolean field lists 3 whatever its list holds; another type with
  /// defaults lists every candidate when the list is empty, else the available ones; a type
  /// without defaults lists nothing. An edited date list never lists `qbe_ClauseThisMonth`.
  KeyedCollection<std::int32_t> ReturnAvailableClauses() const;

  /// Texts of the catalogue; they do not read the field. `ClauseDescription()` describes clause 0
  /// and is "".
  std::string ClauseDescription(
      qbe_ClauseOperator clause = static_cast<qbe_ClauseOperator>(0)) const;
  std::string DataTypeDescription(qbe_DataType data_type) const;
  std::string SortTypeDescription(qbe_SortType sort_type) const;
  std::string AggregateFunctionDescription(qbe_AggregateFunctionType aggregate_function) const;

  /// Replaces the available-clause list by the defaults of `ShowAsType`; returns Empty.
  Variant ConstructDefaultAvailableClauses();

  /// The available-clause list as stored and persisted ("|1|3|", "" for none). Not a published
  /// property: the definition document saves and restores it under "AvailableClauses".
  const std::string& AvailableClauses() const { return available_clauses_; }
  /// Restores a persisted available-clause list as it stands.
  void SetAvailableClauses(std::string value) { available_clauses_ = std::move(value); }

 private:
  xqb_Field();

  std::shared_ptr<xqb_Conditions> conditions_;
  std::string db_name_;
  bool use_in_statement_ = true;
  qbe_DataType db_type_ = qbe_DataString;
  qbe_DataType show_as_type_ = qbe_DataString;
  std::string alias_;
  std::string caption_;
  std::string calculated_formula_;
  std::int16_t order_by_level_ = 0;
  qbe_SortType order_by_order_ = qbe_SortNone;
  std::int16_t group_by_level_ = 0;
  std::string links_with_field_;
  bool has_script_as_source_ = false;
  std::string script_;
  std::string script_language_;
  std::string run_at_;
  std::string default_script_proc_;
  bool exec_script_after_retrieve_ = false;
  bool is_editable_ = false;
  bool is_required_ = false;
  qbe_ControlType control_type_ = qbe_ControlText;
  bool is_available_ = true;
  std::int32_t latime_ = 1500;
  bool is_visible_ = true;
  bool is_returned_ = false;
  qbe_AggregateFunctionType aggregate_function_ = qbe_AggregateNone;
  bool is_group_field_ = false;
  std::int16_t group_level_ = 0;
  qbe_SortType group_order_ = qbe_SortNone;
  bool is_sort_field_ = false;
  std::int16_t sort_level_ = 0;
  qbe_SortType sort_order_ = qbe_SortNone;
  std::int16_t appearance_order_ = 0;
  std::int16_t ui_order_ = 0;
  std::string value_list_source_;
  std::string available_clauses_;
  std::string tag_;
  bool is_dt_index_ = false;
};

}  // namespace brix
