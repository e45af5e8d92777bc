// Position solving: the choice between weighted mean and range fit, and the numeric helpers.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "geometry/simple_rssi_to_distance_converter.h"
#include "solver/tag_value_and_jacobian_function.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::LogCapture;
using Matrix = std::vector<std::vector<double>>;

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

// Three observers on a line, offset +-halfWidth around east 0: their mean distance from the
// centroid is 2 * halfWidth / 3.
std::vector<BleScanInfoWithConfidence> threeInLine(double halfWidth) {
  return {planeRecord(-halfWidth, 0, -99, 1), planeRecord(0, 0, -99, 2),
          planeRecord(halfWidth, 0, -99, 3)};
}

TEST(CorvexTagPositionCalculator, TwoRecordsAlwaysTakeTheWeightedMean) {
  CorvexTagPositionCalculator calculator;
  std::vector<BleScanInfoWithConfidence> const infos = {planeRecord(0, 0, -80, 500, 1.0, 10.0f),
                                                        planeRecord(1000, 0, -80, 400, 0.5, 20.0f)};
  LogCapture capture;
  TagBestLocation const result = calculator.getTagResult(infos);
  // Weights are newConfidence squared: 1 and 0.25.
  EXPECT_DOUBLE_EQ(result.getLon(), 200.0);
  EXPECT_DOUBLE_EQ(result.getLat(), 0.0);
  EXPECT_FLOAT_EQ(result.getAcc(), 12.0f);
  EXPECT_DOUBLE_EQ(result.getConfidence(), 1.0625 / 1.25);
  EXPECT_EQ(result.getTimeStamp(), 500);
  EXPECT_EQ(result.getRunTimeStamp(), 0);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_TRUE(capture.lines().empty());
}

TEST(CorvexTagPositionCalculator, SpreadOfFiveSwitchesToTheRangeFit) {
  struct Case {
    double halfWidth;
    bool fitted;
  };
  for (Case const& c : {Case{37.35, false}, Case{37.5, true}}) {
    CorvexTagPositionCalculator calculator;
    std::vector<BleScanInfoWithConfidence> const infos = threeInLine(c.halfWidth);
    SCOPED_TRACE(c.halfWidth);
    std::vector<std::vector<double>> points;
    for (BleScanInfoWithConfidence const& info : infos) {
      points.push_back(info.getPoint());
    }
    EXPECT_EQ(CorvexTagPositionCalculator::stdPointError(points) >= 5.0, c.fitted);
    TagBestLocation const result = calculator.getTagResult(infos);
    // The mean lands on the middle observer with the plain mean accuracy; no point is 10 m
    // from all three observers, so a fit adds a residual to the accuracy.
    EXPECT_EQ(result.getAcc() > 10.0f, c.fitted);
    EXPECT_EQ(result.getLon() == 0.0, !c.fitted);
  }
}

TEST(CorvexTagPositionCalculator, RangeFitFindsTheTagAmongSpreadObservers) {
  double const range = SimpleRssiToDistanceConverter::convert(-110);  // about 26 m
  double const tagEast = 50.0;
  double const tagNorth = 60.0;
  std::vector<BleScanInfoWithConfidence> const infos = {
      planeRecord(tagEast + range, tagNorth, -110, 10, 0.9),
      planeRecord(tagEast - range, tagNorth, -110, 40, 0.8),
      planeRecord(tagEast, tagNorth + range, -110, 30, 1.0),
      planeRecord(tagEast, tagNorth - range, -110, 20, 0.7)};
  CorvexTagPositionCalculator calculator;
  TagBestLocation const result = calculator.getTagResult(infos);
  EXPECT_NEAR(result.getLon(), tagEast, 1e-6);
  EXPECT_NEAR(result.getLat(), tagNorth, 1e-6);
  EXPECT_NEAR(result.getAcc(), 10.0f, 1e-4);
  double const w[] = {0.81, 0.64, 1.0, 0.49};
  double const sumW = w[0] + w[1] + w[2] + w[3];
  double const sumW2 = w[0] * w[0] + w[1] * w[1] + w[2] * w[2] + w[3] * w[3];
  EXPECT_DOUBLE_EQ(result.getConfidence(), sumW2 / sumW);
  EXPECT_EQ(result.getTimeStamp(), 40);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
}

TEST(CorvexTagPositionCalculator, RangeBelowLimitFlagsRssiOverLimitAndKeepsPosition) {
  struct Case {
    int rssi;
    bool overLimit;
  };
  for (Case const& c : {Case{5, true}, Case{-129, true}, Case{0, false}, Case{-128, false}}) {
    SCOPED_TRACE(c.rssi);
    CorvexTagPositionCalculator calculator;
    std::vector<BleScanInfoWithConfidence> const infos = {planeRecord(0, 0, -80),
                                                          planeRecord(10, 0, c.rssi)};
    TagBestLocation const result = calculator.getTagResult(infos);
    EXPECT_EQ(result.getErrorCode(), c.overLimit ? ErrorCode::RSSI_OVER_LIMIT : ErrorCode::SUCCESS);
    EXPECT_DOUBLE_EQ(result.getLon(), 5.0);
  }
}

TEST(CorvexTagPositionCalculator, TinyWeightsGiveTheOriginWithZeroConfidence) {
  CorvexTagPositionCalculator calculator;
  LogCapture capture;
  TagBestLocation const faint = calculator.getTagResult({planeRecord(30, 40, -80, 7, 0.0099)});
  EXPECT_EQ(faint.getLon(), 0.0);
  EXPECT_EQ(faint.getLat(), 0.0);
  EXPECT_EQ(faint.getConfidence(), 0.0);
  EXPECT_EQ(faint.getAcc(), 0.0f);
  EXPECT_EQ(faint.getTimeStamp(), 7);
  // Longitude, latitude, accuracy and confidence each report it.
  EXPECT_EQ(capture.messages(kError),
            std::vector<std::string>(4, "sum of weight less than 0.0001"));

  TagBestLocation const single = calculator.getTagResult({planeRecord(30, 40, -80, 7, 0.5)});
  EXPECT_EQ(single.getLon(), 30.0);
  EXPECT_EQ(single.getConfidence(), 0.25);
}

TEST(CorvexTagPositionCalculator, WeightedAverageRefusesIllegalInput) {
  struct Case {
    std::vector<double> values;
    std::vector<double> weights;
    double expected;
    std::string log;
  };
  std::vector<Case> const cases = {
      {{}, {}, 0.0, "getWeightedAvg input illegal"},
      {{1, 2}, {1}, 0.0, "getWeightedAvg input illegal"},
      {{1, 2}, {0.00004, 0.00005}, 0.0, "sum of weight less than 0.0001"},
      {{4}, {0.0001}, 4.0, ""},
      // Negative weights are accepted as long as their sum is large enough.
      {{1, 3}, {-1, 2}, 5.0, ""},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    EXPECT_DOUBLE_EQ(CorvexTagPositionCalculator::getWeightedAvg(c.values, c.weights), c.expected);
    EXPECT_EQ(capture.messages(kError),
              c.log.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.log});
  }
}

TEST(CorvexTagPositionCalculator, TransposeSwapsRowsAndColumns) {
  EXPECT_EQ(CorvexTagPositionCalculator::transpose(Matrix{{1, 2, 3}, {4, 5, 6}}),
            (Matrix{{1, 4}, {2, 5}, {3, 6}}));
  LogCapture capture;
  EXPECT_TRUE(CorvexTagPositionCalculator::transpose(Matrix{}).empty());
  EXPECT_TRUE(CorvexTagPositionCalculator::transpose(Matrix{{}, {1}}).empty());
  EXPECT_EQ(capture.messages(kError),
            (std::vector<std::string>{"transpose input row = 0", "transpose input col = 0"}));
  // Rows shorter than the first read as NaN instead of past their end.
  Matrix const ragged = CorvexTagPositionCalculator::transpose(Matrix{{1, 2}, {3}});
  EXPECT_EQ(ragged[0], (std::vector<double>{1, 3}));
  EXPECT_TRUE(std::isnan(ragged[1][1]));
}

TEST(CorvexTagPositionCalculator, SpreadIsTheRootOfTheMeanDistance) {
  Matrix const points = {{0, 0}, {6, 8}};
  EXPECT_EQ(CorvexTagPositionCalculator::meanPoint(points), (std::vector<double>{3, 4}));
  // Both points are 5 from the centroid: the root of the mean distance, not 5 as an RMS gives.
  EXPECT_DOUBLE_EQ(CorvexTagPositionCalculator::stdPointError(points), std::sqrt(5.0));
  EXPECT_EQ(CorvexTagPositionCalculator::stdPointError(Matrix{}), 0.0);
  EXPECT_EQ(CorvexTagPositionCalculator::meanPoint(Matrix{}), (std::vector<double>{0, 0}));
}

TEST(CorvexTagPositionCalculator, LatestTimeStampIsTheSignedMaximum) {
  std::vector<long long> const stamps = {-5, -1, -9};
  EXPECT_EQ(CorvexTagPositionCalculator::getLatestTimeStamp(stamps), -1);
  LogCapture capture;
  EXPECT_EQ(CorvexTagPositionCalculator::getLatestTimeStamp({}), 0);
  TagBestLocation const average = CorvexTagPositionCalculator::getAvgResult({{1, 2}}, {3}, {1}, {});
  EXPECT_EQ(average.getTimeStamp(), 0);
  EXPECT_EQ(average.getLon(), 1.0);
  EXPECT_EQ(capture.messages(kError), std::vector<std::string>(2, "timeStamp has no data"));
}

TEST(CorvexTagPositionCalculator, RangeFitWithoutModelStaysAtTheOrigin) {
  LogCapture capture;
  TagBestLocation const result =
      CorvexTagPositionCalculator::getOptimumResult({10, 10}, {5, 5}, {1, 1}, {3, 4}, nullptr);
  EXPECT_EQ(result.getLon(), 0.0);
  EXPECT_EQ(result.getLat(), 0.0);
  EXPECT_EQ(result.getTimeStamp(), 4);
  EXPECT_FALSE(capture.messages(kError).empty());
}

TEST(CorvexTagPositionCalculator, ReferencePositionIsTheFirstRecord) {
  std::vector<BleScanInfoWithConfidence> const infos = {planeRecord(116.3, 39.9),
                                                        planeRecord(1, 2)};
  EXPECT_EQ(CorvexTagPositionCalculator::getRefPos(infos), (std::vector<double>{116.3, 39.9}));
  EXPECT_EQ(CorvexTagPositionCalculator::getRefPos({}), (std::vector<double>{0, 0}));
}

}  // namespace
}  // namespace Vantis::Location
