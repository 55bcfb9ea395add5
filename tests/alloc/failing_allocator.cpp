// Global operator new/delete and pugixml's allocator routed through one countdown.
#include "tests/alloc/failing_allocator.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <pugixml.hpp>

namespace brix::test_support {
namespace {

std::atomic<bool> armed{false};
std::atomic<bool> failed{false};
std::atomic<std::int64_t> remaining{0};
std::atomic<std::int64_t> counted{0};

// True when this request is the one to refuse.
bool RefuseThisRequest() {
  if (!armed.load(std::memory_order_relaxed)) return false;
  counted.fetch_add(1, std::memory_order_relaxed);
  if (remaining.fetch_sub(1, std::memory_order_relaxed) != 0) return false;
  failed.store(true, std::memory_order_relaxed);
  return true;
}

void* Allocate(std::size_t size) {
  if (RefuseThisRequest()) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

void* AllocateOrThrow(std::size_t size) {
  if (void* block = Allocate(size)) return block;
  throw std::bad_alloc();
}

void* AllocateAlignedOrThrow(std::size_t size, std::align_val_t alignment) {
  const auto align = static_cast<std::size_t>(alignment);
  if (!RefuseThisRequest()) {
    if (void* block = std::aligned_alloc(align, (size + align - 1) / align * align)) return block;
  }
  throw std::bad_alloc();
}

struct PugixmlHook {
  PugixmlHook() { pugi::set_memory_management_functions(Allocate, std::free); }
} pugixml_hook;

}  // namespace

void FailAllocationAfter(std::int64_t n) {
  counted = 0;
  failed = false;
  remaining = n;
  armed = true;
}

std::int64_t DisarmAllocator() {
  armed = false;
  return counted.load();
}

bool AllocationFailed() { return failed.load(); }

}  // namespace brix::test_support

using brix::test_support::AllocateAlignedOrThrow;
using brix::test_support::AllocateOrThrow;

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, std::align_val_t align) {
  return AllocateAlignedOrThrow(size, align);
}
void* operator new[](std::size_t size, std::align_val_t align) {
  return AllocateAlignedOrThrow(size, align);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return brix::test_support::Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return brix::test_support::Allocate(size);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
