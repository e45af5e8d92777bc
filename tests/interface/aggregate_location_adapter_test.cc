#include "interface/aggregate_location_adapter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/aggregate_call.h"

namespace Vantis::Location {
namespace {

AggregateScanInfo indoorInfo(const char* geoId, const char* floorInfo) {
  AggregateScanInfo info = corvex_test::outdoorScan(1700000000123, -71, 0, 0);
  info.reserved[0] = 77;  // never read
  info.locationSourceType = 3;
  info.indoorFlag = 1;
  info.floorId = 3;
  info.floorAcc = 2;
  info.floorInfo = floorInfo;
  info.geoId = geoId;
  return info;
}

TEST(AggregateLocationAdapter, CopiesScanFieldsWithDefaultsForTheRest) {
  EXPECT_EQ(AggregateLocationAdapter::toScanInfo(indoorInfo("B1", "F3")).toString(),
            "BleScanInfo{blueToothRecord=BlueToothRecord{name='', mac='', "
            "timeStamp=1700000000123, rssi=-71}, lastLocation=LastLocation{timeStamp = 0, lat = "
            "47.3769, lon = 8.5417, acc = 8, speed = 0, bearing = 0, locationType = 1, "
            "locationSourceType = 3, indoorFlag = 1, buildingId = B1, floor = 3, floorAcc = 2, "
            "isEnu = 0}, arStatus=0, stepCount=0, confidence=0.9, newConfidence=0, kindTransID=}");
}

// geoId/floorInfo/indoorFlag/floorId/floorAcc of the record read from an indoor element.
std::string indoorFields(const char* geoId, const char* floorInfo) {
  LastLocation const location =
      AggregateLocationAdapter::toScanInfo(indoorInfo(geoId, floorInfo)).getLastLocationConst();
  return location.getGeoId() + "/" + location.getFloorInfo() + "/" +
         std::to_string(location.getIndoorFlag()) + "/" + std::to_string(location.getFloorId()) +
         "/" + std::to_string(location.getFloorAcc());
}

TEST(AggregateLocationAdapter, IndoorFieldsNeedABuildingIdentifier) {
  EXPECT_EQ(indoorFields(nullptr, "F3"), "//0/-100/0");  // without a building all are ignored
  EXPECT_EQ(indoorFields("B", ""), "B//1/3/2");
  EXPECT_EQ(indoorFields("B", nullptr), "B//1/3/2");  // a caller slip reads as an empty text
  EXPECT_EQ(indoorFields("", "F1"), "/F1/1/3/2");
}

TEST(AggregateLocationAdapter, ReadsExactlyCountRecordsInScanTimeOrder) {
  AggregateScanInfo infos[4] = {indoorInfo("", ""), indoorInfo("", ""), indoorInfo("", ""),
                                indoorInfo("", "")};
  long long const times[] = {30, 10, 30, 5};
  for (int i = 0; i < 4; ++i) infos[i].timeStamp = times[i];
  auto const scans = AggregateLocationAdapter::toScanInfos(infos, 3);
  ASSERT_EQ(scans.size(), 3u);
  EXPECT_EQ(scans[0].getInputIndex(), 1);
  EXPECT_EQ(scans[1].getInputIndex(), 0);  // equal times keep the array order
  EXPECT_EQ(scans[2].getInputIndex(), 2);
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
  EXPECT_STREQ(result.floorInfo, "");
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
