// Counts the program's heap allocations through operator new, for benchmarks that report
// allocations and peak heap per call. Linking counting_allocator.cc replaces the global
// operator new and delete; an executable that exports its symbols also counts the allocations
// of the shared libraries it loads.
#ifndef CORVEX_BENCH_COUNTING_ALLOCATOR_H_
#define CORVEX_BENCH_COUNTING_ALLOCATOR_H_

#include <cstddef>

namespace corvex_bench {

struct AllocationStats {
  std::size_t allocations = 0;  // calls of operator new since the last reset
  std::size_t peakBytes = 0;    // highest live heap (bytes) above the live heap at the reset
};

// Starts counting afresh. Single-threaded use only.
void resetAllocationStats();
AllocationStats allocationStats();

}  // namespace corvex_bench

#endif  // CORVEX_BENCH_COUNTING_ALLOCATOR_H_
