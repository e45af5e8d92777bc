#include "geometry/gnss_utils.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;

BleScanInfoWithConfidence makeInfo(int locationType, double confidence = 0.5, double x = 0) {
  return BleScanInfoWithConfidence(BlueToothRecord(1, -60), LastLocation(x, 0, 1, locationType, 1),
                                   0, 0, confidence);
}

// `total` records of which the first `gnss` are GNSS records.
std::vector<BleScanInfoWithConfidence> makeList(int gnss, int total) {
  std::vector<BleScanInfoWithConfidence> infos;
  for (int i = 0; i < total; ++i) {
    infos.push_back(makeInfo(i < gnss ? 1 : 2));
  }
  return infos;
}

TEST(GnssUtils, CountsLocationTypeOneAndNeedsMoreThanFifteenPercentOutdoors) {
  EXPECT_EQ(GnssUtils::getGnssCount({makeInfo(0), makeInfo(2), makeInfo(1)}), 1);
  EXPECT_FALSE(GnssUtils::isOutDoor(makeList(3, 20)));  // exactly 0.15
  EXPECT_TRUE(GnssUtils::isOutDoor(makeList(4, 26)));   // 0.1538
}

TEST(GnssUtils, ProactiveListKeepsConfidentGnssRecordsInOrder) {
  std::vector<BleScanInfoWithConfidence> const infos = {makeInfo(1, 0.98), makeInfo(1, 0.979999),
                                                        makeInfo(2, 1.0), makeInfo(1, 1.0)};
  std::vector<BleScanInfoWithConfidence> const kept = GnssUtils::getGnssProactiveList(infos);
  ASSERT_EQ(kept.size(), 2u);
  EXPECT_TRUE(kept[0] == infos[0]);
  EXPECT_TRUE(kept[1] == infos[3]);
}

TEST(GnssUtils, CohesionAllowsSpreadUpToThirty) {
  LogCapture capture;
  EXPECT_TRUE(GnssUtils::checkCohesion({makeInfo(1, 0.5, 0), makeInfo(1, 0.5, 60)}));
  EXPECT_TRUE(capture.lines().empty());
  EXPECT_FALSE(GnssUtils::checkCohesion({makeInfo(1, 0.5, 0), makeInfo(1, 0.5, 61)}));
  EXPECT_FALSE(GnssUtils::checkCohesion({makeInfo(1)}));
  EXPECT_EQ(corvex_test::tagged(capture),
            (std::vector<std::string>{"I:checkCohesion stdPointError(infos) = 30.500000, bypass",
                                      "I:checkCohesion infos.size() = 1, bypass"}));
}

}  // namespace
}  // namespace Vantis::Location
