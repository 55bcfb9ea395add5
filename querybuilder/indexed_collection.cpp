// The thread's index revision and the search counter limit of the model's collections.
#include "querybuilder/indexed_collection.h"

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

thread_local std::uint64_t index_revision = 0;

constexpr std::int32_t kLastCounterPosition = 32767;

}  // namespace

std::uint64_t IndexedItem::IndexRevision() { return index_revision; }

void IndexedItem::KeyChanged() const {
  if (holders_ > 0) ++index_revision;
}

void CheckSearchCounter(std::int32_t count) {
  if (count >= kLastCounterPosition) RaiseRuntimeError(kErrOverflow);
}

}  // namespace brix
