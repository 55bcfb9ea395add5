// An allocator that fails at a chosen allocation: global operator new and pugixml's allocation
// functions count every request and refuse the n-th one once armed. Link into its own test binary.
#pragma once

#include <cstdint>

namespace brix::test_support {

/// Arms the allocator: the allocation `n` requests from now (0 = the next one) fails once.
void FailAllocationAfter(std::int64_t n);
/// Disarms the allocator; returns how many requests it counted since it was armed.
std::int64_t DisarmAllocator();
/// Whether the armed allocation has failed since the allocator was armed.
bool AllocationFailed();

}  // namespace brix::test_support
