// Counting index of conditions by clause and canonical operands.
#include "querybuilder/condition_index.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

#include "runtime/text.h"

namespace brix {

namespace {
const char kRemovedMark = 0;
}  // namespace

const xqb_Condition* const ConditionIndex::kRemoved =
    reinterpret_cast<const xqb_Condition*>(&kRemovedMark);

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

ConditionIndex::Entry ConditionIndex::EntryOf(const xqb_Condition& condition, KeyOf& key) {
  std::optional<OperandView> value = Canonical(condition.Value(), key.value_text);
  std::optional<OperandView> secondary = Canonical(condition.SecondaryValue(), key.secondary_text);
  if (!value || !secondary) return Entry::kIrregular;
  if (value->kind == Kind::kNull || secondary->kind == Kind::kNull) return Entry::kNever;
  if (value->kind == Kind::kRounded || secondary->kind == Kind::kRounded) return Entry::kRounded;
  key.key = KeyView{condition.Clause(), *value, *secondary};
  return Entry::kKeyed;
}

void ConditionIndex::Insert(const xqb_Condition& condition) {
  KeyOf key;
  switch (EntryOf(condition, key)) {
    case Entry::kKeyed: {
      if ((used_ + 1) * 2 > slots_.size()) Grow();
      const std::size_t mask = slots_.size() - 1;
      const std::size_t hash = Hash(key.key);
      std::size_t at = hash & mask;
      while (slots_[at].condition && slots_[at].condition != kRemoved) at = (at + 1) & mask;
      if (!slots_[at].condition) ++used_;
      slots_[at] = Slot{hash, &condition};
      break;
    }
    case Entry::kRounded:
      rounded_.push_back(&condition);
      break;
    case Entry::kIrregular:
      ++irregular_;
      break;
    case Entry::kNever:
      break;
  }
}

void ConditionIndex::Erase(const xqb_Condition& condition) {
  KeyOf key;
  switch (EntryOf(condition, key)) {
    case Entry::kKeyed: {
      const std::size_t mask = slots_.size() - 1;
      for (std::size_t at = Hash(key.key) & mask; slots_[at].condition; at = (at + 1) & mask) {
        if (slots_[at].condition == &condition) {
          slots_[at].condition = kRemoved;
          break;
        }
      }
      break;
    }
    case Entry::kRounded:
      std::erase(rounded_, &condition);
      break;
    case Entry::kIrregular:
      --irregular_;
      break;
    case Entry::kNever:
      break;
  }
}

void ConditionIndex::Clear() {
  std::fill(slots_.begin(), slots_.end(), Slot{});
  used_ = 0;
  rounded_.clear();
  irregular_ = 0;
}

void ConditionIndex::Reserve(std::size_t count) {
  std::size_t slot_count = 16;
  while (slot_count < count * 2) slot_count *= 2;
  if (slot_count > slots_.size()) Resize(slot_count);
}

// Doubles the table for the conditions it holds.
void ConditionIndex::Grow() {
  std::size_t held = 0;
  for (const Slot& slot : slots_) held += slot.condition && slot.condition != kRemoved;
  std::size_t slot_count = 16;
  while (slot_count < held * 4) slot_count *= 2;
  Resize(slot_count);
}

// Moves the held conditions into a table of `slot_count` slots; removed slots are dropped.
void ConditionIndex::Resize(std::size_t slot_count) {
  std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slot_count));
  const std::size_t mask = slots_.size() - 1;
  used_ = 0;
  for (const Slot& slot : old) {
    if (!slot.condition || slot.condition == kRemoved) continue;
    std::size_t at = slot.hash & mask;
    while (slots_[at].condition) at = (at + 1) & mask;
    slots_[at] = slot;
    ++used_;
  }
}

bool ConditionIndex::Contains(const KeyView& key) const {
  if (slots_.empty()) return false;
  const std::size_t mask = slots_.size() - 1;
  const std::size_t hash = Hash(key);
  for (std::size_t at = hash & mask; slots_[at].condition; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (slot.hash != hash || slot.condition == kRemoved) continue;
    KeyOf held;
    if (EntryOf(*slot.condition, held) == Entry::kKeyed && held.key == key) return true;
  }
  return false;
}

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
