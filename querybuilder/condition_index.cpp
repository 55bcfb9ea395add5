// The duplicate-condition index: the distinct keys of clause and canonical operands, each with
// the number of held conditions that bear it.
#include "querybuilder/condition_index.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

#include "runtime/text.h"

namespace brix {

std::size_t ConditionIndex::Hash(const KeyView& key) {
  auto operand_hash = [](const OperandView& operand) {
    std::size_t h = std::hash<int>()(static_cast<int>(operand.kind));
    h = h * 31 + std::hash<double>()(operand.number);
    return h * 31 + std::hash<std::string_view>()(operand.text);
  };
  std::size_t h = std::hash<std::int32_t>()(key.clause);
  h = h * 1000003 + operand_hash(key.value);
  h = h * 1000003 + operand_hash(key.secondary);
  return h ^ (h >> 29);  // the table takes the low bits
}

std::optional<ConditionIndex::OperandView> ConditionIndex::Canonical(const Variant& value,
                                                                     std::string& storage) {
  switch (value.Type()) {
    case vbEmpty:
      return OperandView{};
    case vbNull:
      return OperandView{Kind::kNull, 0, {}};
    case vbSingle:
    case vbCurrency:
      return OperandView{Kind::kRounded, 0, {}};
    case vbString: {
      // Texts compare by their UTF-16 code units, so malformed UTF-8 that decodes alike is alike.
      const std::string& text = value.AsString();
      if (IsAscii(text)) return OperandView{Kind::kText, 0, text};
      storage = ToUtf8(ToUtf16(text));
      return OperandView{Kind::kText, 0, storage};
    }
    case vbInteger:
    case vbLong:
    case vbDouble:
    case vbByte:
    case vbBoolean:
    case vbDate: {
      double number = value.NumericValue();
      if (std::isnan(number)) return std::nullopt;
      return OperandView{Kind::kNumber, number + 0.0, {}};  // -0 and +0 are one value
    }
    default:
      return std::nullopt;
  }
}

ConditionIndex::Place ConditionIndex::PlaceOf(const xqb_Condition& condition, KeyOf& key) {
  std::optional<OperandView> value = Canonical(condition.Value(), key.value_text);
  std::optional<OperandView> secondary = Canonical(condition.SecondaryValue(), key.secondary_text);
  if (!value || !secondary) return Place::kIrregular;
  if (value->kind == Kind::kNull || secondary->kind == Kind::kNull) return Place::kNever;
  if (value->kind == Kind::kRounded || secondary->kind == Kind::kRounded) return Place::kRounded;
  key.key = KeyView{condition.Clause(), *value, *secondary};
  return Place::kKeyed;
}

void ConditionIndex::Insert(const xqb_Condition& condition) {
  KeyOf key;
  switch (PlaceOf(condition, key)) {
    case Place::kKeyed:
      keys_.Add(Hash(key.key), key.key);
      break;
    case Place::kRounded:
      rounded_.push_back(&condition);
      break;
    case Place::kIrregular:
      ++irregular_;
      break;
    case Place::kNever:
      break;
  }
}

void ConditionIndex::Erase(const xqb_Condition& condition) {
  KeyOf key;
  switch (PlaceOf(condition, key)) {
    case Place::kKeyed:
      keys_.Remove(Hash(key.key), key.key);
      break;
    case Place::kRounded: {
      auto it = std::find(rounded_.begin(), rounded_.end(), &condition);
      if (it != rounded_.end()) rounded_.erase(it);  // one holding leaves, not every one
      break;
    }
    case Place::kIrregular:
      --irregular_;
      break;
    case Place::kNever:
      break;
  }
}

void ConditionIndex::Clear() {
  keys_.Clear();
  rounded_.clear();
  irregular_ = 0;
}

void ConditionIndex::Reserve(std::size_t count) { keys_.Reserve(count); }

std::optional<bool> ConditionIndex::HasMatch(qbe_ClauseOperator clause,
                                             const Variant& value) const {
  if (irregular_ > 0) return std::nullopt;
  std::string storage;
  std::optional<OperandView> given = Canonical(value, storage);
  if (!given || given->kind == Kind::kRounded) return std::nullopt;
  if (given->kind == Kind::kNull) return false;  // nothing held raises, and Null equals nothing
  // Conditions compared after rounding are few (only programs set such operands): one by one.
  for (const xqb_Condition* held : rounded_) {
    if (held->Clause() == clause && VarEqual(held->Value(), value) &&
        VarEqual(held->SecondaryValue(), value)) {
      return true;
    }
  }
  // Empty equals both "" and 0, while "" and 0 differ: list every stored form equal to `value`.
  std::array<OperandView, 3> equal_forms{*given};
  std::size_t form_count = 1;
  const bool is_zero_like = (given->kind == Kind::kText && given->text.empty()) ||
                            (given->kind == Kind::kNumber && given->number == 0);
  if (is_zero_like) equal_forms[form_count++] = OperandView{};
  if (given->kind == Kind::kEmpty) {
    equal_forms[form_count++] = OperandView{Kind::kText, 0, {}};
    equal_forms[form_count++] = OperandView{Kind::kNumber, 0, {}};
  }
  for (std::size_t v = 0; v < form_count; ++v) {
    for (std::size_t s = 0; s < form_count; ++s) {
      if (Contains(KeyView{clause, equal_forms[v], equal_forms[s]})) return true;
    }
  }
  return false;
}

}  // namespace brix
