#include "solver/lm_optimizer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "solver/function_model.h"
#include "solver/tag_value_and_jacobian_function.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::FunctionModel;
using corvex_test::LogCapture;
using corvex_test::LogLine;
using corvex_test::Matrix;
using corvex_test::problemWith;
using corvex_test::tagged;
using corvex_test::Vector;
using Lines = std::vector<std::string>;
using Ranges = TagValueAndJacobianFunction;

// Three anchors around a tag at (30, 40); the ranges are exact.
Matrix const kAnchors = {{0.0, 0.0}, {100.0, 0.0}, {0.0, 100.0}};
Vector const kTruth = {30.0, 40.0};

Vector rangesFrom(Matrix const& anchors, Vector const& point) {
  Vector ranges;
  for (Vector const& anchor : anchors) ranges.push_back(Ranges::dist(anchor, point));
  return ranges;
}

LSProblem rangeProblem(Matrix const& anchors, Vector const& ranges, Vector const& start,
                       Vector const& weights = {}) {
  return problemWith(std::make_shared<Ranges>(anchors), ranges, start, 1000, weights);
}

TEST(LMOptimizer, LimitsStopWithTheLastEvaluation) {
  struct Case {
    int maxEvaluations, maxIterations, evaluations, iterations;
    char const* line;
  } const cases[] = {
      // Limits never set stop at the first check.
      {0, 0, 1, 1, "E:Iteration counter exceeded the maximum value. return."},
      // The evaluation beyond the limit is returned.
      {2, 1000, 3, 2, "E:Evaluation counter exceeded the maximum value. return."},
      // At the top of the second iteration.
      {1000, 1, 2, 2, "E:Iteration counter exceeded the maximum value. return."},
  };
  for (Case const& c : cases) {
    Matrix points;  // every point the model was evaluated at
    auto const model = std::make_shared<FunctionModel>([&points](Vector const& point) {
      points.push_back(point);
      return Ranges(kAnchors).calculate(point);
    });
    LSProblem problem = problemWith(model, rangesFrom(kAnchors, kTruth), {50.0, 10.0});
    problem.setMaxEvaluations(c.maxEvaluations);
    problem.setMaxIterations(c.maxIterations);
    LogCapture capture;
    OptimizerResult const result = LMOptimizer().optimize(problem);
    EXPECT_EQ(result.getEvaluations(), c.evaluations);
    EXPECT_EQ(result.getIterations(), c.iterations);
    ASSERT_EQ(points.size(), static_cast<size_t>(c.evaluations));
    EXPECT_EQ(result.getPoint(), points.back());
    EXPECT_EQ(tagged(capture), Lines{c.line});
  }
}

TEST(LMOptimizer, BadProblemsStopInTheFirstIterationWithAnErrorLine) {
  auto const ranges = std::make_shared<Ranges>(kAnchors);
  auto const noAnchors = std::make_shared<Ranges>(Matrix{});
  auto const ragged = std::make_shared<FunctionModel>([](Vector const&) {
    return ValueAndJacobian({0.0, 0.0}, {{1.0, 0.0}, {1.0}});
  });
  std::string const mismatch = "E:optimize estimation size does not match the problem ";
  Lines const noModel = {"E:LocalLeastSquaresProblem input error",
                         "E:LocalLeastSquaresProblem model == NULL", "E:checkVectorDimensions 0,0",
                         mismatch + "2, 2"};
  struct Case {
    std::shared_ptr<ValueAndJacobianFunction> model;
    Vector target, start, weights;
    Lines lines;
  } const cases[] = {
      {nullptr, {1.0, 2.0}, {0.0, 0.0}, {1.0, 1.0}, noModel},
      // The range model has two columns; the start asks for three parameters.
      {ranges, {1.0, 2.0, 3.0}, {0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}, {mismatch + "3, 3"}},
      // No observations for two parameters.
      {noAnchors, {}, {0.0, 0.0}, {}, {"E:checkVectorDimensions 0,0", mismatch + "0, 2"}},
      // A negative weight has a NaN root, which stops the factorisation.
      {ranges, rangesFrom(kAnchors, kTruth), {50.0, 10.0}, {1.0, -1.0, 1.0}, {"E:optimize 3, 2"}},
      // Jacobian rows of unequal length.
      {ragged, {1.0, 2.0}, {0.0, 0.0}, {1.0, 1.0}, {mismatch + "2, 2"}},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    LSProblem problem = problemWith(c.model, c.target, c.start, 1000, c.weights);
    OptimizerResult const result = LMOptimizer().optimize(problem);
    EXPECT_EQ(result.getEvaluations(), 1);
    EXPECT_EQ(result.getIterations(), 1);
    EXPECT_EQ(tagged(capture), c.lines);
    EXPECT_EQ(result.getPoint(), c.model == nullptr ? Vector{} : c.start);
  }
}

// Pins the whole iteration path, not only the end points: a changed comparison or constant in
// the step-bound or damping rules shows up as other counts or other bits. 200 noisy, weighted
// range problems started at the origin, as the position calculator runs them; the expected
// figures were cross-checked against an independent step-by-step transcription.
TEST(LMOptimizer, FollowsTheSamePathBitForBit) {
  uint64_t state = 12345;  // a fixed LCG, so that every standard library draws the same numbers
  auto uniform = [&state] {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) * 0x1.0p-53;
  };
  long evaluations = 0;
  long iterations = 0;
  uint64_t digest = 0;
  for (int n = 0; n < 200; ++n) {
    Matrix anchors;
    Vector ranges;
    Vector weights;
    for (int i = 3 + static_cast<int>(uniform() * 8); i > 0; --i) {
      anchors.push_back({uniform() * 400 - 200, uniform() * 400 - 200});
      ranges.push_back(uniform() * 250);
      weights.push_back(uniform());
    }
    LSProblem problem = rangeProblem(anchors, ranges, {0.0, 0.0}, weights);
    OptimizerResult const result = LMOptimizer().optimize(problem);
    evaluations += result.getEvaluations();
    iterations += result.getIterations();
    for (double value : {result.getPoint()[0], result.getPoint()[1], result.getRMS()}) {
      uint64_t bits;
      std::memcpy(&bits, &value, sizeof bits);
      digest = digest * 31 + bits;
    }
  }
  EXPECT_EQ(evaluations, 3117);
  EXPECT_EQ(iterations, 2506);
  EXPECT_EQ(digest, 0xb65414594274dbe4ULL);
}

// Range problems at the edges, pinned by a digest of everything a run gives back: points, RMS,
// cost, counts and log lines. 1 to 5000 anchors; random, collinear, coincident, start-centred
// (fixed gradient rows) and two-cluster layouts; non-finite anchors, targets and weights,
// negative weights; limits from 0 to 1000; tolerances that cannot be met or end runs early.
TEST(LMOptimizer, KeepsItsPathOnHostileRangeProblems) {
  uint64_t state = 2024;
  auto uniform = [&state] {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) * 0x1.0p-53;
  };
  auto below = [&uniform](int n) { return static_cast<int>(uniform() * n); };
  double const inf = std::numeric_limits<double>::infinity();
  double const special[] = {inf, -inf, std::nan("")};
  int const sizes[] = {1, 2, 3, 4, 7, 20, 100};
  int const limits[] = {0, 1, 2, 5, 50, 1000};
  LMOptimizer const optimizers[] = {LMOptimizer(), LMOptimizer(),
                                    LMOptimizer(100.0, 1e-20, 1e-20, 1e-20, LMOptimizer::kSafeMin),
                                    LMOptimizer(100.0, -1.0, -2.0, -3.0, LMOptimizer::kSafeMin)};
  uint64_t digest = 0;
  auto mix = [&digest](double value) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    digest = digest * 31 + bits;
  };
  long evaluations = 0;
  for (int n = 0; n < 400; ++n) {
    int const size = n % 100 == 99 ? 5000 : n % 25 == 24 ? 1000 : sizes[below(7)];
    int const layout = below(5);
    double const extent = Vector{1.0, 10.0, 100.0, 1000.0}[below(4)];
    Matrix anchors;
    Vector ranges, weights;
    for (int i = 0; i < size; ++i) {
      double const t = uniform();
      Vector anchor = {uniform() * extent, uniform() * extent};
      if (layout == 1) anchor = {t * extent, 2 * t * extent + 1};
      if (layout == 2) anchor = {extent, -extent};
      if (layout == 3) anchor = {anchor[0] * 1e-5 / extent, anchor[1] * 1e-5 / extent};
      if (layout == 4) anchor[0] = (i % 2) * 3 * extent + t;
      anchors.push_back(anchor);
      ranges.push_back(uniform() * 2 * extent);
      weights.push_back(below(10) == 0 ? 0.0 : uniform() * uniform());
    }
    if (below(15) == 0) anchors[below(size)][below(2)] = special[below(3)];
    if (below(15) == 0) ranges[below(size)] = special[below(3)];
    if (below(15) == 0) weights[below(size)] = below(2) == 0 ? -0.5 : inf;
    Vector const start =
        below(4) == 0 ? Vector{uniform() * extent, uniform() * extent} : Vector{0.0, 0.0};
    LSProblem problem = rangeProblem(anchors, ranges, start, weights);
    if (below(4) == 0) {
      problem.setMaxEvaluations(limits[below(6)]);
      problem.setMaxIterations(limits[below(6)]);
    }
    LogCapture capture;
    OptimizerResult const result = optimizers[below(4)].optimize(problem);
    for (double value : result.getPoint()) mix(value);
    mix(result.getRMS());
    mix(result.getCost());
    mix(result.getEvaluations());
    mix(result.getIterations());
    for (LogLine const& line : capture.lines()) {
      mix(line.level);
      for (char c : line.message) mix(c);
    }
    evaluations += result.getEvaluations();
  }
  EXPECT_EQ(evaluations, 18809);
  EXPECT_EQ(digest, 0xd0ed433fb6dcb656ULL);
}

}  // namespace
}  // namespace Vantis::Location
