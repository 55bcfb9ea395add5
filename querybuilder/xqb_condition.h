// One filter on a field: a clause, one or two operands, how it joins the previous condition.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "persistence/ixml_prop_bag.h"
#include "querybuilder/model_collection.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

/// A condition of a field. All properties are plain stored values without validation: any
/// integer is accepted for `Clause` and `WhereClauseLogic`.
class xqb_Condition : public IndexedItem, public IXMLPropBag {
 public:
  static std::shared_ptr<xqb_Condition> Create();
  xqb_Condition(const xqb_Condition&) = delete;
  xqb_Condition& operator=(const xqb_Condition&) = delete;

  std::string TypeName() const override;

  // Persistence in a query definition document (defined with the document's code).
  void WriteProperties(XMLPropBag& PropertyBag) override;
  void ReadProperties(XMLPropBag& PropertyBag) override;

  /// Identity inside its field; the collection key is its decimal text. Default 0.
  std::int32_t ConditionID() const { return condition_id_; }
  void SetConditionID(std::int32_t value) { condition_id_ = value; }

  /// Name of the query parameter that supplies the value. Default "".
  const std::string& ParamName() const { return param_name_; }
  void SetParamName(std::string value) { param_name_ = std::move(value); }

  /// The comparison. Default 0 (no clause).
  qbe_ClauseOperator Clause() const { return clause_; }
  void SetClause(qbe_ClauseOperator value);

  /// How this condition joins the previous one. Default `qbe_LogicAnd`.
  qbe_WhereClauseLogic WhereClauseLogic() const { return where_clause_logic_; }
  void SetWhereClauseLogic(qbe_WhereClauseLogic value) { where_clause_logic_ = value; }

  /// First operand (a copy of the value given). Default Empty.
  const Variant& Value() const { return value_; }
  void SetValue(const Variant& value);

  /// Second operand, the upper bound of `qbe_ClauseBetween`. Default Empty.
  const Variant& SecondaryValue() const { return secondary_value_; }
  void SetSecondaryValue(const Variant& value);

  /// Whether a user may change the condition. Default True.
  bool IsEditable() const { return is_editable_; }
  void SetIsEditable(bool value) { is_editable_ = value; }

  /// Free text for the caller. Default "".
  const std::string& Tag() const { return tag_; }
  void SetTag(std::string value) { tag_ = std::move(value); }

  /// The clause text of `Clause` ("" outside 1..32).
  std::string ClauseDescription() const;
  /// " AND ", " OR " or "" after `WhereClauseLogic`.
  std::string WhereClauseDescription() const;

 private:
  xqb_Condition() = default;

  std::int32_t condition_id_ = 0;
  std::string param_name_;
  qbe_ClauseOperator clause_ = static_cast<qbe_ClauseOperator>(0);
  qbe_WhereClauseLogic where_clause_logic_ = qbe_LogicAnd;
  Variant value_;
  Variant secondary_value_;
  bool is_editable_ = true;
  std::string tag_;
};

}  // namespace brix
