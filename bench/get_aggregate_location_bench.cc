// GetAggregateLocation on every input family at the sizes of the latency table. The latency
// driver (latency_driver.cc) gives p50 and compares two builds; these entries are for profiling
// one build.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "loaded_entry_point.h"
#include "scan_families.h"

namespace {

void locate(benchmark::State& state, corvex_bench::ScanFamily const* family) {
  setenv("CORVEX_LOG_LEVEL", "off", 1);
  std::vector<AggregateScanInfo> const infos =
      corvex_bench::makeScans(*family, static_cast<int>(state.range(0)), 1);
  for (auto _ : state) {
    AggregateLocationResult result{};
    char* trace = nullptr;
    benchmark::DoNotOptimize(
        GetAggregateLocation(infos.data(), static_cast<int>(infos.size()), &result, &trace));
    corvex_bench::releaseStrings(result, trace);
  }
}

int const kRegistered = [] {
  for (corvex_bench::ScanFamily const& family : corvex_bench::scanFamilies()) {
    benchmark::RegisterBenchmark((std::string("GetAggregateLocation/") + family.name).c_str(),
                                 locate, &family)
        ->Arg(100)
        ->Arg(1000)
        ->Arg(5000)
        ->Unit(benchmark::kMicrosecond);
  }
  return 0;
}();

}  // namespace
