#include "solver/tag_value_and_jacobian_function.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace Vantis::Location {
namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

TEST(TagValueAndJacobianFunction, GivesRangeAndUnitDirectionPerAnchor) {
  struct Case {
    Matrix anchors;
    Vector point;
    Vector ranges;
    Matrix jacobian;
  } const cases[] = {
      {{{0.0, 0.0}, {6.0, 8.0}, {3.0, -4.0}},
       {3.0, 4.0},
       {5.0, 5.0, 8.0},
       {{0.6, 0.8}, {-0.6, -0.8}, {0.0, 1.0}}},
      {{{0.0, 0.0, 100.0}}, {3.0, 4.0, -7.0}, {5.0}, {{0.6, 0.8}}},  // only x and y count
      {{}, {1.0, 2.0}, {}, {}},
      // The row is fixed up to a tenth of a millimetre from the anchor.
      {{{0.0, 0.0}}, {0.0, 0.0}, {0.0}, {{1.0, 1.0}}},
      {{{0.0, 0.0}}, {0.0001, 0.0}, {0.0001}, {{1.0, 1.0}}},
      {{{0.0, 0.0}}, {0.0, -0.00011}, {0.00011}, {{0.0, -1.0}}},
      {{{0.0, 0.0}}, {0.00011, 0.0}, {0.00011}, {{1.0, 0.0}}},
  };
  for (Case const& c : cases) {
    ValueAndJacobian const result = TagValueAndJacobianFunction(c.anchors).calculate(c.point);
    EXPECT_EQ(result.getValue(), c.ranges) << c.point[0] << " " << c.point[1];
    EXPECT_EQ(result.getJacobian(), c.jacobian) << c.point[0] << " " << c.point[1];
  }
  EXPECT_EQ(TagValueAndJacobianFunction::dist({1.0, 1.0, 9.0}, {4.0, 5.0}), 5.0);
  // A zero difference gives +0.0, whose sign the factorisation carries on.
  EXPECT_FALSE(std::signbit(
      TagValueAndJacobianFunction({{3.0, 0.0}}).calculate({3.0, 4.0}).getJacobian()[0][0]));
}

TEST(TagValueAndJacobianFunction, ShortPointReadsAsNaNInsteadOfOverrunning) {
  ValueAndJacobian const result = TagValueAndJacobianFunction({{1.0, 2.0}}).calculate({1.0});
  ASSERT_EQ(result.getValue().size(), 1u);
  EXPECT_TRUE(std::isnan(result.getValue()[0]));
}

}  // namespace
}  // namespace Vantis::Location
