#include "model/ble_scan_info_with_confidence.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace Vantis::Location {
namespace {

BleScanInfoWithConfidence makeInfo(long long time, std::string const& mac, double confidence) {
  return BleScanInfoWithConfidence(BlueToothRecord("tag", mac, time, -70),
                                   LastLocation(116.4, 39.9, 5.0f, 1, 0), 0, 0, confidence);
}

TEST(BleScanInfoWithConfidence, KindTransIdConstructorMarksMissingArStatus) {
  BleScanInfoWithConfidence info(BlueToothRecord(1, -60), LastLocation(1.5, 2.5, 3, 1, 0), 0.7,
                                 "k1");
  EXPECT_EQ(info.getArStatus(), -1);
  EXPECT_EQ(info.getKindTransId(), "k1");
  EXPECT_EQ(info.getPoint(), (std::vector<double>{1.5, 2.5}));
}

TEST(BleScanInfoWithConfidence, OrdersByRecordThenScoresPassingOverNaN) {
  EXPECT_TRUE(makeInfo(1, "B", 0.1) < makeInfo(2, "A", 0.9));
  EXPECT_TRUE(makeInfo(5, "A", 0.9) < makeInfo(5, "B", 0.1));

  using Raise = void (*)(BleScanInfoWithConfidence&);
  Raise const raises[] = {
      [](BleScanInfoWithConfidence& i) { i.setConfidence(0.6); },
      [](BleScanInfoWithConfidence& i) { i.setNewConfidence(0.1); },
      [](BleScanInfoWithConfidence& i) { i.setKindTransId("x"); },
      [](BleScanInfoWithConfidence& i) { i.setArStatus(1); },
      [](BleScanInfoWithConfidence& i) { i.setStepCount(1); },
  };
  for (size_t i = 0; i < std::size(raises); ++i) {
    BleScanInfoWithConfidence const base = makeInfo(5, "A", 0.5);
    BleScanInfoWithConfidence raised = base;
    raises[i](raised);
    EXPECT_TRUE(base < raised) << i;
    EXPECT_FALSE(raised < base) << i;
    EXPECT_FALSE(base == raised) << i;
  }
  // A NaN confidence decides nothing, and its record is unequal to itself.
  BleScanInfoWithConfidence a = makeInfo(5, "A", std::numeric_limits<double>::quiet_NaN());
  BleScanInfoWithConfidence b = a;
  b.setNewConfidence(0.3);
  EXPECT_FALSE(a == a);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
}

// Scores with six significant digits, the location with fifteen and its float widened.
TEST(BleScanInfoWithConfidence, PrintsEveryField) {
  BleScanInfoWithConfidence info(BlueToothRecord("t", "M", 1, -60),
                                 LastLocation(116.397128, 39.916527, 0.1f, 1, 2), 0, 3,
                                 0.123456789);
  info.setNewConfidence(2.0 / 3.0);
  info.setKindTransId("k");
  info.getLastLocation().setIndoorInfo(1, "B1", 3, 4, "F3");
  EXPECT_EQ(info.toString(),
            "BleScanInfo{blueToothRecord=BlueToothRecord{name='t', mac='M', timeStamp=1, "
            "rssi=-60}, lastLocation=LastLocation{timeStamp = 0, lat = 39.916527, "
            "lon = 116.397128, acc = 0.100000001490116, speed = 0, bearing = 0, "
            "locationType = 1, locationSourceType = 2, indoorFlag = 1, buildingId = B1, "
            "floor = 3, floorAcc = 4, isEnu = 0}, arStatus=0, stepCount=3, confidence=0.123457, "
            "newConfidence=0.666667, kindTransID=k}");
  EXPECT_EQ(info.getLastLocationConst().getFloorInfo(), "F3");
}

}  // namespace
}  // namespace Vantis::Location
