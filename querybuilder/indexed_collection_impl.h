// The members of IndexedCollection that use its index, for the files that instantiate it.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "querybuilder/indexed_collection.h"

namespace brix {

template <class T, class Index>
IndexedCollection<T, Index>::IndexedCollection() : index_(std::make_unique<Index>()) {}

template <class T, class Index>
IndexedCollection<T, Index>::~IndexedCollection() {
  ReleaseAll();
}

template <class T, class Index>
void IndexedCollection<T, Index>::Remove(const Variant& index_key) {
  std::shared_ptr<T> removed = items_.Item(index_key);
  bool fresh = IsFresh();
  items_.Remove(index_key);
  --removed->holders_;
  if (fresh) index_->Erase(*removed);
}

template <class T, class Index>
void IndexedCollection<T, Index>::Reserve(std::int32_t count) {
  if (count <= 0) return;
  items_.Reserve(static_cast<std::size_t>(count));
  index_->Reserve(static_cast<std::size_t>(count));
}

template <class T, class Index>
void IndexedCollection<T, Index>::Clear() {
  ReleaseAll();
  items_.Clear();
  index_->Clear();
  seen_revision_ = IndexedItem::IndexRevision();
}

template <class T, class Index>
void IndexedCollection<T, Index>::AddItem(std::shared_ptr<T> item,
                                          std::optional<std::string_view> key) {
  const T& added = *item;
  bool fresh = IsFresh();
  items_.Add(std::move(item), key);
  ++added.holders_;
  if (fresh) index_->Insert(added);
}

template <class T, class Index>
const Index& IndexedCollection<T, Index>::CurrentIndex() {
  if (!IsFresh()) {
    index_->Clear();
    for (const auto& item : items_) index_->Insert(*item);
    seen_revision_ = IndexedItem::IndexRevision();
  }
  return *index_;
}

template <class T, class Index>
void IndexedCollection<T, Index>::ReleaseAll() {
  for (const auto& item : items_) --item->holders_;
}

}  // namespace brix
