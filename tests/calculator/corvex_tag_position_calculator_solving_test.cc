// Position solving: the choice between weighted mean and range fit, and the numeric helpers.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "geometry/simple_rssi_to_distance_converter.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::LogCapture;
using Calculator = CorvexTagPositionCalculator;
using Matrix = std::vector<std::vector<double>>;
using Strings = std::vector<std::string>;

// A record already in the local plane (metres).
BleScanInfoWithConfidence planeRecord(double east, double north, int rssi = -80,
                                      long long timeStamp = 1000, double newConfidence = 1.0,
                                      float acc = 10.0f) {
  LastLocation location(east, north, acc, 1, 0);
  location.setEnu(true);
  BleScanInfoWithConfidence info(BlueToothRecord(timeStamp, rssi), location, 0, 0, 0.9);
  info.setNewConfidence(newConfidence);
  return info;
}

TEST(CorvexTagPositionCalculator, TwoRecordsAlwaysTakeTheWeightedMean) {
  Calculator calculator;
  LogCapture capture;
  TagBestLocation const result = calculator.getTagResult(
      {planeRecord(0, 0, -80, 500, 1.0, 10.0f), planeRecord(1000, 0, -80, 400, 0.5, 20.0f)});
  // Weights are newConfidence squared: 1 and 0.25.
  EXPECT_DOUBLE_EQ(result.getLon(), 200.0);
  EXPECT_FLOAT_EQ(result.getAcc(), 12.0f);
  EXPECT_DOUBLE_EQ(result.getConfidence(), 1.0625 / 1.25);
  EXPECT_EQ(result.getTimeStamp(), 500);
  EXPECT_EQ(result.getRunTimeStamp(), 0);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_TRUE(capture.lines().empty());
}

TEST(CorvexTagPositionCalculator, SpreadOfFiveSwitchesToTheRangeFit) {
  // Three observers at -w, 0 and w east: their mean distance from the centroid is 2w / 3,
  // so 37.35 m gives a spread just below 5 and 37.5 m exactly 5.
  for (double const halfWidth : {37.35, 37.5}) {
    SCOPED_TRACE(halfWidth);
    bool const fitted = halfWidth == 37.5;
    Calculator calculator;
    TagBestLocation const result = calculator.getTagResult(
        {planeRecord(-halfWidth, 0, -99), planeRecord(0, 0, -99), planeRecord(halfWidth, 0, -99)});
    // The mean lands on the middle observer with the plain mean accuracy; no point is 10 m
    // from all three observers, so a fit adds a residual to the accuracy.
    EXPECT_EQ(result.getAcc() > 10.0f, fitted);
    EXPECT_EQ(result.getLon() == 0.0, !fitted);
  }
}

TEST(CorvexTagPositionCalculator, RangeFitFindsTheTagAmongSpreadObservers) {
  double const range = SimpleRssiToDistanceConverter::convert(-110);  // about 26 m
  std::vector<BleScanInfoWithConfidence> const infos = {
      planeRecord(50 + range, 60, -110, 10, 0.9), planeRecord(50 - range, 60, -110, 40, 0.8),
      planeRecord(50, 60 + range, -110, 30, 1.0), planeRecord(50, 60 - range, -110, 20, 0.7)};
  Calculator calculator;
  TagBestLocation const result = calculator.getTagResult(infos);
  EXPECT_NEAR(result.getLon(), 50.0, 1e-6);
  EXPECT_NEAR(result.getLat(), 60.0, 1e-6);
  EXPECT_NEAR(result.getAcc(), 10.0f, 1e-4);
  // Sum of w squared over sum of w, w = newConfidence squared.
  EXPECT_DOUBLE_EQ(result.getConfidence(), (0.6561 + 0.4096 + 1.0 + 0.2401) / 2.94);
  EXPECT_EQ(result.getTimeStamp(), 40);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
}

TEST(CorvexTagPositionCalculator, RangeBelowLimitFlagsRssiOverLimitAndKeepsPosition) {
  for (int const rssi : {5, -129, 0, -128}) {
    SCOPED_TRACE(rssi);
    Calculator calculator;
    TagBestLocation const result =
        calculator.getTagResult({planeRecord(0, 0, -80), planeRecord(10, 0, rssi)});
    bool const overLimit = rssi == 5 || rssi == -129;
    EXPECT_EQ(result.getErrorCode(), overLimit ? ErrorCode::RSSI_OVER_LIMIT : ErrorCode::SUCCESS);
    EXPECT_DOUBLE_EQ(result.getLon(), 5.0);
  }
}

TEST(CorvexTagPositionCalculator, TinyWeightsGiveTheOriginWithZeroConfidence) {
  Calculator calculator;
  LogCapture capture;
  TagBestLocation const faint = calculator.getTagResult({planeRecord(30, 40, -80, 7, 0.0099)});
  EXPECT_EQ(faint.getLon(), 0.0);
  EXPECT_EQ(faint.getLat(), 0.0);
  EXPECT_EQ(faint.getConfidence(), 0.0);
  EXPECT_EQ(faint.getTimeStamp(), 7);
  // Longitude, latitude, accuracy and confidence each report it.
  EXPECT_EQ(capture.messages(kError), Strings(4, "sum of weight less than 0.0001"));
  TagBestLocation const single = calculator.getTagResult({planeRecord(30, 40, -80, 7, 0.5)});
  EXPECT_EQ(single.getLon(), 30.0);
  EXPECT_EQ(single.getConfidence(), 0.25);
}

TEST(CorvexTagPositionCalculator, WeightedAverageRefusesIllegalInput) {
  struct Case {
    std::vector<double> values;
    std::vector<double> weights;
    double expected;
    Strings log;
  };
  std::vector<Case> const cases = {
      {{}, {}, 0.0, {"getWeightedAvg input illegal"}},
      {{1, 2}, {1}, 0.0, {"getWeightedAvg input illegal"}},
      {{1, 2}, {0.00004, 0.00005}, 0.0, {"sum of weight less than 0.0001"}},
      {{4}, {0.0001}, 4.0, {}},
      {{1, 3}, {-1, 2}, 5.0, {}},  // only the sum of the weights is checked
  };
  for (Case const& c : cases) {
    LogCapture capture;
    EXPECT_DOUBLE_EQ(Calculator::getWeightedAvg(c.values, c.weights), c.expected);
    EXPECT_EQ(capture.messages(kError), c.log);
  }
}

TEST(CorvexTagPositionCalculator, NumericHelpersOnEmptyAndRaggedInput) {
  EXPECT_EQ(Calculator::transpose(Matrix{{1, 2, 3}, {4, 5, 6}}), (Matrix{{1, 4}, {2, 5}, {3, 6}}));
  // Rows shorter than the first read as NaN instead of past their end.
  EXPECT_TRUE(std::isnan(Calculator::transpose(Matrix{{1, 2}, {3}})[1][1]));
  EXPECT_EQ(Calculator::getLatestTimeStamp({-5, -1, -9}), -1);
  EXPECT_EQ(Calculator::getRefPos({planeRecord(116.3, 39.9), planeRecord(1, 2)}),
            (std::vector<double>{116.3, 39.9}));

  LogCapture capture;
  EXPECT_TRUE(Calculator::transpose(Matrix{}).empty());
  EXPECT_TRUE(Calculator::transpose(Matrix{{}, {1}}).empty());
  EXPECT_EQ(Calculator::getLatestTimeStamp({}), 0);
  EXPECT_EQ(Calculator::getOptimumResult({10}, {5}, {1}, {}, nullptr).getLon(), 0.0);
  EXPECT_EQ(Calculator::stdPointError(Matrix{}), 0.0);
  EXPECT_EQ(Calculator::meanPoint(Matrix{}), (std::vector<double>{0, 0}));
  EXPECT_EQ(Calculator::getRefPos({}), (std::vector<double>{0, 0}));
  Strings const errors = capture.messages(kError);
  EXPECT_EQ(
      Strings(errors.begin(), errors.begin() + 3),
      (Strings{"transpose input row = 0", "transpose input col = 0", "timeStamp has no data"}));
  EXPECT_EQ(errors.back(), "timeStamp has no data");
}

TEST(CorvexTagPositionCalculator, SpreadIsTheRootOfTheMeanDistance) {
  Matrix const points = {{0, 0}, {6, 8}};
  EXPECT_EQ(Calculator::meanPoint(points), (std::vector<double>{3, 4}));
  // Both points are 5 from the centroid: the root of the mean distance, where an RMS gives 5.
  EXPECT_DOUBLE_EQ(Calculator::stdPointError(points), std::sqrt(5.0));
}

}  // namespace
}  // namespace Vantis::Location
