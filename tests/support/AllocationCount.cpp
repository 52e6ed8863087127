#include "support/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t g_uAllocations = 0;
long g_iUntilFailure = -1;
std::size_t g_uFailingFrom = 0;
bool g_bFailed = false;

void* Counted(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept {
  ++g_uAllocations;
  if (size >= g_uFailingFrom && g_iUntilFailure >= 0 && g_iUntilFailure-- == 0) {
    g_bFailed = true;
    return nullptr;
  }
  // The size must be a multiple of the alignment.
  return std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
}
void* OrThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
std::size_t Of(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

}  // namespace

std::size_t AllocationCount() { return g_uAllocations; }

void FailAllocation(long count, std::size_t fromSize) {
  g_iUntilFailure = count;
  g_uFailingFrom = fromSize;
  g_bFailed = false;
}

bool HasAllocationFailed() { return g_bFailed; }

// NOLINTBEGIN(cppcoreguidelines-no-malloc): this is what the rest of the program manages its memory with.
// Every form, so that none is paired with one of the library's.
void* operator new(std::size_t size) { return OrThrow(Counted(size)); }
void* operator new[](std::size_t size) { return OrThrow(Counted(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) { return OrThrow(Counted(size, Of(alignment))); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return OrThrow(Counted(size, Of(alignment))); }
void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept { return Counted(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*unused*/) noexcept { return Counted(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*unused*/) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*unused*/) noexcept { std::free(memory); }
// NOLINTEND(cppcoreguidelines-no-malloc)
