#include "solver/ls_problem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "solver/function_model.h"
#include "solver/tag_value_and_jacobian_function.h"

namespace Vantis::Location {
namespace {

using corvex_test::Matrix;
using corvex_test::Vector;

TEST(LSProblem, SizesComeFromTargetAndStartAndLimitsStartAtZero) {
  LSProblem const problem(std::make_shared<TagValueAndJacobianFunction>(Matrix{}), Vector(5, 1.0),
                          {0.0, 0.0}, Vector(5, 1.0), ConstrictionInspector<Estimation>());
  EXPECT_EQ(problem.getObservationSize(), 5);
  EXPECT_EQ(problem.getParameterSize(), 2);
  EXPECT_EQ(problem.getMaxEvaluations(), 0);
  EXPECT_EQ(problem.getMaxIterations(), 0);
}

TEST(LSProblem, ArraySqrtTakesEachRootWithoutChecks) {
  Vector const roots = LSProblem::arraySqrt({4.0, 0.0, 2.25, -1.0});
  EXPECT_EQ(Vector(roots.begin(), roots.begin() + 3), (Vector{2.0, 0.0, 1.5}));
  EXPECT_TRUE(std::isnan(roots.at(3)));
}

TEST(LSProblem, EvaluatesRangesAgainstTargetsWithWeights) {
  auto const ranges = std::make_shared<TagValueAndJacobianFunction>(Matrix{{3.0, 0.0}, {0.0, 4.0}});
  Estimation const estimation =
      corvex_test::problemWith(ranges, {5.0, 1.0}, {0.0, 0.0}, 1000, {4.0, 9.0}).evaluate({0, 0});
  EXPECT_EQ(estimation.getPoint(), (Vector{0.0, 0.0}));
  EXPECT_EQ(estimation.getResiduals(), (Vector{2.0 * 2.0, 3.0 * -3.0}));
  EXPECT_EQ(estimation.getJacobian(), (Matrix{{-2.0, 0.0}, {0.0, -3.0}}));
}

}  // namespace
}  // namespace Vantis::Location
