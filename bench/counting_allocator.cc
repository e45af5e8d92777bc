#include "counting_allocator.h"

#include <cstdlib>
#include <new>

namespace corvex_bench {
namespace {

// Each block carries its size in front, so that delete knows what it frees.
constexpr std::size_t kHeader = alignof(std::max_align_t);

std::size_t allocations = 0;
std::size_t liveBytes = 0;
std::size_t baseBytes = 0;
std::size_t peakBytes = 0;

void* allocate(std::size_t size) {
  void* block = std::malloc(size + kHeader);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  *static_cast<std::size_t*>(block) = size;
  ++allocations;
  liveBytes += size;
  if (liveBytes > peakBytes) {
    peakBytes = liveBytes;
  }
  return static_cast<char*>(block) + kHeader;
}

void release(void* pointer) {
  if (pointer == nullptr) {
    return;
  }
  void* block = static_cast<char*>(pointer) - kHeader;
  liveBytes -= *static_cast<std::size_t*>(block);
  std::free(block);
}

}  // namespace

void resetAllocationStats() {
  allocations = 0;
  baseBytes = liveBytes;
  peakBytes = liveBytes;
}

AllocationStats allocationStats() { return {allocations, peakBytes - baseBytes}; }

}  // namespace corvex_bench

void* operator new(std::size_t size) { return corvex_bench::allocate(size); }
void* operator new[](std::size_t size) { return corvex_bench::allocate(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  try {
    return corvex_bench::allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
  return operator new(size, std::nothrow);
}
void operator delete(void* pointer) noexcept { corvex_bench::release(pointer); }
void operator delete[](void* pointer) noexcept { corvex_bench::release(pointer); }
void operator delete(void* pointer, std::size_t) noexcept { corvex_bench::release(pointer); }
void operator delete[](void* pointer, std::size_t) noexcept { corvex_bench::release(pointer); }
