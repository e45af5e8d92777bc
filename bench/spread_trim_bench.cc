// The spread trim as the filter pipeline runs it (at least half the points kept, spread at
// most 15 m): the literal loop against SpreadTrimmer on the same points.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "filter/spread_trimmer.h"
#include "support/literal_spread_trim.h"

namespace {

struct Points {
  std::vector<double> xs;
  std::vector<double> ys;
};

enum Family { kDenseCluster, kDenseGaussian, kClustersAndOutliers };

// Dense cluster: observers uniform in a 70 m square. Dense Gaussian: a 25 m normal spread,
// as when every record of a dense scan history passes the confidence cut. Clusters and
// outliers: three groups 30 m apart with one point in ten anywhere within 300 m.
Points makePoints(Family family, int count) {
  std::mt19937 random(42);
  std::uniform_real_distribution<double> square(-35.0, 35.0);
  std::normal_distribution<double> gaussian(0.0, 25.0);
  std::normal_distribution<double> group(0.0, 8.0);
  std::uniform_real_distribution<double> far(-300.0, 300.0);
  Points points;
  for (int i = 0; i < count; ++i) {
    double x = 0.0;
    double y = 0.0;
    if (family == kDenseCluster) {
      x = square(random);
      y = square(random);
    } else if (family == kDenseGaussian) {
      x = gaussian(random);
      y = gaussian(random);
    } else if (i % 10 == 0) {
      x = far(random);
      y = far(random);
    } else {
      x = 30.0 * (i % 3) + group(random);
      y = group(random);
    }
    points.xs.push_back(x);
    points.ys.push_back(y);
  }
  return points;
}

int minItems(int count) { return std::max(10, count / 2); }

template <bool kLiteral>
void trim(benchmark::State& state, Family family) {
  int const count = static_cast<int>(state.range(0));
  Points const points = makePoints(family, count);
  size_t kept = 0;
  for (auto _ : state) {
    std::vector<size_t> const result =
        kLiteral
            ? corvex_test::literalSpreadTrim(points.xs, points.ys, minItems(count), 15.0)
            : Vantis::Location::SpreadTrimmer::keep(points.xs, points.ys, minItems(count), 15.0);
    kept = result.size();
    benchmark::DoNotOptimize(result.data());
  }
  state.counters["kept"] = static_cast<double>(kept);
}

void BM_SpreadTrimLiteral_DenseCluster(benchmark::State& s) { trim<true>(s, kDenseCluster); }
void BM_SpreadTrim_DenseCluster(benchmark::State& s) { trim<false>(s, kDenseCluster); }
void BM_SpreadTrimLiteral_DenseGaussian(benchmark::State& s) { trim<true>(s, kDenseGaussian); }
void BM_SpreadTrim_DenseGaussian(benchmark::State& s) { trim<false>(s, kDenseGaussian); }
void BM_SpreadTrimLiteral_ClustersAndOutliers(benchmark::State& s) {
  trim<true>(s, kClustersAndOutliers);
}
void BM_SpreadTrim_ClustersAndOutliers(benchmark::State& s) {
  trim<false>(s, kClustersAndOutliers);
}

}  // namespace

BENCHMARK(BM_SpreadTrimLiteral_DenseCluster)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SpreadTrim_DenseCluster)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SpreadTrimLiteral_DenseGaussian)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SpreadTrim_DenseGaussian)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SpreadTrimLiteral_ClustersAndOutliers)
    ->Arg(1000)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SpreadTrim_ClustersAndOutliers)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
