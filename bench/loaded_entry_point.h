// The entry point of a given build of libcorvex.so, for the drivers that compare builds, and
// the release of what a call hands back.
#ifndef CORVEX_BENCH_LOADED_ENTRY_POINT_H_
#define CORVEX_BENCH_LOADED_ENTRY_POINT_H_

#include <dlfcn.h>

#include "corvex/aggregate_location.h"

namespace corvex_bench {

using Locate = int (*)(const AggregateScanInfo*, int, AggregateLocationResult*, char**);

// GetAggregateLocation of the library at `path`, which stays loaded; null when either step
// fails (dlerror() says why).
inline Locate loadEntryPoint(char const* path) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  return library != nullptr ? reinterpret_cast<Locate>(dlsym(library, "GetAggregateLocation"))
                            : nullptr;
}

// Frees the strings one call handed back.
inline void releaseStrings(AggregateLocationResult const& result, char* trace) {
  delete[] result.geoId;
  delete[] result.floorInfo;
  delete[] trace;
}

}  // namespace corvex_bench

#endif  // CORVEX_BENCH_LOADED_ENTRY_POINT_H_
