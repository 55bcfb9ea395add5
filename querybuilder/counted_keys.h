// A table of distinct keys, each with the number of held objects that bear it: the lookup
// indexes of the model's collections, where equal keys are legal and may be many.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace brix {

/// Distinct keys of type `Key`, looked up by a `View` of one and its hash (`Key(view)` copies a
/// view, `key == view` compares). Open addressing with linear probing: the slots hold entry
/// numbers into a list of entries, and a removal moves the rest of its run back instead of
/// leaving a mark, so runs stay as short as the hashes make them. Adding, removing and finding
/// cost O(1) however many objects share a key.
template <class Key, class View>
class CountedKeys {
 public:
  bool Contains(std::size_t hash, const View& key) const {
    return !slots_.empty() && slots_[Probe(hash, key)].entry != kNoEntry;
  }

  /// Counts one more object bearing `key`. Running out of memory leaves the table as it was.
  void Add(std::size_t hash, const View& key) {
    if (!slots_.empty()) {
      const Slot slot = slots_[Probe(hash, key)];
      if (slot.entry != kNoEntry) {
        ++entries_[slot.entry - 1].count;
        return;
      }
    }
    if ((live_ + 1) * 2 > slots_.size()) Resize(std::max<std::size_t>(16, slots_.size() * 2));
    std::uint32_t number = free_;
    if (number != kNoEntry) {
      Entry& entry = entries_[number - 1];
      entry.key = Key(key);  // may throw before anything changed
      free_ = entry.next_free;
      entry.hash = hash;
      entry.count = 1;
    } else {
      entries_.push_back(Entry{hash, 1, kNoEntry, Key(key)});
      number = static_cast<std::uint32_t>(entries_.size());
    }
    slots_[Probe(hash, key)] = Slot{number, Fragment(hash)};
    ++live_;
  }

  /// Counts one object fewer bearing `key`; the key goes when none is left.
  void Remove(std::size_t hash, const View& key) {
    if (slots_.empty()) return;
    const std::size_t slot = Probe(hash, key);
    if (slots_[slot].entry != kNoEntry && --entries_[slots_[slot].entry - 1].count == 0) Drop(slot);
  }

  void Clear() {
    std::fill(slots_.begin(), slots_.end(), Slot{});
    entries_.clear();
    free_ = kNoEntry;
    live_ = 0;
  }

  /// Makes room for `count` distinct keys in all.
  void Reserve(std::size_t count) {
    std::size_t slot_count = 16;
    while (slot_count < count * 2) slot_count *= 2;
    if (slot_count > slots_.size()) Resize(slot_count);
    entries_.reserve(count);
  }

 private:
  struct Entry {
    std::size_t hash;
    std::int32_t count;       // 0: a free entry, kept for the next key
    std::uint32_t next_free;  // of a free entry
    Key key;
  };
  /// An entry number (0: none) and high bits of its key's hash, so that probing past other keys
  /// rarely reads their entries.
  struct Slot {
    std::uint32_t entry = kNoEntry;
    std::uint32_t fragment = 0;
  };
  static constexpr std::uint32_t kNoEntry = 0;

  static std::uint32_t Fragment(std::size_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

  // The slot of `key`'s entry, or the empty slot where it would go.
  std::size_t Probe(std::size_t hash, const View& key) const {
    const std::size_t mask = slots_.size() - 1;
    const std::uint32_t fragment = Fragment(hash);
    std::size_t at = hash & mask;
    for (; slots_[at].entry != kNoEntry; at = (at + 1) & mask) {
      if (slots_[at].fragment != fragment) continue;
      const Entry& entry = entries_[slots_[at].entry - 1];
      if (entry.hash == hash && entry.key == key) break;
    }
    return at;
  }

  // Empties `slot` and moves the later slots of its run back; the entry is kept for reuse, its
  // memory likely still at hand when a renamed object comes back under its new key.
  void Drop(std::size_t slot) {
    const std::size_t mask = slots_.size() - 1;
    const std::uint32_t dropped = slots_[slot].entry;
    std::size_t hole = slot;
    for (std::size_t at = (hole + 1) & mask; slots_[at].entry != kNoEntry; at = (at + 1) & mask) {
      const std::size_t home = entries_[slots_[at].entry - 1].hash & mask;
      // The entry at `at` may fill the hole unless its home lies after the hole.
      if (((at - home) & mask) >= ((at - hole) & mask)) {
        slots_[hole] = slots_[at];
        hole = at;
      }
    }
    slots_[hole] = Slot{};
    entries_[dropped - 1].next_free = free_;
    free_ = dropped;
    --live_;
  }

  void Resize(std::size_t slot_count) {
    std::vector<Slot> slots(slot_count);
    const std::size_t mask = slot_count - 1;
    for (std::size_t n = 0; n < entries_.size(); ++n) {
      const Entry& entry = entries_[n];
      if (entry.count == 0) continue;
      std::size_t at = entry.hash & mask;
      while (slots[at].entry != kNoEntry) at = (at + 1) & mask;
      slots[at] = Slot{static_cast<std::uint32_t>(n + 1), Fragment(entry.hash)};
    }
    slots_ = std::move(slots);
  }

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;        // a power of two in size, at most half used
  std::uint32_t free_ = kNoEntry;  // the first free entry, each naming the next
  std::size_t live_ = 0;           // keys held
};

}  // namespace brix
