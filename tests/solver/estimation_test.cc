#include "solver/estimation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::LogCapture;
using corvex_test::LogLine;
using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

TEST(Estimation, SubtractIsElementWiseAndRefusesEmptyOrUnequalVectors) {
  struct Case {
    Vector a;
    Vector b;
    Vector difference;
    std::vector<LogLine> lines;
  } const cases[] = {
      {{5.0, -1.0, 0.5}, {2.0, 1.0, 0.5}, {3.0, -2.0, 0.0}, {}},
      {{1.0, 2.0, 3.0}, {1.0, 2.0}, {}, {{kError, "checkVectorDimensions 3,2"}}},
      {{1.0}, {1.0, 2.0}, {}, {{kError, "checkVectorDimensions 1,2"}}},
      {{}, {}, {}, {{kError, "checkVectorDimensions 0,0"}}},
      {{}, {4.0}, {}, {{kError, "checkVectorDimensions 0,1"}}},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    EXPECT_EQ(Estimation::subtract(c.a, c.b), c.difference);
    EXPECT_EQ(capture.lines(), c.lines);
  }
}

TEST(Estimation, ResidualsAreTargetMinusValueWeightedByRoots) {
  // Residuals (1, -1) under weights (4, 1).
  Estimation const estimation({1.0, 4.0}, {{1.0, -1.0}, {0.5, 3.0}}, {2.0, 3.0}, {7.0, 8.0},
                              {2.0, 1.0});
  EXPECT_EQ(estimation.getResiduals(), (Vector{2.0, -1.0}));
  EXPECT_EQ(estimation.getJacobian(), (Matrix{{2.0, -2.0}, {0.5, 3.0}}));
  EXPECT_DOUBLE_EQ(estimation.getCost(), std::sqrt(5.0));
  EXPECT_DOUBLE_EQ(estimation.getRMS(), std::sqrt(2.5));
  EXPECT_EQ(estimation.getPoint(), (Vector{7.0, 8.0}));
}

TEST(Estimation, MismatchedValueLeavesNoResidualsAndZeroCost) {
  LogCapture capture;
  Estimation const estimation({1.0}, {{1.0}}, {1.0, 2.0}, {0.0}, {1.0, 1.0});
  EXPECT_TRUE(estimation.getResiduals().empty());
  EXPECT_EQ(estimation.getCost(), 0.0);
  EXPECT_EQ(estimation.getRMS(), 0.0);
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{kError, "checkVectorDimensions 2,1"}}));
}

}  // namespace
}  // namespace Vantis::Location
