// The platform's collection: 1-based positions, optional case-insensitive string keys,
// insertion order, and the platform's own errors (9 bad position, 5 unknown key, 457 duplicate).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/variant.h"

namespace brix {

class KeyPositions;

/// The keys of a keyed collection, one per item (or none), and where each stands: the share of
/// the collection that does not depend on its items' type.
class CollectionKeys {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  CollectionKeys();
  ~CollectionKeys();
  CollectionKeys(CollectionKeys&&) noexcept;
  CollectionKeys& operator=(CollectionKeys&&) noexcept;

  /// Records the key of a new last item; a key already used (letter case ignored) raises 457.
  /// Either the key is recorded or nothing changed.
  void Append(std::optional<std::string_view> key);
  /// Forgets the key of the item at `at` (0-based); the later items move up.
  void Erase(std::size_t at);
  void Reserve(std::size_t count);
  void Clear();

  /// The 0-based place of the item under `key`, or `kNone`.
  std::size_t Find(std::string_view key) const;
  /// The 0-based place of a 1-based position (a number) or a key (a string) among `count` items;
  /// raises 9 for a bad position and 5 for an unknown key.
  std::size_t IndexOf(const Variant& index, std::size_t count) const;
  std::size_t IndexOfPosition(std::int32_t position, std::size_t count) const;
  std::size_t IndexOfKey(std::string_view key) const;

 private:
  std::vector<std::optional<std::string>> keys_;  // folded keys, by item
  std::unique_ptr<KeyPositions> positions_;       // made at the first key
};

/// An ordered collection of `T` with 1-based positions and optional string keys. Lookup by
/// position and by key is O(1); removal is O(n). Iteration is in position order.
template <class T>
class KeyedCollection {
 public:
  using const_iterator = typename std::vector<T>::const_iterator;

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }

  /// Appends `item`; with a key, raises 457 when the key (ignoring letter case) is already used.
  /// Running out of memory leaves the collection as it was.
  void Add(T item, std::optional<std::string_view> key = std::nullopt) {
    if (items_.size() == items_.capacity())
      items_.reserve(std::max<std::size_t>(4, 2 * items_.size()));
    keys_.Append(key);
    items_.push_back(std::move(item));  // room was made, so this cannot fail
  }

  /// Makes room for `count` items in all, so that adding them moves nothing.
  void Reserve(std::size_t count) {
    items_.reserve(count);
    keys_.Reserve(count);
  }

  const T& Item(const Variant& index) const { return items_[keys_.IndexOf(index, items_.size())]; }
  const T& ItemAt(std::int32_t position) const {
    return items_[keys_.IndexOfPosition(position, items_.size())];
  }
  const T& ItemByKey(std::string_view key) const { return items_[keys_.IndexOfKey(key)]; }

  /// The item under `key`, or nullptr.
  const T* FindKey(std::string_view key) const {
    const std::size_t at = keys_.Find(key);
    return at == CollectionKeys::kNone ? nullptr : &items_[at];
  }
  T* FindKey(std::string_view key) { return const_cast<T*>(std::as_const(*this).FindKey(key)); }

  /// Removes by position or key, with the errors of `Item`.
  void Remove(const Variant& index) {
    const std::size_t at = keys_.IndexOf(index, items_.size());
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    keys_.Erase(at);
  }

  void Clear() {
    items_.clear();
    keys_.Clear();
  }

  const_iterator begin() const { return items_.begin(); }
  const_iterator end() const { return items_.end(); }

 private:
  std::vector<T> items_;
  CollectionKeys keys_;
};

}  // namespace brix
