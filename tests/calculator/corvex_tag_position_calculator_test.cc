// The main calculator's flow: input checks, the choice of algorithm, the default result on
// failures, and whole scenarios with their measured error.
#include "calculator/corvex_tag_position_calculator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "calculator/kmeans_position_calculator.h"
#include "geometry/coordinate_converter.h"
#include "geometry/gnss_distance_measure.h"
#include "support/calculator_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::describe;
using corvex_test::kError;
using corvex_test::kInfo;
using corvex_test::LogCapture;
using corvex_test::LogLine;
using corvex_test::Scan;
using Infos = std::vector<BleScanInfoWithConfidence>;
using Lines = std::vector<LogLine>;

constexpr double kTagLon = 116.397128;
constexpr double kTagLat = 39.916527;
constexpr long long kNow = 1700000000000;
constexpr long long kMinute = 60000;
// The local plane uses a 6378137 m earth, the distance measure a 6371000 m one.
constexpr double kMeasuredPerPlaneMetre = 6371000.0 / 6378137.0;

// The scan placed s.x metres east and s.y metres north of the tag.
BleScanInfoWithConfidence nearTag(Scan s) {
  std::vector<double> const lonLat =
      CoordinateConverter::enuConvertGPS(s.x, s.y, {kTagLon, kTagLat});
  s.x = lonLat[0];
  s.y = lonLat[1];
  return s.inDegrees();
}

// Metres from the tag.
double distanceFromTag(TagBestLocation const& result) {
  return GnssDistanceMeasure::compute({result.getLon(), result.getLat()}, {kTagLon, kTagLat});
}

// count scans a metre apart along east, one minute apart, the newest last at kNow.
Infos row(int count, int rssi = -70, int locationType = 0) {
  Infos infos;
  for (int i = 0; i < count; ++i) {
    long long const time = kNow - (count - 1 - i) * kMinute;
    infos.push_back(nearTag({i * 1.0, 0, time, rssi, 0.9, 0.5, 10, 0, locationType}));
  }
  return infos;
}

// The filter pipeline's lines when all count indoor scans survive it.
Lines pipelineLog(int count) {
  std::string const n = std::to_string(count);
  return {
      {kInfo, "Infos size(Before filter, Filtered by timeStamp, by kindTransID, by confidence): [" +
                  n + ", " + n + ", " + n + ", " + n + "]"},
      {kInfo, "Filtered by DBScan stage 0, Infos size: " + n + ", cluster size: 1"},
      {kInfo, "Filtered by DBScan stage 1, Infos size: " + n + ", cluster size: 1"}};
}

// Runs the scans, the newest of them in building B7, and expects the newest scan as reported,
// with its building when it may vote, the code and the error lines; afterwards the scans are in
// degrees again, with that newConfidence (0.5 when they were never scored).
void expectNewestScan(Infos infos, ErrorCode const& code, std::vector<std::string> const& errors,
                      bool votes, double newConfidence) {
  SCOPED_TRACE(code.getErrorCode());
  Infos const given = infos;
  infos.back().getLastLocation().setIndoorInfo(0, "B7", 4, 12, "4F");
  LogCapture capture;
  TagBestLocation const result = CorvexTagPositionCalculator().getPosition(infos);
  EXPECT_EQ(capture.messages(kError), errors);
  LastLocation const& newest = given.back().getLastLocationConst();
  TagBestLocation expected(newest.getLon(), newest.getLat(), kNow, 0.9, 10.0f);
  expected.setRunTimeStamp(kNow);
  expected.setErrorCode(code);
  if (votes) {
    expected.setIndoorFlag(1);
    expected.setGeoId("B7");
    expected.setFloorId(4);
    expected.setFloorAcc(12);
  }
  EXPECT_EQ(describe(result), describe(expected));
  EXPECT_EQ(result.getLon(), newest.getLon());
  for (std::size_t i = 0; i < infos.size(); i += 1000) {
    EXPECT_NEAR(infos[i].getLastLocationConst().getLat(), given[i].getLastLocationConst().getLat(),
                1e-9);
    EXPECT_EQ(infos[i].getNewConfidence(), newConfidence);
  }
}

TEST(CorvexTagPositionCalculator, FailuresReturnTheNewestScanWithTheirCode) {
  Infos none;
  LogCapture capture;
  EXPECT_EQ(CorvexTagPositionCalculator().getPosition(none).getErrorCode(),
            ErrorCode::INPUT_INFO_EMPTY);
  EXPECT_EQ(capture.lines(), (Lines{{kError, "infos is null or empty"}}));
  expectNewestScan(row(5001), ErrorCode::INPUT_INFO_OVER_LIMIT, {"infos size exceed limit"}, true,
                   0.5);
  // Outdoors, signals below -120 dBm: the scoring finds no proactive satellite fixes to judge
  // cohesion on, says so, and scores every scan 0.
  expectNewestScan(row(3, -125, 1), ErrorCode::CONFIDENCE_ERROR,
                   {"infos == null or is empty", "All of new confidences are 0"}, false, 0.0);
  Infos fiveThousand = row(5000);
  EXPECT_EQ(CorvexTagPositionCalculator().getPosition(fiveThousand).getErrorCode(),
            ErrorCode::SUCCESS);
}

TEST(CorvexTagPositionCalculator, OutOfRangeRssiKeepsTheSolvedPositionInMetres) {
  Infos infos = row(3);
  infos[0].getBlueToothRecord().setRssi(0);  // missing: takes part as -100 dBm
  infos[1].getBlueToothRecord().setRssi(5);
  LogCapture capture;
  TagBestLocation const result = CorvexTagPositionCalculator().getPosition(infos);
  // The weighted mean of east 0, 1 and 2 metres, left in the local plane; indoor scans all
  // score alike.
  TagBestLocation expected(1.0, 0.0, kNow, 1.0, 10.0f);
  expected.setRunTimeStamp(kNow);
  expected.setErrorCode(ErrorCode::RSSI_OVER_LIMIT);
  expected.getTagStat().setInfoCount({3, 3, 3, 3, 3, 3});
  EXPECT_EQ(describe(result), describe(expected));
  Lines expectedLog = pipelineLog(3);
  expectedLog.push_back({kError, "rssi 5.000000 out of range! Must be -128 <= rssi < 0 !"});
  EXPECT_EQ(capture.lines(), expectedLog);
  EXPECT_EQ(infos[0].getBlueToothRecordConst().getRssi(), -100);
  EXPECT_EQ(infos[1].getBlueToothRecordConst().getRssi(), 5);
}

TEST(CorvexTagPositionCalculator, ChoosesTheSolutionWithTheNewerRunTimeStamp) {
  Infos infos = row(5);
  for (BleScanInfoWithConfidence& info : infos) {
    info.getLastLocation().setIndoorInfo(0, "B1", 2, 10, "2F");
  }
  std::swap(infos[0], infos[4]);  // the calculator sorts by scan time itself
  CorvexTagPositionCalculator calculator;
  LogCapture capture;
  TagBestLocation const result = calculator.getPosition(infos);
  // Equal run time stamps: the mean of east 0 to 4 metres, back in degrees, with the scans'
  // building and floor.
  Lines expectedLog = pipelineLog(5);
  for (char const* line :
       {" offlineLocationList size: 5", "getFilteredPointList", "applyDbScanInner: 5",
        "applyDbScanInner: result size 1", " Old DBScan after: 5", "getCorePoint",
        "applyKmeansInner", "kmeans", "points size 5", "using algorithm 1"}) {
    expectedLog.push_back({kInfo, line});
  }
  EXPECT_EQ(capture.lines(), expectedLog);
  EXPECT_NEAR(distanceFromTag(result), 2.0 * kMeasuredPerPlaneMetre, 1e-6);
  EXPECT_EQ(result.getRunTimeStamp(), kNow);
  EXPECT_EQ(result.getGeoId() + std::to_string(result.getFloorId()), "B12");
  EXPECT_EQ(result.getTagStat().getInfoCount(), std::vector<int>(6, 5));
  EXPECT_EQ(infos.front().getBlueToothRecordConst().getTimeStamp(), kNow - 4 * kMinute);
  for (BleScanInfoWithConfidence const& info : calculator.getFilteredInfos()) {
    EXPECT_NEAR(info.getLastLocationConst().getLon(), kTagLon, 1e-4);
  }

  // A newer scan 150 m east: too far to vouch for the solution, too near to mean a move.
  infos.push_back(nearTag({150.0, 0, kNow + kMinute}));
  capture.clear();
  TagBestLocation const newer = calculator.getPosition(infos);
  EXPECT_EQ(capture.messages(kInfo).back(), "using algorithm 2");
  TagBestLocation kmeans = KmeansPositionCalculator().getPosition(infos);
  CorvexTagPositionCalculator::setResultIndoorInfo(kmeans, infos);
  EXPECT_EQ(describe(newer), describe(kmeans));
  EXPECT_EQ(newer.getRunTimeStamp(), kNow + kMinute);
}

// A stationary tag outdoors: 50 satellite-positioned phones within 100 m over 50 minutes,
// RSSI from the range model with 4 dB of noise.
Infos stationaryOutdoorScans() {
  std::mt19937 generator(20240601);
  auto uniform = [&generator] { return static_cast<double>(generator()) / 4294967296.0; };
  double const pi = 3.141592653589793;
  Infos infos;
  for (int i = 0; i < 50; ++i) {
    double const radius = 100.0 * std::sqrt(uniform());
    double const angle = 2.0 * pi * uniform();
    double const noise =
        4.0 * std::sqrt(-2.0 * std::log(1.0 - uniform())) * std::cos(2.0 * pi * uniform());
    double const rssi = -72.5 - 26.5 * std::log10(std::max(radius, 0.5)) + noise;
    double const confidence = 0.6 + 0.4 * uniform();
    float const acc = static_cast<float>(5.0 + 15.0 * uniform());
    infos.push_back(
        nearTag({radius * std::cos(angle), radius * std::sin(angle), kNow - (49 - i) * kMinute,
                 static_cast<int>(std::lround(std::clamp(rssi, -127.0, -30.0))), confidence, 0, acc,
                 1, 1}));
  }
  return infos;
}

TEST(CorvexTagPositionCalculator, StationaryOutdoorTagIsFoundNearItsPosition) {
  Infos infos = stationaryOutdoorScans();
  TagBestLocation const result = CorvexTagPositionCalculator().getPosition(infos);
  double const error = distanceFromTag(result);
  RecordProperty("error_metres", std::to_string(error));
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_LT(error, 20.0);
  EXPECT_EQ(result.getTagStat().getInfoCount().size(), 8u);
}

TEST(CorvexTagPositionCalculator, TagMovedTwoKilometresIsReportedAsMoved) {
  // A trusted network fix 40 minutes after the last nearby scan; or the two newest scans far
  // away but too little trusted to pass the confidence filter.
  struct Case {
    int farScans;
    double farConfidence;
    long long farDelay;
  };
  for (Case const& c : {Case{1, 0.9, 40 * kMinute}, Case{2, 0.3, 5 * kMinute}}) {
    SCOPED_TRACE(c.farScans);
    Infos infos;
    long long const lastNear = kNow - 64 * kMinute;
    for (int i = 0; i < 30; ++i) {
      infos.push_back(nearTag({(i % 5) * 8.0, (i / 5) * 8.0, lastNear - (29 - i) * 4 * kMinute}));
    }
    for (int i = 0; i < c.farScans; ++i) {
      infos.push_back(nearTag(
          {2000.0 + i, 0, lastNear + c.farDelay + i * kMinute, -70, c.farConfidence, 0, 10, 3}));
    }
    LogCapture capture;
    TagBestLocation const result = CorvexTagPositionCalculator().getPosition(infos);
    EXPECT_EQ(result.getErrorCode().getErrorCode(), 500090);
    EXPECT_EQ(capture.messages(kInfo).back(), "Tag is moved");
    EXPECT_EQ(result.getLon(), infos.back().getLastLocationConst().getLon());
    EXPECT_EQ(result.getTimeStamp(), infos.back().getBlueToothRecordConst().getTimeStamp());
    EXPECT_NEAR(distanceFromTag(result), (2000.0 + c.farScans - 1) * kMeasuredPerPlaneMetre, 1e-3);
  }
}

}  // namespace
}  // namespace Vantis::Location
