// The filter pipeline and its clustering on request-sized record sets: one dense group of
// observers, or several groups kilometres apart.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "filter/ble_scan_info_filters.h"
#include "filter/db_scan.h"
#include "support/literal_db_scan.h"

namespace {

using Vantis::Location::BleScanInfoFilters;
using Vantis::Location::BleScanInfoWithConfidence;
using Vantis::Location::BlueToothRecord;
using Vantis::Location::DbScan;
using Vantis::Location::LastLocation;

// `count` records in ascending time, spread over `groups` groups 2 km apart, each observer
// within 50 m of its group's centre; half of them GNSS fixes.
std::vector<BleScanInfoWithConfidence> makeRecords(int count, int groups) {
  std::mt19937 random(42);
  std::uniform_real_distribution<double> offset(-35.0, 35.0);
  std::uniform_real_distribution<double> confidence(0.6, 1.0);
  std::vector<BleScanInfoWithConfidence> infos;
  for (int i = 0; i < count; ++i) {
    double const centre = 2000.0 * (i * groups / count);
    LastLocation location(centre + offset(random), offset(random), 10.0f, i % 2, 0);
    location.setEnu(true);
    infos.emplace_back(BlueToothRecord(1700000000000LL + i * 1000LL, -60 - i % 40), location, 0, 0,
                       confidence(random));
  }
  return infos;
}

void pipeline(benchmark::State& state, int groups) {
  std::vector<BleScanInfoWithConfidence> const infos =
      makeRecords(static_cast<int>(state.range(0)), groups);
  for (auto _ : state) {
    std::vector<int> infoCount;
    benchmark::DoNotOptimize(BleScanInfoFilters::filter(infos, infoCount));
  }
}

void BM_PipelineOneDenseCluster(benchmark::State& state) { pipeline(state, 1); }
void BM_PipelineFiveFarClusters(benchmark::State& state) { pipeline(state, 5); }

template <typename Scan>
void clustering(benchmark::State& state) {
  std::vector<BleScanInfoWithConfidence> const infos =
      makeRecords(static_cast<int>(state.range(0)), 5);
  for (auto _ : state) {
    benchmark::DoNotOptimize(Scan(400.0, 1).cluster(infos));
  }
}

void BM_ClusteringFast(benchmark::State& state) {
  clustering<DbScan<BleScanInfoWithConfidence>>(state);
}
void BM_ClusteringLiteral(benchmark::State& state) {
  clustering<corvex_test::LiteralDbScan<BleScanInfoWithConfidence>>(state);
}

}  // namespace

BENCHMARK(BM_PipelineOneDenseCluster)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PipelineFiveFarClusters)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ClusteringFast)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ClusteringLiteral)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(1);
