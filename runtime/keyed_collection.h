// The platform's collection: 1-based positions, optional case-insensitive string keys,
// insertion order, and the platform's own errors (9 bad position, 5 unknown key, 457 duplicate).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/key_positions.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace brix {

/// An ordered collection of `T` with 1-based positions and optional string keys. Lookup by
/// position and by key is O(1); removal is O(n). Iteration is in position order.
template <class T>
class KeyedCollection {
 public:
  using const_iterator = typename std::vector<T>::const_iterator;

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }

  /// Appends `item`; with a key, raises 457 when the key (ignoring letter case) is already used.
  void Add(T item, std::optional<std::string_view> key = std::nullopt) {
    std::optional<std::string> folded;
    std::size_t hash = 0;
    if (key) {
      folded = FoldCase(*key);
      hash = KeyPositions::Hash(*folded);
      if (positions_.Find(hash, *folded, keys_) != KeyPositions::kNone) {
        RaiseRuntimeError(kErrKeyAlreadyAssociated);
      }
      positions_.ReserveOneMore();
    }
    items_.push_back(std::move(item));
    try {
      keys_.push_back(std::move(folded));
    } catch (...) {
      items_.pop_back();  // running out of memory leaves the collection as it was
      throw;
    }
    if (key) positions_.Add(hash, items_.size() - 1);
  }

  /// Makes room for `count` items in all, so that adding them moves nothing.
  void Reserve(std::size_t count) {
    items_.reserve(count);
    keys_.reserve(count);
    positions_.Reserve(count);
  }

  const T& Item(const Variant& index) const { return items_[IndexOf(index)]; }
  const T& ItemAt(std::int32_t position) const { return items_[IndexOfPosition(position)]; }
  const T& ItemByKey(std::string_view key) const { return items_[IndexOfKey(key)]; }

  /// The item under `key`, or nullptr.
  const T* FindKey(std::string_view key) const {
    const std::size_t at = PositionOfKey(key);
    return at == KeyPositions::kNone ? nullptr : &items_[at];
  }

  /// Removes by position or key, with the errors of `Item`.
  void Remove(const Variant& index) {
    std::size_t at = IndexOf(index);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(at));
    positions_.Rebuild(keys_);  // the positions after `at` moved
  }

  void Clear() {
    items_.clear();
    keys_.clear();
    positions_.Clear();
  }

  const_iterator begin() const { return items_.begin(); }
  const_iterator end() const { return items_.end(); }

 private:
  std::size_t IndexOf(const Variant& index) const {
    Variant simple = SimpleValue(index);  // an object index stands for its default value
    if (simple.IsString()) return IndexOfKey(simple.AsString());
    return IndexOfPosition(CLng(simple));
  }
  std::size_t IndexOfPosition(std::int32_t position) const {
    if (position < 1 || position > Count()) RaiseRuntimeError(kErrSubscriptOutOfRange);
    return static_cast<std::size_t>(position - 1);
  }
  std::size_t IndexOfKey(std::string_view key) const {
    const std::size_t at = PositionOfKey(key);
    if (at == KeyPositions::kNone) RaiseRuntimeError(kErrInvalidProcedureCall);
    return at;
  }
  std::size_t PositionOfKey(std::string_view key) const {
    const std::string folded = FoldCase(key);
    return positions_.Find(KeyPositions::Hash(folded), folded, keys_);
  }

  std::vector<T> items_;
  std::vector<std::optional<std::string>> keys_;
  KeyPositions positions_;
};

}  // namespace brix
