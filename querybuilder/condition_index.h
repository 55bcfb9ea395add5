// The duplicate-condition index: answers the duplicate test in O(1) while every operand involved
// compares exactly and without error, and defers to the exact scan otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "querybuilder/counted_keys.h"
#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

/// Indexes the conditions of one collection by (Clause, Value, SecondaryValue), keyed where
/// equality is exact: Empty, String, and Integer, Long, Double, Byte, Boolean and Date (by their
/// numeric value, NaN excluded). A condition with a Null operand can never match (a comparison with
/// Null is not equal) and is left out. Single and Currency operands compare after rounding, which
/// no key can hold: those conditions are kept in a list and compared one by one. Operands whose
/// comparison can raise (objects, arrays, error values) make the index step aside, so that the
/// exact scan raises in position order; a field holding one fails at its next addition.
///
/// Equal keys are legal and may be many, so the table holds one entry per distinct key (a copy of
/// it) with the number of conditions that bear it. `Erase` takes a condition out under the key it
/// bears at the time: a condition leaves before a key value changes and comes back after.
class ConditionIndex {
 public:
  void Insert(const xqb_Condition& condition);
  void Erase(const xqb_Condition& condition);
  void Clear();
  /// Makes room for `count` conditions in all.
  void Reserve(std::size_t count);

  /// Whether a condition has `clause`, a `Value` equal to `value` and a `SecondaryValue` equal to
  /// `value`; `std::nullopt` when `value` or a held operand is irregular and only the exact scan
  /// (with its errors in position order) can answer.
  std::optional<bool> HasMatch(qbe_ClauseOperator clause, const Variant& value) const;

 private:
  enum class Kind : std::uint8_t { kEmpty, kText, kNumber, kNull, kRounded };
  enum class Place { kKeyed, kNever, kRounded, kIrregular };
  struct OperandView {
    Kind kind = Kind::kEmpty;
    double number = 0;
    std::string_view text;
    bool operator==(const OperandView&) const = default;
  };
  struct KeyView {
    std::int32_t clause = 0;
    OperandView value;
    OperandView secondary;
    bool operator==(const KeyView&) const = default;
  };
  /// A key and the converted texts it may view.
  struct KeyOf {
    KeyView key;
    std::string value_text;
    std::string secondary_text;
  };
  /// A key's own copy, as the table keeps it.
  struct HeldKey {
    explicit HeldKey(const KeyView& key)
        : clause(key.clause),
          value_kind(key.value.kind),
          secondary_kind(key.secondary.kind),
          value_number(key.value.number),
          secondary_number(key.secondary.number),
          value_text(key.value.text),
          secondary_text(key.secondary.text) {}
    bool operator==(const KeyView& key) const {
      return key == KeyView{clause,
                            {value_kind, value_number, value_text},
                            {secondary_kind, secondary_number, secondary_text}};
    }
    std::int32_t clause;
    Kind value_kind;
    Kind secondary_kind;
    double value_number;
    double secondary_number;
    std::string value_text;
    std::string secondary_text;
  };

  /// The canonical form of `value`, its text in `storage` when it has to be converted.
  static std::optional<OperandView> Canonical(const Variant& value, std::string& storage);
  static Place PlaceOf(const xqb_Condition& condition, KeyOf& key);
  static std::size_t Hash(const KeyView& key);

  bool Contains(const KeyView& key) const { return keys_.Contains(Hash(key), key); }

  CountedKeys<HeldKey, KeyView> keys_;
  std::vector<const xqb_Condition*> rounded_;
  std::int32_t irregular_ = 0;
};

}  // namespace brix
