// Movement, outlier, run time stamp and the indoor vote.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using Calculator = CorvexTagPositionCalculator;
using Infos = std::vector<BleScanInfoWithConfidence>;

constexpr long long kMin = std::numeric_limits<long long>::min();
constexpr long long kMax = std::numeric_limits<long long>::max();

// A record in the local plane (metres).
BleScanInfoWithConfidence planeRecord(double north, long long timeStamp, int sourceType = 3,
                                      double confidence = 0.81) {
  BleScanInfoWithConfidence info(BlueToothRecord(timeStamp, -70),
                                 LastLocation(0, north, 5.0f, 1, sourceType), 0, 0, confidence);
  info.getLastLocation().setEnu(true);
  return info;
}

TagBestLocation resultAt(double lon, double lat, long long timeStamp) {
  return TagBestLocation(lon, lat, timeStamp, 1.0, 0.0f);
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
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(
        Calculator::checkOutlier(resultAt(0, 0, 1000),
                                 planeRecord(c.distance, 1000 + c.age, c.sourceType, c.confidence)),
        c.outlier);
  }
  // The age wraps as two's complement instead of overflowing.
  EXPECT_FALSE(Calculator::checkOutlier(resultAt(0, 0, kMin), planeRecord(200, kMax)));
  EXPECT_TRUE(Calculator::checkOutlier(resultAt(0, 0, 1), planeRecord(200, kMin)));
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
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    Infos infos;
    for (double const north : c.norths) {
      infos.push_back(planeRecord(north, 1000, 1));
    }
    EXPECT_EQ(Calculator::checkMoved(infos, resultAt(0, 0, 1000)), c.moved);
  }
  // A newest outlier means moved even within 400 m.
  Infos infos = {planeRecord(0, 1000, 1), planeRecord(150, 1000 + 1800001)};
  EXPECT_TRUE(Calculator::checkMoved(infos, resultAt(0, 0, 1000)));
  infos.back().setConfidence(0.8);
  EXPECT_FALSE(Calculator::checkMoved(infos, resultAt(0, 0, 1000)));
}

TEST(CorvexTagPositionCalculator, RunTimeStampIsTheNewestScanWithin100Metres) {
  Infos infos = {planeRecord(99.9, 3000), planeRecord(0, 2000), planeRecord(500, 8000)};
  BleScanInfoWithConfidence atHundred = planeRecord(80, 9000);
  atHundred.getLastLocation().setLon(60);  // exactly 100 m: too far
  infos.push_back(atHundred);
  EXPECT_EQ(Calculator::getRunTimeStamp(infos, resultAt(0, 0, 1000)), 3000);
  // Older scans never lower the result's own time stamp.
  EXPECT_EQ(Calculator::getRunTimeStamp(infos, resultAt(0, 0, 5000)), 5000);
}

// The indoor vote works in degrees around this position.
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

TagBestLocation degreeResult(long long runTimeStamp = kRunTime) {
  TagBestLocation result = resultAt(kLon, kLat, kRunTime);
  result.setRunTimeStamp(runTimeStamp);
  return result;
}

TEST(CorvexTagPositionCalculator, IndoorCandidatesMustPassEveryTest) {
  struct Case {
    char const* name;
    void (*change)(IndoorRecord&);
    bool candidate;
  };
  Case const cases[] = {
      {"at every bound", [](IndoorRecord&) {}, true},
      {"no building", [](IndoorRecord& r) { r.geoId = ""; }, false},
      {"building null", [](IndoorRecord& r) { r.geoId = "null"; }, false},
      {"no floor", [](IndoorRecord& r) { r.floorId = -100; }, false},
      {"floorAcc 9", [](IndoorRecord& r) { r.floorAcc = 9; }, false},
      {"rssi -86", [](IndoorRecord& r) { r.rssi = -86; }, false},
      {"confidence 0.79", [](IndoorRecord& r) { r.confidence = 0.79; }, false},
      {"about 89 m away", [](IndoorRecord& r) { r.northDegrees = 0.0008; }, true},
      {"about 111 m away", [](IndoorRecord& r) { r.northDegrees = 0.001; }, false},
      {"7199999 ms old", [](IndoorRecord& r) { r.age = 7199999; }, true},
      {"two hours old", [](IndoorRecord& r) { r.age = 7200000; }, false},
      {"two hours ahead", [](IndoorRecord& r) { r.age = -7200000; }, false},
      // An illegal position measures 0.0 m (with an error line) and so stays a candidate.
      {"latitude beyond 90", [](IndoorRecord& r) { r.northDegrees = 100.0; }, true},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    IndoorRecord record;
    c.change(record);
    Infos out;
    Calculator::filterIndoor(degreeResult(), {indoorRecord(record)}, out);
    EXPECT_EQ(out.size(), c.candidate ? 1u : 0u);
  }
  // The distance is measured, and may log, only for records that passed the other tests; the
  // time window wraps as two's complement at the limits.
  IndoorRecord weak;
  weak.northDegrees = 100.0;
  weak.rssi = -90;
  IndoorRecord atTimeZero;
  atTimeZero.age = kRunTime;
  corvex_test::LogCapture capture;
  Infos out;
  Calculator::filterIndoor(degreeResult(kMin), {indoorRecord(weak), indoorRecord(atTimeZero)}, out);
  EXPECT_EQ(out.size(), 1u);
  EXPECT_TRUE(capture.lines().empty());
}

Infos indoorRecords(std::vector<std::string> const& geoIds, std::vector<int> const& floorIds,
                    std::vector<int> const& floorAccs) {
  Infos infos;
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
  int const big = std::numeric_limits<int>::max();
  struct Case {
    char const* name;
    Infos infos;
    std::string geoId;  // empty: no indoor information
    int floorId;
    int floorAcc;
  };
  Case const cases[] = {
      {"tied buildings: first in byte order",
       indoorRecords({"B", "A", "B", "A"}, {1, 2, 1, 2}, {10, 20, 30, 40}), "A", 2, 30},
      {"tied floors: the lowest",
       indoorRecords({"A", "A", "A", "A"}, {2, 3, 3, 2}, {10, 12, 14, 11}), "A", 2, 10},
      {"floor within the winning building",
       indoorRecords({"A", "B", "B", "A", "B"}, {5, 7, 7, 4, 4}, {10, 10, 10, 10, 10}), "B", 7, 10},
      {"floor accuracy summed as 32 bits", indoorRecords({"A", "A"}, {1, 1}, {big, big}), "A", 1,
       -1},
      {"no candidates", {}, "", -100, 0},
      {"no known floor", indoorRecords({"A"}, {-100}, {10}), "", -100, 0},
      {"floor 0 wins", indoorRecords({"A", "A", "A"}, {0, 0, 1}, {10, 10, 10}), "", -100, 0},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    TagBestLocation result = degreeResult();
    result.setFloorInfo("kept");
    Calculator::setResultIndoorInfo(result, c.infos);
    EXPECT_EQ(result.getIndoorFlag(), c.geoId.empty() ? 0 : 1);
    EXPECT_EQ(result.getGeoId(), c.geoId);
    EXPECT_EQ(result.getFloorId(), c.floorId);
    EXPECT_EQ(result.getFloorAcc(), c.floorAcc);
    EXPECT_EQ(result.getFloorInfo(), "kept");
  }
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
