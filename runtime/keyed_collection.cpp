// The keys of the platform's collection: folded for case-insensitive lookup, found through an
// open-addressing table of their hashes.
#include "runtime/keyed_collection.h"

#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/key_positions.h"
#include "runtime/text.h"

namespace brix {

CollectionKeys::CollectionKeys() = default;
CollectionKeys::~CollectionKeys() = default;
CollectionKeys::CollectionKeys(CollectionKeys&&) noexcept = default;
CollectionKeys& CollectionKeys::operator=(CollectionKeys&&) noexcept = default;

void CollectionKeys::Append(std::optional<std::string_view> key) {
  if (!key) {
    keys_.emplace_back();
    return;
  }
  std::string folded = FoldCase(*key);
  const std::size_t hash = KeyPositions::Hash(folded);
  if (!positions_) {
    positions_ = std::make_unique<KeyPositions>();
  } else if (positions_->Find(hash, folded, keys_) != KeyPositions::kNone) {
    RaiseRuntimeError(kErrKeyAlreadyAssociated);
  }
  positions_->ReserveOneMore();
  keys_.push_back(std::move(folded));
  positions_->Add(hash, keys_.size() - 1);
}

void CollectionKeys::Erase(std::size_t at) {
  keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(at));
  if (positions_) positions_->Rebuild(keys_);  // the positions after `at` moved
}

void CollectionKeys::Reserve(std::size_t count) {
  keys_.reserve(count);
  if (!positions_) positions_ = std::make_unique<KeyPositions>();
  positions_->Reserve(count);
}

void CollectionKeys::Clear() {
  keys_.clear();
  if (positions_) positions_->Clear();
}

std::size_t CollectionKeys::Find(std::string_view key) const {
  if (!positions_) return kNone;
  const std::string folded = FoldCase(key);
  return positions_->Find(KeyPositions::Hash(folded), folded, keys_);
}

std::size_t CollectionKeys::IndexOf(const Variant& index, std::size_t count) const {
  Variant simple = SimpleValue(index);  // an object index stands for its default value
  if (simple.IsString()) return IndexOfKey(simple.AsString());
  return IndexOfPosition(CLng(simple), count);
}

std::size_t CollectionKeys::IndexOfPosition(std::int32_t position, std::size_t count) const {
  if (position < 1 || static_cast<std::size_t>(position) > count) {
    RaiseRuntimeError(kErrSubscriptOutOfRange);
  }
  return static_cast<std::size_t>(position - 1);
}

std::size_t CollectionKeys::IndexOfKey(std::string_view key) const {
  const std::size_t at = Find(key);
  if (at == kNone) RaiseRuntimeError(kErrInvalidProcedureCall);
  return at;
}

}  // namespace brix
