// The store behind the model's collections: a keyed collection of shared objects with a lookup
// index over their key values, told by the objects themselves when a key value changes, so that
// the duplicate and existence tests stay O(1) while the objects remain mutable. Included by the
// files that instantiate a collection.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "querybuilder/model_collection.h"
#include "runtime/keyed_collection.h"

namespace brix {

/// Call when an existence or duplicate search over `count` positions found nothing. Those
/// searches count positions in a 16-bit counter, which overflows (error 6) when it steps past
/// position 32767; so a collection never grows beyond 32767 objects.
void CheckSearchCounter(std::int32_t count);

/// A `KeyedCollection` of `std::shared_ptr<T>` plus an `Index` over the held objects. `Index`
/// offers `Insert(const T&)`, `Erase(const T&)`, `Reserve` and `Clear()`; it follows every add,
/// remove and key change of a held object. Should the index run out of memory while following,
/// it is rebuilt before its next use.
template <class T, class Index>
class IndexedStore final : private ItemHolder {
 public:
  IndexedStore() = default;
  IndexedStore(const IndexedStore&) = delete;
  IndexedStore& operator=(const IndexedStore&) = delete;
  ~IndexedStore() { ReleaseAll(); }

  const KeyedCollection<std::shared_ptr<T>>& Items() const { return items_; }

  /// Adds the object itself; a used key raises 457 and leaves the store unchanged.
  void AddItem(std::shared_ptr<T> item, std::optional<std::string_view> key) {
    T& added = *item;
    added.AddHolder(this);
    try {
      items_.Add(item, key);  // a copy: `item` keeps the object alive should the add fail
    } catch (...) {
      added.RemoveHolder(this);
      throw;
    }
    Reindex(added);
  }

  void Remove(const Variant& index_key) {
    std::shared_ptr<T> removed = items_.Item(index_key);
    items_.Remove(index_key);
    removed->RemoveHolder(this);
    Unindex(*removed);
  }

  void Reserve(std::size_t count) {
    items_.Reserve(count);
    index_.Reserve(count);
  }

  void Clear() {
    ReleaseAll();
    items_.Clear();
    index_.Clear();
    stale_ = false;
  }

  /// Whether an object is held under `key` (letter case ignored).
  bool HasKey(std::string_view key) const { return items_.FindKey(key) != nullptr; }

  /// The index over the current key values of the held objects.
  const Index& CurrentIndex() {
    if (stale_) {
      index_.Clear();
      for (const auto& item : items_) index_.Insert(*item);
      stale_ = false;
    }
    return index_;
  }

 private:
  void Unindex(const IndexedItem& item) noexcept override { Follow(item, false); }
  void Reindex(const IndexedItem& item) noexcept override { Follow(item, true); }

  // Puts `item` into the index or takes it out; running out of memory marks the index stale.
  void Follow(const IndexedItem& item, bool insert) noexcept {
    if (stale_) return;
    const T& held = static_cast<const T&>(item);
    try {
      if (insert) {
        index_.Insert(held);
      } else {
        index_.Erase(held);
      }
    } catch (const std::bad_alloc&) {
      stale_ = true;
    }
  }

  void ReleaseAll() noexcept {
    for (const auto& item : items_) item->RemoveHolder(this);
  }

  KeyedCollection<std::shared_ptr<T>> items_;
  Index index_;
  bool stale_ = false;  // the index missed a change and is rebuilt before its next use
};

template <class T, class Index>
ModelCollection<T, Index>::ModelCollection() : store_(std::make_unique<IndexedStore<T, Index>>()) {}

template <class T, class Index>
ModelCollection<T, Index>::~ModelCollection() = default;

template <class T, class Index>
typename ModelCollection<T, Index>::const_iterator ModelCollection<T, Index>::begin() const {
  return store_->Items().begin();
}

template <class T, class Index>
typename ModelCollection<T, Index>::const_iterator ModelCollection<T, Index>::end() const {
  return store_->Items().end();
}

template <class T, class Index>
std::int32_t ModelCollection<T, Index>::Count() const {
  return store_->Items().Count();
}

template <class T, class Index>
std::shared_ptr<T> ModelCollection<T, Index>::Item(const Variant& index_key) const {
  return store_->Items().Item(index_key);
}

template <class T, class Index>
void ModelCollection<T, Index>::Remove(const Variant& index_key) {
  store_->Remove(index_key);
}

template <class T, class Index>
void ModelCollection<T, Index>::Reserve(std::int32_t count) {
  if (count > 0) store_->Reserve(static_cast<std::size_t>(count));
}

template <class T, class Index>
void ModelCollection<T, Index>::Clear() {
  store_->Clear();
}

}  // namespace brix
