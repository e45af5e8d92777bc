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
  Scan outlier = {0, 200, kMax, -70, 0.81, 0, 5, 3};
  EXPECT_FALSE(Calculator::checkOutlier(resultAt(0, 0, kMin), outlier.inPlane()));
  outlier.time = kMin;
  EXPECT_TRUE(Calculator::checkOutlier(resultAt(0, 0, 1), outlier.inPlane()));
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

// Whether the record may vote on the building and floor of a result with that run time stamp.
bool votes(BleScanInfoWithConfidence const& record, long long runTimeStamp = kRunTime) {
  Infos out;
  Calculator::filterIndoor(degreeResult(runTimeStamp), {record}, out);
  return out.size() == 1;
}

TEST(CorvexTagPositionCalculator, IndoorCandidatesMustPassEveryTest) {
  // geoId, floorId, floorAcc, rssi, confidence, north (degrees), age (ms)
  EXPECT_TRUE(votes(indoor("B1", 3, 10, -85, 0.8)));  // every bound
  EXPECT_FALSE(votes(indoor("", 3, 10)));
  EXPECT_FALSE(votes(indoor("null", 3, 10)));
  EXPECT_FALSE(votes(indoor("B1", -100, 10)));
  EXPECT_FALSE(votes(indoor("B1", 3, 9)));
  EXPECT_FALSE(votes(indoor("B1", 3, 10, -86)));
  EXPECT_FALSE(votes(indoor("B1", 3, 10, -85, 0.79)));
  EXPECT_TRUE(votes(indoor("B1", 3, 10, -85, 0.8, 0.0008)));  // about 89 m away
  EXPECT_FALSE(votes(indoor("B1", 3, 10, -85, 0.8, 0.001)));  // about 111 m away
  BleScanInfoWithConfidence edge = indoor("B1", 3, 10);
  edge.getLastLocation().setLon(116.39712802784275);  // exactly 100 m away (found by search)
  edge.getLastLocation().setLat(39.917426321605667);
  EXPECT_FALSE(votes(edge));
  EXPECT_TRUE(votes(indoor("B1", 3, 10, -85, 0.8, 0, 7199999)));
  EXPECT_FALSE(votes(indoor("B1", 3, 10, -85, 0.8, 0, 7200000)));
  EXPECT_FALSE(votes(indoor("B1", 3, 10, -85, 0.8, 0, -7200000)));
  // The time window wraps as two's complement at the limits.
  EXPECT_TRUE(votes(indoor("B1", 3, 10, -85, 0.8, 0, kRunTime), kMin));
  // An illegal position measures 0.0 m (with an error line) and so stays a candidate; the
  // distance is measured, and may log, only for records that passed the other tests.
  EXPECT_TRUE(votes(indoor("B1", 3, 10, -85, 0.8, 100.0)));
  corvex_test::LogCapture capture;
  EXPECT_FALSE(votes(indoor("B1", 3, 10, -90, 0.8, 100.0)));
  EXPECT_TRUE(capture.lines().empty());
}

// The result's indoor fields, as flag/geoId/floorId/floorAcc/floorInfo, after a vote among
// candidates with these buildings, floors and floor accuracies.
std::string voted(std::vector<std::string> const& geoIds, std::vector<int> const& floorIds,
                  std::vector<int> const& floorAccs) {
  Infos infos;
  for (std::size_t i = 0; i < geoIds.size(); ++i) {
    infos.push_back(indoor(geoIds[i], floorIds[i], floorAccs[i]));
  }
  TagBestLocation result = degreeResult();
  result.setFloorInfo("kept");
  Calculator::setResultIndoorInfo(result, infos);
  return std::to_string(result.getIndoorFlag()) + "/" + result.getGeoId() + "/" +
         std::to_string(result.getFloorId()) + "/" + std::to_string(result.getFloorAcc()) + "/" +
         result.getFloorInfo();
}

TEST(CorvexTagPositionCalculator, IndoorVoteTakesBuildingThenFloor) {
  // Ties go to the first building in byte order and to the lowest floor.
  EXPECT_EQ(voted({"B", "A", "B", "A"}, {1, 2, 1, 2}, {10, 20, 30, 40}), "1/A/2/30/kept");
  EXPECT_EQ(voted({"A", "A", "A", "A"}, {2, 3, 3, 2}, {10, 12, 14, 11}), "1/A/2/10/kept");
  EXPECT_EQ(voted({"A", "B", "B", "A", "B"}, {5, 7, 7, 4, 4}, {10, 10, 10, 10, 10}),
            "1/B/7/10/kept");
  int const big = std::numeric_limits<int>::max();  // floor accuracies summed as 32 bits
  EXPECT_EQ(voted({"A", "A"}, {1, 1}, {big, big}), "1/A/1/-1/kept");
  // No candidate, no known floor, or floor 0 winning: no indoor information.
  EXPECT_EQ(voted({}, {}, {}), "0//-100/0/kept");
  EXPECT_EQ(voted({"A"}, {-100}, {10}), "0//-100/0/kept");
  EXPECT_EQ(voted({"A", "A", "A"}, {0, 0, 1}, {10, 10, 10}), "0//-100/0/kept");
  std::vector<SharedText> const texts = SharedText::ranked({"b", "B", "b", "B"});
  EXPECT_EQ(Calculator::selectMostOccurrences(texts).get(), "B");
  EXPECT_EQ(Calculator::selectMostOccurrences<SharedText>({}).get(), "");
  EXPECT_EQ(Calculator::selectMostOccurrences<int>({}), 0);
}

}  // namespace
}  // namespace Vantis::Location
