// The duplicate-condition index: answers the duplicate test in O(1) while every operand involved
// compares exactly and without error, and defers to the exact scan otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "querybuilder/xqb_condition.h"
#include "querybuilder/xqb_definitions.h"
#include "runtime/variant.h"

namespace brix {

/// Counts the conditions of one collection by (Clause, Value, SecondaryValue), keyed where equality
/// is exact: Empty, String, and Integer, Long, Double, Byte, Boolean and Date (by their numeric
/// value, NaN excluded). A condition with a Null operand can never match (a comparison with Null
/// is not equal) and is left out. Single and Currency operands compare after rounding, which no
/// key can hold: those conditions are kept in a list and compared one by one. Operands whose
/// comparison can raise (objects, arrays, error values) make the index step aside, so that the
/// exact scan raises in position order; a field holding one fails at its next addition.
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
  enum class Kind { kEmpty, kText, kNumber, kNull, kRounded };
  enum class Entry { kKeyed, kNever, kRounded, kIrregular };
  struct OperandView {
    Kind kind = Kind::kEmpty;
    double number = 0;
    std::string_view text;
    bool operator==(const OperandView&) const = default;
  };
  struct Operand {
    Kind kind = Kind::kEmpty;
    double number = 0;
    std::string text;
    OperandView View() const { return {kind, number, text}; }
  };
  struct KeyView {
    std::int32_t clause = 0;
    OperandView value;
    OperandView secondary;
    bool operator==(const KeyView&) const = default;
  };
  struct Key {
    std::int32_t clause = 0;
    Operand value;
    Operand secondary;
    KeyView View() const { return {clause, value.View(), secondary.View()}; }
  };
  // Stored keys own their texts; lookups use views, so a probe copies no text.
  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(const KeyView& key) const;
    std::size_t operator()(const Key& key) const { return (*this)(key.View()); }
  };
  struct KeyEqual {
    using is_transparent = void;
    static KeyView ViewOf(const Key& key) { return key.View(); }
    static const KeyView& ViewOf(const KeyView& key) { return key; }
    template <class A, class B>
    bool operator()(const A& a, const B& b) const {
      return ViewOf(a) == ViewOf(b);
    }
  };

  /// The canonical form of `value`, its text in `storage` when it has to be converted.
  static std::optional<OperandView> Canonical(const Variant& value, std::string& storage);
  static Entry EntryOf(const xqb_Condition& condition, Key& key);

  std::unordered_map<Key, std::int32_t, KeyHash, KeyEqual> counts_;
  std::vector<const xqb_Condition*> rounded_;
  std::int32_t irregular_ = 0;
};

}  // namespace brix
