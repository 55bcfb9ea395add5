// Open addressing with linear probing over key hashes; a removal rebuilds the table, since the
// positions after it move anyway.
#include "runtime/key_positions.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace brix {

std::size_t KeyPositions::Hash(std::string_view folded_key) {
  const std::size_t h = std::hash<std::string_view>()(folded_key);
  return h ^ (h >> 29);  // the table takes the low bits
}

std::size_t KeyPositions::Find(std::size_t hash, std::string_view folded_key,
                               const Keys& keys) const {
  if (slots_.empty()) return kNone;
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t at = hash & mask; slots_[at].position != kNone; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (slot.hash == hash && *keys[slot.position] == folded_key) return slot.position;
  }
  return kNone;
}

void KeyPositions::Reserve(std::size_t count) {
  std::size_t slot_count = 16;
  while (slot_count < count * 2) slot_count *= 2;
  if (slot_count > slots_.size()) Resize(slot_count);
}

void KeyPositions::ReserveOneMore() {
  if ((used_ + 1) * 2 > slots_.size()) Resize(std::max<std::size_t>(16, slots_.size() * 2));
}

void KeyPositions::Resize(std::size_t slot_count) {
  std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slot_count));
  for (const Slot& slot : old) {
    if (slot.position != kNone) Place(slot);
  }
}

void KeyPositions::Add(std::size_t hash, std::size_t position) {
  Place(Slot{hash, position});
  ++used_;
}

void KeyPositions::Rebuild(const Keys& keys) {
  std::fill(slots_.begin(), slots_.end(), Slot{});
  used_ = 0;
  for (std::size_t position = 0; position < keys.size(); ++position) {
    if (keys[position]) Add(Hash(*keys[position]), position);
  }
}

void KeyPositions::Clear() {
  slots_.clear();
  used_ = 0;
}

void KeyPositions::Place(const Slot& slot) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = slot.hash & mask;
  while (slots_[at].position != kNone) at = (at + 1) & mask;
  slots_[at] = slot;
}

}  // namespace brix
