// Movement, outlier, run time stamp and the indoor vote.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;
using Calculator = CorvexTagPositionCalculator;

constexpr long long kMin = std::numeric_limits<long long>::min();
constexpr long long kMax = std::numeric_limits<long long>::max();

// A record in the local plane (metres).
BleScanInfoWithConfidence planeRecord(double east, double north, long long timeStamp,
                                      int sourceType = 3, double confidence = 0.81) {
  BleScanInfoWithConfidence info(BlueToothRecord(timeStamp, -70),
                                 LastLocation(east, north, 5.0f, 1, sourceType), 0, 0, confidence);
  info.getLastLocation().setEnu(true);
  return info;
}

TEST(CorvexTagPositionCalculator, OutlierNeedsAllFourConditions) {
  struct Case {
    char const* name;
    long long age;
    double distance;
    int sourceType;
    double confidence;
    bool outlier;
  };
  Case const cases[] = {
      {"all four hold", 1800001, 101, 3, 0.81, true},
      {"exactly 30 minutes newer", 1800000, 101, 3, 0.81, false},
      {"exactly 100 m away", 1800001, 100, 3, 0.81, false},
      {"another source type", 1800001, 101, 1, 0.81, false},
      {"confidence exactly 0.8", 1800001, 101, 3, 0.8, false},
  };
  TagBestLocation const result(0.0, 0.0, 1000, 1.0, 0.0f);
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    BleScanInfoWithConfidence const info =
        planeRecord(0, c.distance, 1000 + c.age, c.sourceType, c.confidence);
    EXPECT_EQ(Calculator::checkOutlier(result, info), c.outlier);
  }
}

TEST(CorvexTagPositionCalculator, OutlierAgeWrapsAroundAtTheTimeLimits) {
  // The difference wraps as two's complement instead of overflowing.
  TagBestLocation const oldResult(0.0, 0.0, kMin, 1.0, 0.0f);
  EXPECT_FALSE(Calculator::checkOutlier(oldResult, planeRecord(0, 200, kMax)));
  TagBestLocation const newResult(0.0, 0.0, 1, 1.0, 0.0f);
  EXPECT_TRUE(Calculator::checkOutlier(newResult, planeRecord(0, 200, kMin)));
}

TEST(CorvexTagPositionCalculator, MovedWhenTheTwoNewestScansAreFar) {
  struct Case {
    char const* name;
    std::vector<double> norths;  // oldest first
    bool moved;
  };
  Case const cases[] = {
      {"newest far, second near", {450, 390, 450}, false},
      {"both newest far", {0, 450, 450}, true},
      {"a single far scan", {450}, true},
      {"newest exactly 400 m", {900, 900, 400}, false},
      {"second exactly 400 m", {400, 401}, false},
      {"no scans", {}, true},
  };
  TagBestLocation const result(0.0, 0.0, 1000, 1.0, 0.0f);
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<BleScanInfoWithConfidence> infos;
    for (double north : c.norths) {
      infos.push_back(planeRecord(0, north, 1000, 1));
    }
    EXPECT_EQ(Calculator::checkMoved(infos, result), c.moved);
  }
}

TEST(CorvexTagPositionCalculator, NewestOutlierMeansMovedEvenWhenNear) {
  TagBestLocation const result(0.0, 0.0, 1000, 1.0, 0.0f);
  std::vector<BleScanInfoWithConfidence> infos = {planeRecord(0, 0, 1000, 1),
                                                  planeRecord(0, 150, 1000 + 1800001)};
  EXPECT_TRUE(Calculator::checkMoved(infos, result));
  infos.back().setConfidence(0.8);
  EXPECT_FALSE(Calculator::checkMoved(infos, result));
}

TEST(CorvexTagPositionCalculator, RunTimeStampIsTheNewestScanWithin100Metres) {
  TagBestLocation const result(0.0, 0.0, 1000, 1.0, 0.0f);
  std::vector<BleScanInfoWithConfidence> const infos = {
      planeRecord(0, 99.9, 3000), planeRecord(60, 80, 9000),  // exactly 100 m: too far
      planeRecord(0, 0, 2000), planeRecord(0, 500, 8000)};
  EXPECT_EQ(Calculator::getRunTimeStamp(infos, result), 3000);
  // Older scans never lower the result's own time stamp.
  TagBestLocation const newer(0.0, 0.0, 5000, 1.0, 0.0f);
  EXPECT_EQ(Calculator::getRunTimeStamp(infos, newer), 5000);
  EXPECT_EQ(Calculator::getRunTimeStamp({}, newer), 5000);
}

// Indoor vote works in degrees around this position.
constexpr double kLon = 116.397128;
constexpr double kLat = 39.916527;
constexpr long long kRunTime = 100000000;

struct IndoorRecord {
  std::string geoId = "B1";
  int floorId = 3;
  int floorAcc = 10;
  int rssi = -85;
  double confidence = 0.8;
  double northDegrees = 0.0;
  long long age = 0;
};

BleScanInfoWithConfidence indoorRecord(IndoorRecord const& r) {
  LastLocation location(kLon, kLat + r.northDegrees, 5.0f, 0, 0);
  location.setIndoorInfo(1, r.geoId, r.floorId, r.floorAcc, "F" + std::to_string(r.floorId));
  return BleScanInfoWithConfidence(BlueToothRecord(kRunTime - r.age, r.rssi), location, 0, 0,
                                   r.confidence);
}

TagBestLocation degreeResult() {
  TagBestLocation result(kLon, kLat, kRunTime, 1.0, 0.0f);
  result.setRunTimeStamp(kRunTime);
  return result;
}

TEST(CorvexTagPositionCalculator, IndoorCandidatesMustPassEveryTest) {
  struct Case {
    char const* name;
    IndoorRecord record;
    bool candidate;
  };
  auto with = [](auto change) {
    IndoorRecord r;
    change(r);
    return r;
  };
  std::vector<Case> const cases = {
      {"at every bound", IndoorRecord{}, true},
      {"no building", with([](IndoorRecord& r) { r.geoId = ""; }), false},
      {"building null", with([](IndoorRecord& r) { r.geoId = "null"; }), false},
      {"no floor", with([](IndoorRecord& r) { r.floorId = -100; }), false},
      {"floorAcc 9", with([](IndoorRecord& r) { r.floorAcc = 9; }), false},
      {"rssi -86", with([](IndoorRecord& r) { r.rssi = -86; }), false},
      {"confidence 0.79", with([](IndoorRecord& r) { r.confidence = 0.79; }), false},
      {"about 89 m away", with([](IndoorRecord& r) { r.northDegrees = 0.0008; }), true},
      {"about 111 m away", with([](IndoorRecord& r) { r.northDegrees = 0.001; }), false},
      {"7199999 ms old", with([](IndoorRecord& r) { r.age = 7199999; }), true},
      {"two hours old", with([](IndoorRecord& r) { r.age = 7200000; }), false},
      {"two hours in the future", with([](IndoorRecord& r) { r.age = -7200000; }), false},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<BleScanInfoWithConfidence> out;
    Calculator::filterIndoor(degreeResult(), {indoorRecord(c.record)}, out);
    EXPECT_EQ(out.size(), c.candidate ? 1u : 0u);
  }
}

TEST(CorvexTagPositionCalculator, IndoorDistanceIsCheckedOnlyForOtherwiseGoodRecords) {
  IndoorRecord invalid;
  invalid.northDegrees = 100.0;  // latitude beyond 90 degrees
  IndoorRecord invalidAndWeak = invalid;
  invalidAndWeak.rssi = -90;
  LogCapture capture;
  std::vector<BleScanInfoWithConfidence> out;
  Calculator::filterIndoor(degreeResult(), {indoorRecord(invalidAndWeak), indoorRecord(invalid)},
                           out);
  // The distance measure gives 0.0 for an illegal position, so that record stays a candidate.
  EXPECT_EQ(out.size(), 1u);
  EXPECT_EQ(capture.messages(corvex_test::kError), std::vector<std::string>{"Latitude illegal"});
}

TEST(CorvexTagPositionCalculator, IndoorTimeWindowWrapsAroundAtTheLimits) {
  TagBestLocation result = degreeResult();
  result.setRunTimeStamp(kMin);
  IndoorRecord record;
  record.age = kRunTime;  // a scan at time 0: the difference is the most negative value
  std::vector<BleScanInfoWithConfidence> out;
  Calculator::filterIndoor(result, {indoorRecord(record)}, out);
  EXPECT_EQ(out.size(), 1u);
}

std::vector<BleScanInfoWithConfidence> indoorRecords(std::vector<std::string> const& geoIds,
                                                     std::vector<int> const& floorIds,
                                                     std::vector<int> const& floorAccs) {
  std::vector<BleScanInfoWithConfidence> infos;
  for (std::size_t i = 0; i < geoIds.size(); ++i) {
    IndoorRecord r;
    r.geoId = geoIds[i];
    r.floorId = floorIds[i];
    r.floorAcc = floorAccs[i];
    infos.push_back(indoorRecord(r));
  }
  return infos;
}

TEST(CorvexTagPositionCalculator, IndoorVoteTakesBuildingThenFloor) {
  struct Case {
    char const* name;
    std::vector<std::string> geoIds;
    std::vector<int> floorIds;
    std::vector<int> floorAccs;
    std::string geoId;
    int floorId;
    int floorAcc;
  };
  std::vector<Case> const cases = {
      {"tied buildings: the first in byte order",
       {"B", "A", "B", "A"},
       {1, 2, 1, 2},
       {10, 20, 30, 40},
       "A",
       2,
       30},
      {"tied floors: the lowest", {"A", "A", "A", "A"}, {2, 3, 3, 2}, {10, 12, 14, 11}, "A", 2, 10},
      {"floor within the winning building",
       {"A", "B", "B", "A", "B"},
       {5, 7, 7, 4, 4},
       {10, 10, 10, 10, 10},
       "B",
       7,
       10},
      {"average truncated", {"A", "A"}, {-1, -1}, {10, 11}, "A", -1, 10},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    TagBestLocation result = degreeResult();
    result.setFloorInfo("kept");
    Calculator::setResultIndoorInfo(result, indoorRecords(c.geoIds, c.floorIds, c.floorAccs));
    EXPECT_EQ(result.getIndoorFlag(), 1);
    EXPECT_EQ(result.getGeoId(), c.geoId);
    EXPECT_EQ(result.getFloorId(), c.floorId);
    EXPECT_EQ(result.getFloorAcc(), c.floorAcc);
    EXPECT_EQ(result.getFloorInfo(), "kept");
  }
}

TEST(CorvexTagPositionCalculator, NoIndoorInformationWithoutCandidatesOrOnFloorZero) {
  std::vector<std::vector<BleScanInfoWithConfidence>> const inputs = {
      {},
      indoorRecords({"A"}, {-100}, {10}),
      indoorRecords({"A", "A", "A"}, {0, 0, 1}, {10, 10, 10}),
  };
  for (std::vector<BleScanInfoWithConfidence> const& infos : inputs) {
    TagBestLocation result = degreeResult();
    Calculator::setResultIndoorInfo(result, infos);
    EXPECT_EQ(result.getIndoorFlag(), 0);
    EXPECT_EQ(result.getGeoId(), "");
    EXPECT_EQ(result.getFloorId(), -100);
    EXPECT_EQ(result.getFloorAcc(), 0);
  }
}

TEST(CorvexTagPositionCalculator, FloorAccuracySumWrapsAsThirtyTwoBits) {
  int const big = std::numeric_limits<int>::max();
  TagBestLocation result = degreeResult();
  Calculator::setResultIndoorInfo(result, indoorRecords({"A", "A"}, {1, 1}, {big, big}));
  // 2 * INT_MAX wraps to -2, averaged over two records.
  EXPECT_EQ(result.getFloorAcc(), -1);
}

TEST(CorvexTagPositionCalculator, MostOccurrencesPrefersTheSmallestOnTies) {
  EXPECT_EQ(Calculator::selectMostOccurrences<std::string>({}), "");
  EXPECT_EQ(Calculator::selectMostOccurrences<int>({}), 0);
  EXPECT_EQ(Calculator::selectMostOccurrences<std::string>({"b", "B", "b", "B", "a"}), "B");
  EXPECT_EQ(Calculator::selectMostOccurrences<int>({4, -2, 4, -2, 9, 9, 9}), 9);
  EXPECT_EQ(Calculator::selectMostOccurrences<int>({4, -2, 4, -2}), -2);
}

}  // namespace
}  // namespace Vantis::Location
