// Generated inputs for GetAggregateLocation, by family: realistic scan histories of one tag
// and hostile ones. Shared by the latency driver, the A/B driver and the benchmarks so that
// each measures and compares the same inputs.
#ifndef CORVEX_BENCH_SCAN_FAMILIES_H_
#define CORVEX_BENCH_SCAN_FAMILIES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"

namespace corvex_bench {

struct ScanFamily {
  char const* name;
  // Whether every input of the family orders its records consistently (no NaN field decides
  // between records of one scan time). Only such inputs must give bit-identical results
  // across builds; the others may differ from builds before the clustering took a total order.
  bool orderingConsistent;
  void (*fill)(std::vector<AggregateScanInfo>& infos, std::uint64_t seed);
};

// Every family; the first five are the realistic ones of the latency table.
std::vector<ScanFamily> const& scanFamilies();
ScanFamily const* findScanFamily(std::string const& name);

// `count` records of the family; the same seed gives the same records. Strings point to
// storage that lives as long as the program.
std::vector<AggregateScanInfo> makeScans(ScanFamily const& family, int count, std::uint64_t seed);

}  // namespace corvex_bench

#endif  // CORVEX_BENCH_SCAN_FAMILIES_H_
