// The duplicate-condition index: answers the duplicate test in O(1) while every operand involved
// compares exactly and without error, and defers to the exact scan otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

/// Counts the conditions of one collection by (Clause, Value, SecondaryValue). Operands are
/// "regular" when their comparison can neither raise nor be Null and equality is exact: Empty,
/// String, and Integer, Long, Double, Byte, Boolean and Date (by their numeric value, NaN
/// excluded). A condition with any other operand makes the index step aside.
class ConditionIndex {
 public:
  void Insert(const xqb_Condition& condition);
  void Erase(const xqb_Condition& condition);
  void Clear();

  /// Whether a condition has `clause`, a `Value` equal to `value` and a `SecondaryValue` equal to
  /// `value`; `std::nullopt` when `value` or a held operand is irregular and only the exact scan
  /// (with its errors in position order) can answer.
  std::optional<bool> HasMatch(qbe_ClauseOperator clause, const Variant& value) const;

 private:
  enum class Kind { kEmpty, kText, kNumber };
  struct Operand {
    Kind kind = Kind::kEmpty;
    double number = 0;
    std::string text;
    bool operator==(const Operand&) const = default;
  };
  struct Key {
    std::int32_t clause = 0;
    Operand value;
    Operand secondary;
    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const;
  };

  static std::optional<Operand> Canonical(const Variant& value);
  static std::optional<Key> KeyOf(const xqb_Condition& condition);

  std::unordered_map<Key, std::int32_t, KeyHash> counts_;
  std::int32_t irregular_ = 0;
};

}  // namespace brix
