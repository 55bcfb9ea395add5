// The conditions of one field: a keyed collection by decimal ConditionID, with the duplicate test.
#pragma once

#include <cstdint>
#include <memory>

#include "querybuilder/model_collection.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

class ConditionIndex;

/// A field's conditions in insertion order, keyed by the decimal text of each `ConditionID`.
/// `Item` takes a position or the key text ("4711"); collection errors reach the caller unchanged.
class xqb_Conditions : public ModelCollection<xqb_Condition, ConditionIndex> {
 public:
  static std::shared_ptr<xqb_Conditions> Create();

  std::string TypeName() const override { return "xqb_Conditions"; }

  /// Adds `condition` itself under its current `ConditionID` after the duplicate test on its
  /// `Clause` and `Value`. Raises 0x80040BB8 "[Add Condition]" for a duplicate, 91 for null.
  void AddObjectCondition(std::shared_ptr<xqb_Condition> condition);

  /// Creates, adds and returns a condition with a random `ConditionID` in 0..10000 (not checked
  /// for being free: a used one fails with the collection's 457). Raises 0x80040BB8
  /// "[Add Condition]" when the duplicate test finds one.
  std::shared_ptr<xqb_Condition> Add(qbe_ClauseOperator clause, const Variant& value = Variant(""),
                                     const Variant& secondary_value = Variant(""));

  /// The duplicate test: some condition has `clause`, a `Value` equal to `value` and a
  /// `SecondaryValue` equal to `value`. `secondary_value` is accepted but not consulted. Equality
  /// is the platform's comparison (Null is not equal; an error value, array or Nothing raises).
  /// A search past position 32767 without a match raises 6.
  bool ConditionExists(qbe_ClauseOperator clause, const Variant& value = Variant::Missing(),
                       const Variant& secondary_value = Variant::Missing());

 private:
  xqb_Conditions() = default;

  bool ScanForDuplicate(qbe_ClauseOperator clause, const Variant& value) const;
};

}  // namespace brix
