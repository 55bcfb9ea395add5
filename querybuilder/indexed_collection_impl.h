// The members of IndexedCollection that use its index, for the files that instantiate it.
#pragma once

#include <memory>
#include <new>
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
  items_.Remove(index_key);
  removed->RemoveHolder(this);
  Unindex(*removed);
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
  stale_ = false;
}

template <class T, class Index>
void IndexedCollection<T, Index>::AddItem(std::shared_ptr<T> item,
                                          std::optional<std::string_view> key) {
  T& added = *item;
  added.AddHolder(this);
  try {
    items_.Add(std::move(item), key);
  } catch (...) {
    added.RemoveHolder(this);
    throw;
  }
  Reindex(added);
}

template <class T, class Index>
const Index& IndexedCollection<T, Index>::CurrentIndex() {
  if (stale_) {
    index_->Clear();
    for (const auto& item : items_) index_->Insert(*item);
    stale_ = false;
  }
  return *index_;
}

template <class T, class Index>
void IndexedCollection<T, Index>::Unindex(const IndexedItem& item) noexcept {
  if (stale_) return;
  try {
    index_->Erase(static_cast<const T&>(item));
  } catch (const std::bad_alloc&) {
    stale_ = true;
  }
}

template <class T, class Index>
void IndexedCollection<T, Index>::Reindex(const IndexedItem& item) noexcept {
  if (stale_) return;
  try {
    index_->Insert(static_cast<const T&>(item));
  } catch (const std::bad_alloc&) {
    stale_ = true;
  }
}

template <class T, class Index>
void IndexedCollection<T, Index>::ReleaseAll() noexcept {
  for (const auto& item : items_) item->RemoveHolder(this);
}

}  // namespace brix
