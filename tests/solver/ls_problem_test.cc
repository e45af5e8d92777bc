#include "solver/ls_problem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "solver/constriction_inspector.h"
#include "solver/estimation.h"
#include "solver/tag_value_and_jacobian_function.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::LogCapture;
using corvex_test::LogLine;
using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

LSProblem problemWith(std::shared_ptr<ValueAndJacobianFunction> const& model, Vector const& target,
                      Vector const& start, Vector const& weights) {
  return LSProblem(model, target, start, weights, ConstrictionInspector<Estimation>());
}

TEST(LSProblem, SizesComeFromTargetAndStart) {
  LSProblem problem = problemWith(std::make_shared<TagValueAndJacobianFunction>(Matrix{}),
                                  Vector(5, 1.0), {0.0, 0.0}, Vector(5, 1.0));
  EXPECT_EQ(problem.getObservationSize(), 5);
  EXPECT_EQ(problem.getParameterSize(), 2);
  EXPECT_EQ(problem.getStart(), (Vector{0.0, 0.0}));
  EXPECT_EQ(problem.getMaxEvaluations(), 0);
  EXPECT_EQ(problem.getMaxIterations(), 0);
  problem.setMaxEvaluations(1000);
  problem.setMaxIterations(7);
  EXPECT_EQ(problem.getMaxEvaluations(), 1000);
  EXPECT_EQ(problem.getMaxIterations(), 7);
}

TEST(LSProblem, ArraySqrtTakesEachRootWithoutChecks) {
  Vector const roots = LSProblem::arraySqrt({4.0, 0.0, 2.25, -1.0});
  ASSERT_EQ(roots.size(), 4u);
  EXPECT_EQ(roots[0], 2.0);
  EXPECT_EQ(roots[1], 0.0);
  EXPECT_EQ(roots[2], 1.5);
  EXPECT_TRUE(std::isnan(roots[3]));
}

TEST(LSProblem, EvaluatesRangesAgainstTargetsWithWeights) {
  LSProblem problem =
      problemWith(std::make_shared<TagValueAndJacobianFunction>(Matrix{{3.0, 0.0}, {0.0, 4.0}}),
                  {5.0, 1.0}, {0.0, 0.0}, {4.0, 9.0});
  Estimation const estimation = problem.evaluate({0.0, 0.0});
  EXPECT_EQ(estimation.getPoint(), (Vector{0.0, 0.0}));
  EXPECT_EQ(estimation.getResiduals(), (Vector{2.0 * 2.0, 3.0 * -3.0}));
  EXPECT_EQ(estimation.getJacobian(), (Matrix{{-2.0, 0.0}, {0.0, -3.0}}));
}

TEST(LSProblem, MissingModelIsReportedAndEvaluatesToNothing) {
  LogCapture capture;
  LSProblem problem = problemWith(nullptr, {1.0, 2.0}, {0.0, 0.0}, {1.0, 1.0});
  Estimation const estimation = problem.evaluate({0.0, 0.0});
  EXPECT_TRUE(estimation.getPoint().empty());
  EXPECT_TRUE(estimation.getResiduals().empty());
  EXPECT_TRUE(estimation.getJacobian().empty());
  EXPECT_EQ(estimation.getCost(), 0.0);
  EXPECT_TRUE(std::isnan(estimation.getRMS()));
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{
                                 {kError, "LocalLeastSquaresProblem input error"},
                                 {kError, "LocalLeastSquaresProblem model == NULL"},
                                 {kError, "checkVectorDimensions 0,0"},
                             }));
}

}  // namespace
}  // namespace Vantis::Location
