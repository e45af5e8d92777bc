// Movement, outlier, run time stamp and the indoor vote.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "support/calculator_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::Scan;
using Calculator = CorvexTagPositionCalculator;
using Infos = std::vector<BleScanInfoWithConfidence>;

constexpr long long kMin = std::numeric_limits<long long>::min();
constexpr long long kMax = std::numeric_limits<long long>::max();

TagBestLocation resultAt(double lon, double lat, long long timeStamp) {
  return TagBestLocation(lon, lat, timeStamp, 1.0, 0.0f);
}

// The result at the origin of the plane at time 0; scans oldest first, as x, y (metres), time,
// rssi, confidence, newConfidence, acc, sourceType.
void expectMoved(char const* name, std::vector<Scan> const& scans, bool moved) {
  Infos infos;
  for (Scan const& scan : scans) {
    infos.push_back(scan.inPlane());
  }
  EXPECT_EQ(Calculator::checkMoved(infos, resultAt(0, 0, 0)), moved) << name;
}

TEST(CorvexTagPositionCalculator, MovedWhenTheNewestIsAnOutlierOrTheTwoNewestAreFar) {
  // An outlier is over 30 minutes newer, over 100 m away, of source type 3 and trusted over 0.8.
  expectMoved("outlier", {{0, 0}, {0, 101, 1800001, -70, 0.81, 0, 5, 3}}, true);
  expectMoved("exactly 30 minutes newer", {{0, 0}, {0, 101, 1800000, -70, 0.81, 0, 5, 3}}, false);
  expectMoved("exactly 100 m away", {{0, 0}, {0, 100, 1800001, -70, 0.81, 0, 5, 3}}, false);
  expectMoved("another source type", {{0, 0}, {0, 101, 1800001, -70, 0.81, 0, 5, 1}}, false);
  expectMoved("confidence exactly 0.8", {{0, 0}, {0, 101, 1800001, -70, 0.8, 0, 5, 3}}, false);
  expectMoved("newest far, second near", {{0, 450}, {0, 390}, {0, 450}}, false);
  expectMoved("both newest far", {{0, 0}, {0, 450}, {0, 450}}, true);
  expectMoved("a single far scan", {{0, 450}}, true);
  expectMoved("newest exactly 400 m", {{0, 900}, {0, 900}, {0, 400}}, false);
  expectMoved("second exactly 400 m", {{0, 400}, {0, 401}}, false);
  expectMoved("no scans", {}, true);
  // The age wraps as two's complement instead of overflowing.
  Scan const far = {0, 200, kMax, -70, 0.81, 0, 5, 3};
  EXPECT_FALSE(Calculator::checkOutlier(resultAt(0, 0, kMin), far.inPlane()));
  EXPECT_TRUE(Calculator::checkOutlier(resultAt(0, 0, 1),
                                       Scan{0, 200, kMin, -70, 0.81, 0, 5, 3}.inPlane()));
}

TEST(CorvexTagPositionCalculator, RunTimeStampIsTheNewestScanWithin100Metres) {
  // The last scan is exactly 100 m away: too far.
  Infos const infos = {Scan{0, 99.9, 3000}.inPlane(), Scan{0, 0, 2000}.inPlane(),
                       Scan{0, 500, 8000}.inPlane(), Scan{60, 80, 9000}.inPlane()};
  EXPECT_EQ(Calculator::getRunTimeStamp(infos, resultAt(0, 0, 1000)), 3000);
  // Older scans never lower the result's own time stamp.
  EXPECT_EQ(Calculator::getRunTimeStamp(infos, resultAt(0, 0, 5000)), 5000);
}

// The indoor vote works in degrees around this position.
constexpr double kLon = 116.397128;
constexpr double kLat = 39.916527;
constexpr long long kRunTime = 100000000;

BleScanInfoWithConfidence indoor(std::string const& geoId, int floorId, int floorAcc,
                                 int rssi = -85, double confidence = 0.8, double north = 0.0,
                                 long long age = 0) {
  BleScanInfoWithConfidence info =
      Scan{kLon, kLat + north, kRunTime - age, rssi, confidence}.inDegrees();
  info.getLastLocation().setIndoorInfo(1, geoId, floorId, floorAcc, "F" + std::to_string(floorId));
  return info;
}

TagBestLocation degreeResult(long long runTimeStamp = kRunTime) {
  TagBestLocation result = resultAt(kLon, kLat, kRunTime);
  result.setRunTimeStamp(runTimeStamp);
  return result;
}

TEST(CorvexTagPositionCalculator, IndoorCandidatesMustPassEveryTest) {
  struct Case {
    char const* name;
    BleScanInfoWithConfidence record;  // geoId, floorId, floorAcc, rssi, confidence, north
                                       // (degrees), age (ms)
    bool candidate;
  };
  Case const cases[] = {
      {"at every bound", indoor("B1", 3, 10), true},
      {"no building", indoor("", 3, 10), false},
      {"building null", indoor("null", 3, 10), false},
      {"no floor", indoor("B1", -100, 10), false},
      {"floorAcc 9", indoor("B1", 3, 9), false},
      {"rssi -86", indoor("B1", 3, 10, -86), false},
      {"confidence 0.79", indoor("B1", 3, 10, -85, 0.79), false},
      {"about 89 m away", indoor("B1", 3, 10, -85, 0.8, 0.0008), true},
      {"about 111 m away", indoor("B1", 3, 10, -85, 0.8, 0.001), false},
      {"7199999 ms old", indoor("B1", 3, 10, -85, 0.8, 0, 7199999), true},
      {"two hours old", indoor("B1", 3, 10, -85, 0.8, 0, 7200000), false},
      {"two hours ahead", indoor("B1", 3, 10, -85, 0.8, 0, -7200000), false},
      // An illegal position measures 0.0 m (with an error line) and so stays a candidate.
      {"latitude beyond 90", indoor("B1", 3, 10, -85, 0.8, 100.0), true},
  };
  for (Case const& c : cases) {
    Infos out;
    Calculator::filterIndoor(degreeResult(), {c.record}, out);
    EXPECT_EQ(out.size(), c.candidate ? 1u : 0u) << c.name;
  }
  // The distance is measured, and may log, only for records that passed the other tests; the
  // time window wraps as two's complement at the limits.
  corvex_test::LogCapture capture;
  Infos out;
  Calculator::filterIndoor(
      degreeResult(kMin),
      {indoor("B1", 3, 10, -90, 0.8, 100.0), indoor("B1", 3, 10, -85, 0.8, 0, kRunTime)}, out);
  EXPECT_EQ(out.size(), 1u);
  EXPECT_TRUE(capture.lines().empty());
}

// Votes over candidates with these buildings, floors and floor accuracies.
void expectVote(char const* name, std::vector<std::string> const& geoIds,
                std::vector<int> const& floorIds, std::vector<int> const& floorAccs,
                std::string const& geoId, int floorId, int floorAcc) {
  SCOPED_TRACE(name);
  Infos infos;
  for (std::size_t i = 0; i < geoIds.size(); ++i) {
    infos.push_back(indoor(geoIds[i], floorIds[i], floorAccs[i]));
  }
  TagBestLocation result = degreeResult();
  result.setFloorInfo("kept");
  Calculator::setResultIndoorInfo(result, infos);
  EXPECT_EQ(result.getIndoorFlag(), geoId.empty() ? 0 : 1);
  EXPECT_EQ(result.getGeoId(), geoId);
  EXPECT_EQ(result.getFloorId(), floorId);
  EXPECT_EQ(result.getFloorAcc(), floorAcc);
  EXPECT_EQ(result.getFloorInfo(), "kept");
}

TEST(CorvexTagPositionCalculator, IndoorVoteTakesBuildingThenFloor) {
  int const big = std::numeric_limits<int>::max();
  expectVote("tied buildings: first in byte order", {"B", "A", "B", "A"}, {1, 2, 1, 2},
             {10, 20, 30, 40}, "A", 2, 30);
  expectVote("tied floors: the lowest", {"A", "A", "A", "A"}, {2, 3, 3, 2}, {10, 12, 14, 11}, "A",
             2, 10);
  expectVote("floor within the winning building", {"A", "B", "B", "A", "B"}, {5, 7, 7, 4, 4},
             {10, 10, 10, 10, 10}, "B", 7, 10);
  expectVote("floor accuracy summed as 32 bits", {"A", "A"}, {1, 1}, {big, big}, "A", 1, -1);
  // No indoor information: no candidates, no known floor, or floor 0 wins.
  expectVote("no candidates", {}, {}, {}, "", -100, 0);
  expectVote("no known floor", {"A"}, {-100}, {10}, "", -100, 0);
  expectVote("floor 0 wins", {"A", "A", "A"}, {0, 0, 1}, {10, 10, 10}, "", -100, 0);
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
