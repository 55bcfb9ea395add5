// A keyed collection of shared model objects that keeps a lookup index over their key values,
// so that the duplicate and existence tests stay O(1) while the objects remain mutable.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "runtime/keyed_collection.h"
#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

template <class T, class Index>
class IndexedCollection;

/// A model object that collections index by some of its values. Every setter of such a value
/// calls `KeyChanged()`; while the object is held by a collection that moves the process-wide
/// index revision, and every collection rebuilds its index before its next lookup. An object
/// filled in before it is added moves nothing.
class IndexedItem : public virtual Object {
 public:
  /// The current index revision (shared by all threads).
  static std::uint64_t IndexRevision();

 protected:
  void KeyChanged() const;

 private:
  template <class T, class Index>
  friend class IndexedCollection;

  mutable std::int32_t holders_ = 0;
};

/// Call when an existence or duplicate search over `count` positions found nothing. Those
/// searches count positions in a 16-bit counter, which overflows (error 6) when it steps past
/// position 32767; so a collection never grows beyond 32767 objects.
void CheckSearchCounter(std::int32_t count);

/// Base of the model's collections: a `KeyedCollection` of `std::shared_ptr<T>` with the
/// collection's own errors (9 bad position, 5 unknown key, 457 used key), plus an `Index` over the
/// held objects. `Index` offers `Insert(const T&)`, `Erase(const T&)` and `Clear()`; it follows
/// every add and remove while fresh and is rebuilt when a held object changed a key value.
template <class T, class Index>
class IndexedCollection : public Object {
 public:
  using const_iterator = typename KeyedCollection<std::shared_ptr<T>>::const_iterator;

  IndexedCollection(const IndexedCollection&) = delete;
  IndexedCollection& operator=(const IndexedCollection&) = delete;
  ~IndexedCollection() override;

  /// The held objects in position order.
  const_iterator begin() const { return items_.begin(); }
  const_iterator end() const { return items_.end(); }

  std::int32_t Count() const { return items_.Count(); }

  /// By 1-based position (a number) or by key (a string, letter case ignored).
  std::shared_ptr<T> Item(const Variant& index_key) const { return items_.Item(index_key); }

  /// Removes by position or key, with the errors of `Item`.
  void Remove(const Variant& index_key);

  /// Makes room for `count` objects in all: a hint for a caller about to add them.
  void Reserve(std::int32_t count);

  /// Releases every object; the collection starts again empty.
  void Clear();

 protected:
  IndexedCollection();

  /// Adds the object itself; a used key raises 457 and leaves the collection unchanged.
  void AddItem(std::shared_ptr<T> item, std::optional<std::string_view> key);

  /// Whether an object is held under `key` (letter case ignored).
  bool HasKey(std::string_view key) const { return items_.FindKey(key) != nullptr; }

  /// The index over the current key values of the held objects.
  const Index& CurrentIndex();

 private:
  bool IsFresh() const { return seen_revision_ == IndexedItem::IndexRevision(); }
  void ReleaseAll();

  KeyedCollection<std::shared_ptr<T>> items_;
  std::unique_ptr<Index> index_;  // private to the library: its type is only declared here
  std::uint64_t seen_revision_ = IndexedItem::IndexRevision();
};

}  // namespace brix
