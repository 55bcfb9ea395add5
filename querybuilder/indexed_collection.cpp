// The process-wide index revision and the search counter limit of the model's collections.
#include "querybuilder/indexed_collection.h"

#include <atomic>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

// One revision for every thread: an object changed on one thread and then used on another (the
// threads synchronised by the host, as objects are used by one thread at a time) must not leave
// the second thread's collections answering from the old key.
std::atomic<std::uint64_t> index_revision{0};

constexpr std::int32_t kLastCounterPosition = 32767;

}  // namespace

std::uint64_t IndexedItem::IndexRevision() {
  return index_revision.load(std::memory_order_relaxed);
}

void IndexedItem::KeyChanged() const {
  if (holders_ > 0) index_revision.fetch_add(1, std::memory_order_relaxed);
}

void CheckSearchCounter(std::int32_t count) {
  if (count >= kLastCounterPosition) RaiseRuntimeError(kErrOverflow);
}

}  // namespace brix
