#include "solver/tag_value_and_jacobian_function.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace Vantis::Location {
namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

TEST(TagValueAndJacobianFunction, GivesRangeAndUnitDirectionPerAnchor) {
  TagValueAndJacobianFunction const model({{0.0, 0.0}, {6.0, 8.0}, {3.0, -4.0}});
  ValueAndJacobian const result = model.calculate({3.0, 4.0});
  EXPECT_EQ(result.getValue(), (Vector{5.0, 5.0, 8.0}));
  EXPECT_EQ(result.getJacobian(), (Matrix{{0.6, 0.8}, {-0.6, -0.8}, {0.0, 1.0}}));
}

TEST(TagValueAndJacobianFunction, FixesTheRowUpToATenthOfAMillimetre) {
  struct Case {
    Vector point;
    double range;
    Vector row;
  } const cases[] = {
      {{0.0, 0.0}, 0.0, {1.0, 1.0}},            // on the anchor
      {{0.0001, 0.0}, 0.0001, {1.0, 1.0}},      // exactly at the guard
      {{0.0, -0.00011}, 0.00011, {0.0, -1.0}},  // just beyond it
      {{0.00011, 0.0}, 0.00011, {1.0, 0.0}},
  };
  TagValueAndJacobianFunction const model({{0.0, 0.0}});
  for (Case const& c : cases) {
    ValueAndJacobian const result = model.calculate(c.point);
    EXPECT_EQ(result.getValue(), (Vector{c.range})) << c.point[0] << " " << c.point[1];
    EXPECT_EQ(result.getJacobian(), (Matrix{c.row})) << c.point[0] << " " << c.point[1];
  }
}

TEST(TagValueAndJacobianFunction, IgnoresCoordinatesBeyondTheSecond) {
  TagValueAndJacobianFunction const model({{0.0, 0.0, 100.0}});
  ValueAndJacobian const result = model.calculate({3.0, 4.0, -7.0});
  EXPECT_EQ(result.getValue(), (Vector{5.0}));
  EXPECT_EQ(result.getJacobian(), (Matrix{{0.6, 0.8}}));
  EXPECT_EQ(TagValueAndJacobianFunction::dist({1.0, 1.0, 9.0}, {4.0, 5.0}), 5.0);
}

TEST(TagValueAndJacobianFunction, NoAnchorsGiveNothing) {
  ValueAndJacobian const result = TagValueAndJacobianFunction({}).calculate({1.0, 2.0});
  EXPECT_TRUE(result.getValue().empty());
  EXPECT_TRUE(result.getJacobian().empty());
}

TEST(TagValueAndJacobianFunction, ShortPointReadsAsNaNInsteadOfOverrunning) {
  ValueAndJacobian const result = TagValueAndJacobianFunction({{1.0, 2.0}}).calculate({1.0});
  ASSERT_EQ(result.getValue().size(), 1u);
  EXPECT_TRUE(std::isnan(result.getValue()[0]));
}

}  // namespace
}  // namespace Vantis::Location
