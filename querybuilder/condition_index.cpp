// Counting index of conditions by clause and canonical operands.
#include "querybuilder/condition_index.h"

#include <cmath>
#include <functional>
#include <vector>

#include "runtime/text.h"

namespace brix {

std::size_t ConditionIndex::KeyHash::operator()(const Key& key) const {
  auto operand_hash = [](const Operand& operand) {
    std::size_t h = std::hash<int>()(static_cast<int>(operand.kind));
    h = h * 31 + std::hash<double>()(operand.number);
    return h * 31 + std::hash<std::string>()(operand.text);
  };
  std::size_t h = std::hash<std::int32_t>()(key.clause);
  h = h * 1000003 + operand_hash(key.value);
  return h * 1000003 + operand_hash(key.secondary);
}

std::optional<ConditionIndex::Operand> ConditionIndex::Canonical(const Variant& value) {
  switch (value.Type()) {
    case vbEmpty:
      return Operand{};
    case vbString:
      // Texts compare by their UTF-16 code units, so malformed UTF-8 that decodes alike is alike.
      return Operand{Kind::kText, 0, ToUtf8(ToUtf16(value.AsString()))};
    case vbInteger:
    case vbLong:
    case vbDouble:
    case vbByte:
    case vbBoolean:
    case vbDate: {
      double number = value.NumericValue();
      if (std::isnan(number)) return std::nullopt;
      return Operand{Kind::kNumber, number + 0.0, {}};  // -0 and +0 are one value
    }
    default:
      return std::nullopt;
  }
}

std::optional<ConditionIndex::Key> ConditionIndex::KeyOf(const xqb_Condition& condition) {
  std::optional<Operand> value = Canonical(condition.Value());
  std::optional<Operand> secondary = Canonical(condition.SecondaryValue());
  if (!value || !secondary) return std::nullopt;
  return Key{condition.Clause(), std::move(*value), std::move(*secondary)};
}

void ConditionIndex::Insert(const xqb_Condition& condition) {
  if (std::optional<Key> key = KeyOf(condition)) {
    ++counts_[std::move(*key)];
  } else {
    ++irregular_;
  }
}

void ConditionIndex::Erase(const xqb_Condition& condition) {
  std::optional<Key> key = KeyOf(condition);
  if (!key) {
    --irregular_;
    return;
  }
  auto it = counts_.find(*key);
  if (it != counts_.end() && --it->second == 0) counts_.erase(it);
}

void ConditionIndex::Clear() {
  counts_.clear();
  irregular_ = 0;
}

std::optional<bool> ConditionIndex::HasMatch(qbe_ClauseOperator clause,
                                             const Variant& value) const {
  if (irregular_ > 0) return std::nullopt;
  std::optional<Operand> given = Canonical(value);
  if (!given) return std::nullopt;
  // Empty equals both "" and 0, while "" and 0 differ: list every stored form equal to `value`.
  std::vector<Operand> equal_forms{*given};
  bool is_zero_like = (given->kind == Kind::kText && given->text.empty()) ||
                      (given->kind == Kind::kNumber && given->number == 0);
  if (is_zero_like) equal_forms.push_back(Operand{});
  if (given->kind == Kind::kEmpty) {
    equal_forms.push_back(Operand{Kind::kText, 0, {}});
    equal_forms.push_back(Operand{Kind::kNumber, 0, {}});
  }
  Key key{clause, {}, {}};
  for (const Operand& stored_value : equal_forms) {
    for (const Operand& stored_secondary : equal_forms) {
      key.value = stored_value;
      key.secondary = stored_secondary;
      if (counts_.contains(key)) return true;
    }
  }
  return false;
}

}  // namespace brix
