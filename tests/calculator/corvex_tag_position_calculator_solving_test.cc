// Position solving: the choice between weighted mean and range fit, and the numeric helpers.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "geometry/simple_rssi_to_distance_converter.h"
#include "support/calculator_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::LogCapture;
using corvex_test::Scan;
using Calculator = CorvexTagPositionCalculator;
using Matrix = std::vector<std::vector<double>>;
using Strings = std::vector<std::string>;

// Solves the scans, given in the plane as x, y, time, rssi, confidence, newConfidence, acc.
void expectSolved(char const* name, std::vector<Scan> const& scans, TagBestLocation const& expected,
                  bool rssiOverLimit = false, Strings const& errors = {}) {
  SCOPED_TRACE(name);
  std::vector<BleScanInfoWithConfidence> infos;
  for (Scan const& scan : scans) {
    infos.push_back(scan.inPlane());
  }
  LogCapture capture;
  TagBestLocation const result = Calculator().getTagResult(infos);
  EXPECT_NEAR(result.getLon(), expected.getLon(), 1e-6);
  EXPECT_NEAR(result.getLat(), expected.getLat(), 1e-6);
  EXPECT_NEAR(result.getAcc(), expected.getAcc(), 1e-4);
  EXPECT_NEAR(result.getConfidence(), expected.getConfidence(), 1e-12);
  EXPECT_EQ(result.getTimeStamp(), expected.getTimeStamp());
  EXPECT_EQ(result.getRunTimeStamp(), 0);
  EXPECT_EQ(result.getErrorCode(), rssiOverLimit ? ErrorCode::RSSI_OVER_LIMIT : ErrorCode::SUCCESS);
  EXPECT_EQ(capture.messages(kError), errors);
}

// lon, lat, time stamp, confidence, acc
TagBestLocation at(double lon, double lat, long long time, double confidence, float acc) {
  return TagBestLocation(lon, lat, time, confidence, acc);
}

TEST(CorvexTagPositionCalculator, SolvesByWeightedMeanOrRangeFit) {
  // Weights are newConfidence squared.
  expectSolved("two far apart: mean",
               {{0, 0, 500, -80, 0.9, 1, 10}, {1000, 0, 400, -80, 0.9, 0.5, 20}},
               at(200, 0, 500, 1.0625 / 1.25, 12));
  // Three observers at -w, 0 and w east have a mean distance of 2w / 3 from their centroid:
  // w = 37.35 m gives a spread just below 5, 37.5 m exactly 5. No point is 10 m from all
  // three, so the fit's residual adds to the accuracy.
  expectSolved("spread below 5: mean",
               {{-37.35, 0, 1, -99, 0.9, 1}, {0, 0, 1, -99, 0.9, 1}, {37.35, 0, 1, -99, 0.9, 1}},
               at(0, 0, 1, 1, 10));
  expectSolved("spread 5: fit",
               {{-37.5, 0, 1, -99, 0.9, 1}, {0, 0, 1, -99, 0.9, 1}, {37.5, 0, 1, -99, 0.9, 1}},
               at(0.000515272, 4.0490530, 1, 1, 32.890938f));
  double const r = SimpleRssiToDistanceConverter::convert(-110);  // about 26 m
  expectSolved("four at one range: fit",
               {{50 + r, 60, 10, -110, 0.9, 0.9},
                {50 - r, 60, 40, -110, 0.9, 0.8},
                {50, 60 + r, 30, -110, 0.9, 1.0},
                {50, 60 - r, 20, -110, 0.9, 0.7}},
               at(50, 60, 40, (0.6561 + 0.4096 + 1.0 + 0.2401) / 2.94, 10));
  // A range below 0.0001 m flags the result and keeps the position.
  expectSolved("rssi 5", {{0, 0, 1, -80, 0.9, 1}, {10, 0, 1, 5, 0.9, 1}}, at(5, 0, 1, 1, 10), true,
               {"rssi 5.000000 out of range! Must be -128 <= rssi < 0 !"});
  expectSolved("rssi 0: about 2 mm", {{0, 0, 1, -80, 0.9, 1}, {10, 0, 1, 0, 0.9, 1}},
               at(5, 0, 1, 1, 10));
  // lon, lat, acc and confidence each report the tiny weights.
  expectSolved("weights below 0.0001", {{30, 40, 7, -80, 0.9, 0.0099}}, at(0, 0, 7, 0, 0), false,
               Strings(4, "sum of weight less than 0.0001"));
  expectSolved("a single record", {{30, 40, 7, -80, 0.9, 0.5}}, at(30, 40, 7, 0.25, 10));
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
