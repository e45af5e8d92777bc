// The least-squares range fit as the position calculator runs it, on 100 to 5000 anchors: a
// short fit (noisy ranges, converges in a few iterations) and a long one (anchors within 10 um
// of each other and ranges that disagree, so the fit crawls for hundreds of iterations).
// Counts heap allocations per optimize call with the counting allocator.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "counting_allocator.h"
#include "solver/constriction_inspector.h"
#include "solver/lm_optimizer.h"
#include "solver/ls_problem.h"
#include "solver/tag_value_and_jacobian_function.h"

namespace {

using Vantis::Location::ConstrictionInspector;
using Vantis::Location::Estimation;
using Vantis::Location::LMOptimizer;
using Vantis::Location::LSProblem;
using Vantis::Location::OptimizerResult;
using Vantis::Location::TagValueAndJacobianFunction;

// Short: anchors in a 200 m square, ranges to a tag at (30, 20) with up to 1.5 m of noise.
// Long: anchors within 10 um, ranges up to 2 m. Weights from 0.3 to 1; the start is the
// origin, as in the position calculator.
LSProblem makeProblem(int count, bool crawling) {
  uint64_t state = crawling ? 2 : 7;  // seeds whose fits are typical of their kind
  auto uniform = [&state] {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) * 0x1.0p-53;
  };
  std::vector<std::vector<double>> anchors;
  std::vector<double> ranges;
  std::vector<double> weights;
  for (int i = 0; i < count; ++i) {
    double const scale = crawling ? 1e-5 : 200.0;
    double const x = (uniform() - 0.5) * scale;
    double const y = (uniform() - 0.5) * scale;
    anchors.push_back({x, y});
    ranges.push_back(crawling ? 2.0 * uniform()
                              : std::hypot(x - 30.0, y - 20.0) + 3.0 * (uniform() - 0.5));
    weights.push_back(0.3 + 0.7 * uniform());
  }
  LSProblem problem(std::make_shared<TagValueAndJacobianFunction>(anchors), ranges, {0.0, 0.0},
                    weights, ConstrictionInspector<Estimation>());
  problem.setMaxEvaluations(1000);
  problem.setMaxIterations(1000);
  return problem;
}

void optimize(benchmark::State& state, bool crawling) {
  LSProblem problem = makeProblem(static_cast<int>(state.range(0)), crawling);
  LMOptimizer const optimizer;
  std::size_t allocated = 0;
  int evaluations = 0;
  for (auto _ : state) {
    corvex_bench::resetAllocationStats();
    OptimizerResult const result = optimizer.optimize(problem);
    allocated += corvex_bench::allocationStats().allocations;
    evaluations = result.getEvaluations();
    benchmark::DoNotOptimize(result.getRMS());
  }
  state.counters["allocations"] =
      static_cast<double>(allocated) / static_cast<double>(state.iterations());
  state.counters["evaluations"] = evaluations;
}

void BM_OptimizeShortFit(benchmark::State& state) { optimize(state, false); }
void BM_OptimizeLongFit(benchmark::State& state) { optimize(state, true); }

}  // namespace

BENCHMARK(BM_OptimizeShortFit)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OptimizeLongFit)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
