// Position solving: the choice between weighted mean and range fit, and the numeric helpers.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "support/calculator_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::LogCapture;
using Calculator = CorvexTagPositionCalculator;
using Matrix = std::vector<std::vector<double>>;
using Strings = std::vector<std::string>;

TEST(CorvexTagPositionCalculator, SolvesByWeightedMeanBelowSpreadFiveAndByRangeFitFromIt) {
  struct Case {
    char const* name;
    std::vector<corvex_test::Scan> scans;  // x, y (metres), time, rssi, confidence, newConfidence
    double lon, lat, confidence;
    float acc;
    Strings errors;
  } const cases[] = {
      // Observers at -w, 0 and w east have a mean distance of 2w / 3 from their centroid:
      // w = 37.35 m gives a spread just below 5, 37.5 m exactly 5. No point is 10 m from all
      // three, so the fit's residual adds to the accuracy.
      {"spread below 5: mean",
       {{-37.35, 0, 1, -99, 0.9, 1}, {0, 0, 1, -99, 0.9, 1}, {37.35, 0, 1, -99, 0.9, 1}},
       0,
       0,
       1,
       10,
       {}},
      {"spread 5: fit",
       {{-37.5, 0, 1, -99, 0.9, 1}, {0, 0, 1, -99, 0.9, 1}, {37.5, 0, 1, -99, 0.9, 1}},
       0.000515272,
       4.0490530,
       1,
       32.890938f,
       {}},
      // Weights are newConfidence squared; lon, lat, acc and confidence each report them tiny.
      {"weights below 0.0001",
       {{30, 40, 7, -80, 0.9, 0.0099}},
       0,
       0,
       0,
       0,
       Strings(4, "sum of weight less than 0.0001")},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<BleScanInfoWithConfidence> infos;
    for (corvex_test::Scan const& scan : c.scans) infos.push_back(scan.inPlane());
    LogCapture capture;
    TagBestLocation const result = Calculator().getTagResult(infos);
    EXPECT_NEAR(result.getLon(), c.lon, 1e-6);
    EXPECT_NEAR(result.getLat(), c.lat, 1e-6);
    EXPECT_NEAR(result.getAcc(), c.acc, 1e-4);
    EXPECT_EQ(result.getConfidence(), c.confidence);
    EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
    EXPECT_EQ(capture.messages(kError), c.errors);
  }
}

TEST(CorvexTagPositionCalculator, NumericHelpersAnswerIllegalInputWithNeutralValues) {
  LogCapture capture;
  EXPECT_EQ(Calculator::getWeightedAvg({}, {}), 0.0);
  EXPECT_EQ(Calculator::getWeightedAvg({1, 2}, {1}), 0.0);
  EXPECT_EQ(Calculator::getWeightedAvg({1}, {1, 2}), 0.0);
  EXPECT_EQ(Calculator::getWeightedAvg({1, 2}, {0.00004, 0.00005}), 0.0);
  EXPECT_DOUBLE_EQ(Calculator::getWeightedAvg({4}, {0.0001}), 4.0);
  EXPECT_EQ(Calculator::getWeightedAvg({1, 3}, {-1, 2}), 5.0);  // only the weights' sum counts
  EXPECT_TRUE(Calculator::transpose(Matrix{}).empty());
  EXPECT_TRUE(Calculator::transpose(Matrix{{}, {1}}).empty());
  // Rows shorter than the first read as NaN instead of past their end.
  EXPECT_TRUE(std::isnan(Calculator::transpose(Matrix{{1, 2}, {3}})[1][1]));
  EXPECT_EQ(Calculator::getLatestTimeStamp({}), 0);
  EXPECT_EQ(Calculator::getOptimumResult({10}, {5}, {1}, {}, nullptr).getLon(), 0.0);
  EXPECT_EQ(Calculator::stdPointError(Matrix{}), 0.0);
  EXPECT_EQ(Calculator::meanPoint(Matrix{}), (std::vector<double>{0, 0}));
  EXPECT_EQ(Calculator::getRefPos({}), (std::vector<double>{0, 0}));
  Strings expected(3, "getWeightedAvg input illegal");
  expected.insert(
      expected.end(),
      {"sum of weight less than 0.0001", "transpose input row = 0", "transpose input col = 0",
       "timeStamp has no data", "LocalLeastSquaresProblem input error",
       "LocalLeastSquaresProblem model == NULL", "checkVectorDimensions 0,0",
       "optimize estimation size does not match the problem 1, 2", "timeStamp has no data"});
  EXPECT_EQ(capture.messages(kError), expected);
}

}  // namespace
}  // namespace Vantis::Location
