#include "geometry/distance_utils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

BleScanInfoWithConfidence makeInfo(double x, double y, double newConfidence = 0.0) {
  BleScanInfoWithConfidence info(BlueToothRecord(1, -60), LastLocation(x, y, 1, 0, 0), 0, 0, 0.5);
  info.setNewConfidence(newConfidence);
  return info;
}

TEST(DistanceUtils, SquaredDistancesCentroidsAndRootMeanSquareSpread) {
  BleScanInfoWithConfidence const a = makeInfo(1, 2);
  EXPECT_EQ(DistanceUtils::distSquare(a, makeInfo(4, 6)), 25.0);
  EXPECT_EQ(DistanceUtils::distSquare(a, TagBestLocation(4, 6)), 25.0);
  EXPECT_EQ(DistanceUtils::distSquare(a, std::vector<double>{4, 6}), 25.0);
  EXPECT_EQ(DistanceUtils::distSquare(std::vector<double>{1, 2}, std::vector<double>{4, 6}), 25.0);
  std::vector<BleScanInfoWithConfidence> const infos = {makeInfo(0, 0, 1.0), makeInfo(10, 0, 3.0),
                                                        makeInfo(0, 30, 0.0)};
  corvex_test::LogCapture capture;
  EXPECT_EQ(DistanceUtils::meanPointWeight(infos), (std::vector<double>{7.5, 0.0}));
  EXPECT_EQ(DistanceUtils::meanPoint(infos), (std::vector<double>{10.0 / 3, 10.0}));
  // Squared distances from (10/3, 10): 100/9 + 100, 400/9 + 100, 100/9 + 400.
  EXPECT_DOUBLE_EQ(DistanceUtils::stdPointError(infos), std::sqrt((600.0 / 9 + 600) / 3));
  // Weights summing below 0.0001 give the origin, silently.
  EXPECT_EQ(DistanceUtils::meanPointWeight({makeInfo(5, 5, 0.0), makeInfo(7, 7, 0.00009)}),
            (std::vector<double>{0, 0}));
  EXPECT_EQ(DistanceUtils::meanPointWeight({makeInfo(5, 5, 0.0), makeInfo(7, 7, 0x1p-13)}),
            (std::vector<double>{7, 7}));
  EXPECT_TRUE(capture.lines().empty());
}

}  // namespace
}  // namespace Vantis::Location
