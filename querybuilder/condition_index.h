// The duplicate-condition index: answers the duplicate test in O(1) while every operand involved
// compares exactly and without error, and defers to the exact scan otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
/// The index holds the conditions themselves (an open-addressing table of condition and key hash)
/// and reads their operands when it compares, so it must be rebuilt once a held condition changed
/// a key value, before any lookup or removal; `Clear` reads nothing.
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
  enum class Kind { kEmpty, kText, kNumber, kNull, kRounded };
  enum class Entry { kKeyed, kNever, kRounded, kIrregular };
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
  struct Slot {
    std::size_t hash = 0;
    const xqb_Condition* condition = nullptr;  // nullptr: empty; kRemoved: a removed one
  };
  static const xqb_Condition* const kRemoved;

  /// The canonical form of `value`, its text in `storage` when it has to be converted.
  static std::optional<OperandView> Canonical(const Variant& value, std::string& storage);
  static Entry EntryOf(const xqb_Condition& condition, KeyOf& key);
  static std::size_t Hash(const KeyView& key);

  bool Contains(const KeyView& key) const;
  void Grow();
  void Resize(std::size_t slot_count);

  std::vector<Slot> slots_;  // a power of two in size, at most half used
  std::size_t used_ = 0;     // slots that are not empty, removed ones included
  std::vector<const xqb_Condition*> rounded_;
  std::int32_t irregular_ = 0;
};

}  // namespace brix
