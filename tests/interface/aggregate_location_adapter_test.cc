#include "interface/aggregate_location_adapter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace Vantis::Location {
namespace {

AggregateScanInfo indoorInfo(const char* geoId, const char* floorInfo) {
  AggregateScanInfo info{};
  info.timeStamp = 1700000000123;
  info.rssi = -71;
  info.confidence = 0.8;
  info.lon = 116.397128;
  info.lat = 39.916527;
  info.acc = 12.5f;
  info.reserved[0] = 77;  // must be ignored
  info.locationType = 1;
  info.locationSourceType = 3;
  info.indoorFlag = 1;
  info.floorId = 3;
  info.floorAcc = 2;
  info.floorInfo = floorInfo;
  info.geoId = geoId;
  return info;
}

TEST(AggregateLocationAdapter, CopiesScanFieldsWithDefaultsForTheRest) {
  BleScanInfoWithConfidence const scan =
      AggregateLocationAdapter::toScanInfo(indoorInfo("B1", "F3"));
  BlueToothRecord const& record = scan.getBlueToothRecordConst();
  LastLocation const& location = scan.getLastLocationConst();
  EXPECT_EQ(record.toString(),
            "BlueToothRecord{name='', mac='', timeStamp=1700000000123, rssi=-71}");
  EXPECT_EQ(location.toString(),
            "LastLocation{timeStamp = 0, lat = 39.916527, lon = 116.397128, acc = 12.5, speed = 0, "
            "bearing = 0, locationType = 1, locationSourceType = 3, indoorFlag = 1, buildingId = "
            "B1, floor = 3, floorAcc = 2, isEnu = 0}");
  EXPECT_EQ(location.getFloorInfo(), "F3");
  EXPECT_EQ(scan.getArStatus(), 0);
  EXPECT_EQ(scan.getStepCount(), 0);
  EXPECT_EQ(scan.getConfidence(), 0.8);
  EXPECT_EQ(scan.getNewConfidence(), 0.0);
  EXPECT_EQ(scan.getKindTransId(), "");
}

TEST(AggregateLocationAdapter, IndoorFieldsNeedABuildingIdentifier) {
  struct Case {
    const char* geoId;
    const char* floorInfo;
    int indoorFlag;
    int floorId;
    int floorAcc;
    std::string expectedGeoId;
    std::string expectedFloorInfo;
  };
  Case const cases[] = {
      {nullptr, "F3", 0, -100, 0, "", ""},  // no building: the indoor fields are ignored
      {"B", "", 1, 3, 2, "B", ""},
      {"B", nullptr, 1, 3, 2, "B", ""},  // a caller slip reads as an empty floor text
      {"", "F1", 1, 3, 2, "", "F1"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.expectedGeoId + "/" + c.expectedFloorInfo);
    LastLocation const location =
        AggregateLocationAdapter::toScanInfo(indoorInfo(c.geoId, c.floorInfo))
            .getLastLocationConst();
    EXPECT_EQ(location.getGeoId(), c.expectedGeoId);
    EXPECT_EQ(location.getFloorInfo(), c.expectedFloorInfo);
    EXPECT_EQ(location.getIndoorFlag(), c.indoorFlag);
    EXPECT_EQ(location.getFloorId(), c.floorId);
    EXPECT_EQ(location.getFloorAcc(), c.floorAcc);
  }
}

TEST(AggregateLocationAdapter, ReadsExactlyCountRecordsInArrayOrder) {
  AggregateScanInfo infos[3] = {indoorInfo(nullptr, nullptr), indoorInfo(nullptr, nullptr),
                                indoorInfo(nullptr, nullptr)};
  infos[0].timeStamp = 30;
  infos[1].timeStamp = 10;
  infos[2].timeStamp = 20;
  auto const scans = AggregateLocationAdapter::toScanInfos(infos, 2);
  ASSERT_EQ(scans.size(), 2u);
  EXPECT_EQ(scans[0].getBlueToothRecordConst().getTimeStamp(), 30);
  EXPECT_EQ(scans[1].getBlueToothRecordConst().getTimeStamp(), 10);
  EXPECT_TRUE(AggregateLocationAdapter::toScanInfos(infos, 0).empty());
  EXPECT_TRUE(AggregateLocationAdapter::toScanInfos(infos, -5).empty());
}

TEST(AggregateLocationAdapter, PublishesEveryFieldAndFreshStrings) {
  TagBestLocation location(8.5, 47.25, 1234, 0.75, 6.5f);
  location.setRunTimeStamp(5678);
  location.setGeoId("B7");
  location.setFloorId(-2);
  location.setFloorAcc(4);
  location.setIndoorFlag(1);
  location.getTagStat().setInfoCount({3, 2});

  AggregateLocationResult result;
  std::memset(&result, 0xAB, sizeof result);
  char* trace = nullptr;
  AggregateLocationAdapter::publish(location, &result, &trace);

  EXPECT_EQ(result.timeStamp, 1234);
  EXPECT_EQ(result.runTimeStamp, 5678);
  EXPECT_EQ(result.lon, 8.5);
  EXPECT_EQ(result.lat, 47.25);
  EXPECT_EQ(result.confidence, 0.75);
  EXPECT_EQ(result.acc, 6.5f);
  EXPECT_STREQ(result.geoId, "B7");
  ASSERT_NE(result.floorInfo, nullptr);
  EXPECT_EQ(result.floorInfo[0], '\0');
  EXPECT_NE(result.floorInfo, result.geoId);
  EXPECT_EQ(result.floorId, -2);
  EXPECT_EQ(result.floorAcc, 4);
  EXPECT_EQ(result.indoorFlag, 1);
  EXPECT_STREQ(trace,
               R"({"version":"V2.0","errorCode":0,"errorMsg":"Success","infoCount":[3, 2]})");
  delete[] result.geoId;
  delete[] result.floorInfo;
  delete[] trace;
}

}  // namespace
}  // namespace Vantis::Location
