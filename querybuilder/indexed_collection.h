// A keyed collection of shared model objects that keeps a lookup index over their key values,
// so that the duplicate and existence tests stay O(1) while the objects remain mutable.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

#include "runtime/keyed_collection.h"
#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

class IndexedItem;

template <class T, class Index>
class IndexedCollection;

/// What holds indexed objects: told around each change of a value its index reads. Both calls
/// leave the index current or marked for a rebuild; neither throws.
class ItemHolder {
 public:
  /// `item` is about to change a value the index reads.
  virtual void Unindex(const IndexedItem& item) noexcept = 0;
  /// `item` changed it.
  virtual void Reindex(const IndexedItem& item) noexcept = 0;

 protected:
  ~ItemHolder() = default;
};

/// A model object that collections index by some of its values. It knows the collections that
/// hold it (by plain pointers: they hold it, it never owns them), and a setter of an indexed value
/// goes through `ChangeKey`, so that exactly those collections move it in their indexes.
class IndexedItem : public virtual Object {
 protected:
  IndexedItem() = default;

  /// Runs `assign`, which changes an indexed value and cannot throw, with the object out of its
  /// holders' indexes: one removal and one insertion in each.
  template <class Assign>
  void ChangeKey(Assign&& assign) {
    static_assert(std::is_nothrow_invocable_v<Assign&>);
    if (!holder_) {
      assign();
      return;
    }
    ForEachHolder([this](ItemHolder& holder) { holder.Unindex(*this); });
    assign();
    ForEachHolder([this](ItemHolder& holder) { holder.Reindex(*this); });
  }

 private:
  template <class T, class Index>
  friend class IndexedCollection;

  /// Records one more holding by `holder` (an object may be held several times, by several
  /// collections or under several keys of one).
  void AddHolder(ItemHolder* holder);
  /// Forgets one holding by `holder`.
  void RemoveHolder(ItemHolder* holder) noexcept;

  template <class Visit>
  void ForEachHolder(Visit&& visit) {
    visit(*holder_);
    if (more_holders_) {
      for (ItemHolder* holder : *more_holders_) visit(*holder);
    }
  }

  ItemHolder* holder_ = nullptr;  // the first holding; most objects have no other
  std::unique_ptr<std::vector<ItemHolder*>> more_holders_;
};

/// Call when an existence or duplicate search over `count` positions found nothing. Those
/// searches count positions in a 16-bit counter, which overflows (error 6) when it steps past
/// position 32767; so a collection never grows beyond 32767 objects.
void CheckSearchCounter(std::int32_t count);

/// Base of the model's collections: a `KeyedCollection` of `std::shared_ptr<T>` with the
/// collection's own errors (9 bad position, 5 unknown key, 457 used key), plus an `Index` over the
/// held objects. `Index` offers `Insert(const T&)`, `Erase(const T&)`, `Reserve` and `Clear()`; it
/// follows every add, remove and key change of a held object. Should the index run out of memory
/// while following, it is rebuilt before its next use.
template <class T, class Index>
class IndexedCollection : public Object, private ItemHolder {
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
  void Unindex(const IndexedItem& item) noexcept override;
  void Reindex(const IndexedItem& item) noexcept override;
  void ReleaseAll() noexcept;

  KeyedCollection<std::shared_ptr<T>> items_;
  std::unique_ptr<Index> index_;  // private to the library: its type is only declared here
  bool stale_ = false;            // the index missed a change and is rebuilt before its next use
};

}  // namespace brix
