#include "interface/aggregate_location_adapter.h"

#include <gtest/gtest.h>

#include <string>

#include "support/aggregate_call.h"

namespace Vantis::Location {
namespace {

AggregateScanInfo indoorInfo(const char* geoId, const char* floorInfo) {
  AggregateScanInfo info = corvex_test::outdoorScan(1700000000123, -71, 0, 0);
  info.locationSourceType = 3;
  info.indoorFlag = 1;
  info.floorId = 3;
  info.floorAcc = 2;
  info.floorInfo = floorInfo;
  info.geoId = geoId;
  return info;
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

}  // namespace
}  // namespace Vantis::Location
