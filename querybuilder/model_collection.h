// The base of the model's collections and of the objects they hold: the collection's public
// operations, and each held object's links to the collections that hold it.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

class IndexedItem;

template <class T, class Index>
class IndexedStore;

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
  friend class IndexedStore;

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

/// Base of the model's collections (`xqb_Tables`, `xqb_Fields`, `xqb_Conditions`): the held
/// objects in insertion order with 1-based positions and case-insensitive string keys, and the
/// collection's own errors (9 bad position, 5 unknown key, 457 used key). The store behind it
/// keeps a lookup index `Index` over the held objects' key values; both are private to the
/// library.
template <class T, class Index>
class ModelCollection : public Object {
 public:
  using const_iterator = typename std::vector<std::shared_ptr<T>>::const_iterator;

  ModelCollection(const ModelCollection&) = delete;
  ModelCollection& operator=(const ModelCollection&) = delete;
  ~ModelCollection() override;

  /// The held objects in position order.
  const_iterator begin() const;
  const_iterator end() const;

  std::int32_t Count() const;

  /// By 1-based position (a number) or by key (a string, letter case ignored).
  std::shared_ptr<T> Item(const Variant& index_key) const;

  /// Removes by position or key, with the errors of `Item`.
  void Remove(const Variant& index_key);

  /// Makes room for `count` objects in all: a hint for a caller about to add them.
  void Reserve(std::int32_t count);

  /// Releases every object; the collection starts again empty.
  void Clear();

 protected:
  ModelCollection();

  IndexedStore<T, Index>& Store() { return *store_; }
  const IndexedStore<T, Index>& Store() const { return *store_; }

 private:
  std::unique_ptr<IndexedStore<T, Index>> store_;
};

}  // namespace brix
