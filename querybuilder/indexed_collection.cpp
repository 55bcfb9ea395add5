// The holder links of indexed objects and the search counter limit of the model's collections.
#include "querybuilder/indexed_collection.h"

#include <algorithm>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::int32_t kLastCounterPosition = 32767;

}  // namespace

void IndexedItem::AddHolder(ItemHolder* holder) {
  if (!holder_) {
    holder_ = holder;
    return;
  }
  if (!more_holders_) more_holders_ = std::make_unique<std::vector<ItemHolder*>>();
  more_holders_->push_back(holder);
}

void IndexedItem::RemoveHolder(ItemHolder* holder) noexcept {
  if (more_holders_) {
    auto it = std::find(more_holders_->begin(), more_holders_->end(), holder);
    if (it != more_holders_->end()) {
      more_holders_->erase(it);
      return;
    }
  }
  if (holder_ != holder) return;
  holder_ = nullptr;
  if (more_holders_ && !more_holders_->empty()) {
    holder_ = more_holders_->back();
    more_holders_->pop_back();
  }
}

void CheckSearchCounter(std::int32_t count) {
  if (count >= kLastCounterPosition) RaiseRuntimeError(kErrOverflow);
}

}  // namespace brix
