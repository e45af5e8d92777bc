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

TEST(Estimation, SubtractRefusesEmptyOrUnequalVectors) {
  struct Case {
    Vector a;
    Vector b;
    char const* message;
  } const cases[] = {
      {{1.0, 2.0, 3.0}, {1.0, 2.0}, "checkVectorDimensions 3,2"},
      {{1.0}, {1.0, 2.0}, "checkVectorDimensions 1,2"},
      {{}, {}, "checkVectorDimensions 0,0"},
      {{}, {4.0}, "checkVectorDimensions 0,1"},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    EXPECT_TRUE(Estimation::subtract(c.a, c.b).empty()) << c.message;
    EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{kError, c.message}}));
  }
}

TEST(Estimation, SubtractIsElementWise) {
  LogCapture capture;
  EXPECT_EQ(Estimation::subtract({5.0, -1.0, 0.5}, {2.0, 1.0, 0.5}), (Vector{3.0, -2.0, 0.0}));
  EXPECT_TRUE(capture.lines().empty());
}

TEST(Estimation, WeightsEnterThroughTheirSquareRoots) {
  // Residuals (1, 1) under weights (4, 1).
  Estimation const estimation({1.0, 2.0}, {{1.0, -1.0}, {0.5, 3.0}}, {2.0, 3.0}, {7.0, 8.0},
                              {2.0, 1.0});
  EXPECT_EQ(estimation.getResiduals(), (Vector{2.0, 1.0}));
  EXPECT_EQ(estimation.getJacobian(), (Matrix{{2.0, -2.0}, {0.5, 3.0}}));
  EXPECT_DOUBLE_EQ(estimation.getCost(), std::sqrt(5.0));
  EXPECT_DOUBLE_EQ(estimation.getRMS(), std::sqrt(2.5));
  EXPECT_EQ(estimation.getPoint(), (Vector{7.0, 8.0}));
}

TEST(Estimation, ResidualsAreTargetMinusValue) {
  Estimation const estimation({3.0, 1.0}, {{0.0}, {0.0}}, {1.0, 4.0}, {0.0}, {1.0, 1.0});
  EXPECT_EQ(estimation.getResiduals(), (Vector{-2.0, 3.0}));
}

TEST(Estimation, MismatchedValueLeavesNoResidualsAndZeroCost) {
  LogCapture capture;
  Estimation const estimation({1.0}, {{1.0}}, {1.0, 2.0}, {0.0}, {1.0, 1.0});
  EXPECT_TRUE(estimation.getResiduals().empty());
  EXPECT_EQ(estimation.getCost(), 0.0);
  EXPECT_EQ(estimation.getRMS(), 0.0);
  EXPECT_EQ(capture.messages(kError), (std::vector<std::string>{"checkVectorDimensions 2,1"}));
}

TEST(Estimation, CopiesAreIndependent) {
  Estimation original({1.0}, {{1.0}}, {2.0}, {5.0}, {1.0});
  Estimation copy = original;
  original = Estimation({0.0}, {{3.0}}, {4.0}, {6.0}, {2.0});
  EXPECT_EQ(copy.getPoint(), (Vector{5.0}));
  EXPECT_EQ(copy.getResiduals(), (Vector{1.0}));
  EXPECT_EQ(original.getResiduals(), (Vector{8.0}));
}

}  // namespace
}  // namespace Vantis::Location
