// The main calculator's flow: input checks, scoring, the choice of algorithm, the default result
// on failures, and whole scenarios with their measured error.
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
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::kError;
using corvex_test::kInfo;
using corvex_test::LogCapture;
using corvex_test::LogLine;
using Infos = std::vector<BleScanInfoWithConfidence>;

constexpr double kTagLon = 116.397128;
constexpr double kTagLat = 39.916527;
constexpr long long kNow = 1700000000000;
constexpr long long kMinute = 60000;
// The local plane uses a 6378137 m earth, the distance measure a 6371000 m one.
constexpr double kMeasuredPerPlaneMetre = 6371000.0 / 6378137.0;

struct Scan {
  double east = 0.0;  // metres from the tag
  double north = 0.0;
  long long time = kNow;
  int rssi = -70;
  double confidence = 0.9;
  int locationType = 0;  // 1: satellite fix
  int sourceType = 0;
  float acc = 10.0f;
};

BleScanInfoWithConfidence scan(Scan const& s) {
  std::vector<double> const lonLat =
      CoordinateConverter::enuConvertGPS(s.east, s.north, {kTagLon, kTagLat});
  return BleScanInfoWithConfidence(
      BlueToothRecord("tag", "AA", s.time, s.rssi),
      LastLocation(lonLat[0], lonLat[1], s.acc, s.locationType, s.sourceType), 0, 0, s.confidence);
}

// Metres from the tag.
double distanceFromTag(double lon, double lat) {
  return GnssDistanceMeasure::compute({lon, lat}, {kTagLon, kTagLat});
}

// count indoor scans a metre apart along east, one minute apart, the newest last.
Infos indoorRow(int count) {
  Infos infos;
  for (int i = 0; i < count; ++i) {
    Scan s;
    s.east = i;
    s.time = kNow - (count - 1 - i) * kMinute;
    infos.push_back(scan(s));
  }
  return infos;
}

bool contains(std::vector<std::string> const& messages, std::string const& message) {
  return std::find(messages.begin(), messages.end(), message) != messages.end();
}

TEST(CorvexTagPositionCalculator, EmptyInputGivesOneErrorLineAndNothingElse) {
  CorvexTagPositionCalculator calculator;
  Infos infos;
  LogCapture capture;
  TagBestLocation const result = calculator.getPosition(infos);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::INPUT_INFO_EMPTY);
  EXPECT_EQ(result.getLon(), 0.0);
  EXPECT_EQ(result.getTimeStamp(), 0);
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{kError, "infos is null or empty"}}));
  EXPECT_TRUE(calculator.getFilteredInfos().empty());
}

// Outdoors, every signal below -120 dBm and one common confidence: every score is 0.
Infos unscorableRow() {
  Infos infos = indoorRow(3);
  for (BleScanInfoWithConfidence& info : infos) {
    info.getBlueToothRecord().setRssi(-125);
    info.getLastLocation().setLocationType(1);
    info.setConfidence(0.5);
  }
  return infos;
}

TEST(CorvexTagPositionCalculator, FailuresReturnTheNewestScanWithTheirCode) {
  struct Case {
    char const* name;
    Infos infos;
    ErrorCode code;
    std::vector<std::string> errors;
    char const* geoId;  // the newest scan's building, if it may vote
  };
  Case const cases[] = {
      {"5001 scans",
       indoorRow(5001),
       ErrorCode::INPUT_INFO_OVER_LIMIT,
       {"infos size exceed limit"},
       "B7"},
      // The scoring finds no proactive satellite fixes to judge cohesion on, and says so.
      {"all scores 0",
       unscorableRow(),
       ErrorCode::CONFIDENCE_ERROR,
       {"infos == null or is empty", "All of new confidences are 0"},
       ""},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    Infos infos = c.infos;
    infos.back().getLastLocation().setIndoorInfo(0, "B7", 4, 12, "4F");
    CorvexTagPositionCalculator calculator;
    LogCapture capture;
    TagBestLocation const result = calculator.getPosition(infos);
    EXPECT_EQ(result.getErrorCode(), c.code);
    EXPECT_EQ(capture.messages(kError), c.errors);
    LastLocation const& newest = c.infos.back().getLastLocationConst();
    EXPECT_EQ(result.getLon(), newest.getLon());
    EXPECT_EQ(result.getLat(), newest.getLat());
    EXPECT_EQ(result.getTimeStamp(), kNow);
    EXPECT_EQ(result.getRunTimeStamp(), kNow);
    EXPECT_EQ(result.getConfidence(), c.infos.back().getConfidence());
    EXPECT_EQ(result.getAcc(), 10.0f);
    // The newest scan's indoor information travels with the default result.
    EXPECT_EQ(result.getGeoId(), c.geoId);
    EXPECT_EQ(result.getIndoorFlag(), *c.geoId ? 1 : 0);
    EXPECT_TRUE(result.getTagStat().getInfoCount().empty());
    for (std::size_t i = 0; i < infos.size(); i += 1000) {
      EXPECT_FALSE(infos[i].getLastLocationConst().getEnu());
      EXPECT_NEAR(infos[i].getLastLocationConst().getLon(),
                  c.infos[i].getLastLocationConst().getLon(), 1e-9);
      EXPECT_EQ(infos[i].getNewConfidence(), 0.0);
    }
  }
  Infos const fiveThousand = indoorRow(5000);
  Infos infos = fiveThousand;
  EXPECT_EQ(CorvexTagPositionCalculator().getPosition(infos).getErrorCode(), ErrorCode::SUCCESS);
}

TEST(CorvexTagPositionCalculator, OutOfRangeRssiKeepsTheSolvedPositionInMetres) {
  Infos infos = indoorRow(3);
  infos[1].getBlueToothRecord().setRssi(5);
  CorvexTagPositionCalculator calculator;
  LogCapture capture;
  TagBestLocation const result = calculator.getPosition(infos);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::RSSI_OVER_LIMIT);
  // The weighted mean of east 0, 1 and 2 metres, left in the local plane.
  EXPECT_NEAR(result.getLon(), 1.0, 1e-6);
  EXPECT_NEAR(result.getLat(), 0.0, 1e-6);
  EXPECT_EQ(result.getTagStat().getInfoCount(), (std::vector<int>{3, 3, 3, 3, 3, 3}));
  EXPECT_FALSE(contains(capture.messages(kInfo), "using algorithm 1"));
  EXPECT_TRUE(
      contains(capture.messages(kError), "rssi 5.000000 out of range! Must be -128 <= rssi < 0 !"));
}

TEST(CorvexTagPositionCalculator, PreparationRepairsRssiAndScoresIndoorScansAlike) {
  Infos infos = indoorRow(3);
  infos[0].getBlueToothRecord().setRssi(0);
  infos[1].getBlueToothRecord().setRssi(5);
  CorvexTagPositionCalculator::setDefaultRssi(infos);
  EXPECT_EQ(infos[0].getBlueToothRecordConst().getRssi(), -100);
  EXPECT_EQ(infos[1].getBlueToothRecordConst().getRssi(), 5);
  EXPECT_EQ(infos[2].getBlueToothRecordConst().getRssi(), -70);
  EXPECT_TRUE(CorvexTagPositionCalculator::getNewConfidence(infos));
  for (BleScanInfoWithConfidence const& info : infos) {
    EXPECT_EQ(info.getNewConfidence(), 1.0);
  }
}

TEST(CorvexTagPositionCalculator, EqualRunTimeStampsChooseTheRangeSolution) {
  Infos infos = indoorRow(5);
  std::swap(infos[0], infos[4]);  // the calculator sorts by scan time itself
  CorvexTagPositionCalculator calculator;
  LogCapture capture;
  TagBestLocation const result = calculator.getPosition(infos);
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  std::vector<LogLine> const expectedLog = {
      {kInfo,
       "Infos size(Before filter, Filtered by timeStamp, by kindTransID, by confidence): "
       "[5, 5, 5, 5]"},
      {kInfo, "Filtered by DBScan stage 0, Infos size: 5, cluster size: 1"},
      {kInfo, "Filtered by DBScan stage 1, Infos size: 5, cluster size: 1"},
      {kInfo, " offlineLocationList size: 5"},
      {kInfo, "getFilteredPointList"},
      {kInfo, "applyDbScanInner: 5"},
      {kInfo, "applyDbScanInner: result size 1"},
      {kInfo, " Old DBScan after: 5"},
      {kInfo, "getCorePoint"},
      {kInfo, "applyKmeansInner"},
      {kInfo, "kmeans"},
      {kInfo, "points size 5"},
      {kInfo, "using algorithm 1"},
  };
  EXPECT_EQ(capture.lines(), expectedLog);
  // The mean of east 0 to 4 metres, back in degrees.
  EXPECT_NEAR(distanceFromTag(result.getLon(), result.getLat()), 2.0 * kMeasuredPerPlaneMetre,
              1e-6);
  EXPECT_EQ(result.getTimeStamp(), kNow);
  EXPECT_EQ(result.getRunTimeStamp(), kNow);
  EXPECT_EQ(
      result.getTraceLog(),
      R"({"version":"V2.0","errorCode":0,"errorMsg":"Success","infoCount":[5, 5, 5, 5, 5, 5]})");
  for (std::size_t i = 0; i < infos.size(); ++i) {
    EXPECT_EQ(infos[i].getBlueToothRecordConst().getTimeStamp(), kNow - (4 - i) * kMinute);
    EXPECT_FALSE(infos[i].getLastLocationConst().getEnu());
  }
  Infos const filtered = calculator.getFilteredInfos();
  ASSERT_EQ(filtered.size(), 5u);
  for (BleScanInfoWithConfidence const& info : filtered) {
    EXPECT_FALSE(info.getLastLocationConst().getEnu());
    EXPECT_LT(
        distanceFromTag(info.getLastLocationConst().getLon(), info.getLastLocationConst().getLat()),
        5.0);
  }
}

TEST(CorvexTagPositionCalculator, NewerScanAwayFromTheSolutionChoosesKmeans) {
  // The newest scan is 150 m east: too far to vouch for the solution, too near to mean a move.
  Infos infos = indoorRow(5);
  Scan far;
  far.east = 150.0;
  far.time = kNow + kMinute;
  infos.push_back(scan(far));
  CorvexTagPositionCalculator calculator;
  LogCapture capture;
  TagBestLocation const result = calculator.getPosition(infos);
  EXPECT_TRUE(contains(capture.messages(kInfo), "using algorithm 2"));
  TagBestLocation const kmeans = KmeansPositionCalculator().getPosition(infos);
  EXPECT_EQ(result.getErrorCode(), kmeans.getErrorCode());
  EXPECT_EQ(result.getLon(), kmeans.getLon());
  EXPECT_EQ(result.getLat(), kmeans.getLat());
  EXPECT_EQ(result.getRunTimeStamp(), kNow + kMinute);
}

// A stationary tag outdoors: 50 satellite-positioned phones within 100 m over 50 minutes,
// RSSI from the range model with 4 dB of noise.
Infos stationaryOutdoorScans() {
  std::mt19937 generator(20240601);
  auto uniform = [&generator] { return static_cast<double>(generator()) / 4294967296.0; };
  Infos infos;
  for (int i = 0; i < 50; ++i) {
    double const radius = 100.0 * std::sqrt(uniform());
    double const angle = 2.0 * 3.141592653589793 * uniform();
    double const noise = 4.0 * std::sqrt(-2.0 * std::log(1.0 - uniform())) *
                         std::cos(2.0 * 3.141592653589793 * uniform());
    double const rssi = -72.5 - 26.5 * std::log10(std::max(radius, 0.5)) + noise;
    Scan s;
    s.east = radius * std::cos(angle);
    s.north = radius * std::sin(angle);
    s.time = kNow - (49 - i) * kMinute;
    s.rssi = static_cast<int>(std::lround(std::max(-127.0, std::min(-30.0, rssi))));
    s.confidence = 0.6 + 0.4 * uniform();
    s.locationType = 1;
    s.sourceType = 1;
    s.acc = static_cast<float>(5.0 + 15.0 * uniform());
    infos.push_back(scan(s));
  }
  return infos;
}

TEST(CorvexTagPositionCalculator, StationaryOutdoorTagIsFoundNearItsPosition) {
  Infos infos = stationaryOutdoorScans();
  CorvexTagPositionCalculator calculator;
  TagBestLocation const result = calculator.getPosition(infos);
  double const error = distanceFromTag(result.getLon(), result.getLat());
  RecordProperty("error_metres", std::to_string(error));
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_LT(error, 20.0);
  EXPECT_EQ(result.getTagStat().getInfoCount().size(), 8u);
}

TEST(CorvexTagPositionCalculator, TagMovedTwoKilometresIsReportedAsMoved) {
  struct Case {
    char const* name;
    int farScans;
    double farConfidence;
    long long farDelay;
  };
  // A trusted network fix 40 minutes after the last nearby scan; or the two newest scans far
  // away but too little trusted to pass the confidence filter.
  Case const cases[] = {{"trusted recent fix", 1, 0.9, 40 * kMinute},
                        {"two untrusted scans", 2, 0.3, 5 * kMinute}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    Infos infos;
    for (int i = 0; i < 30; ++i) {
      Scan s;
      s.east = (i % 5) * 8.0;
      s.north = (i / 5) * 8.0;
      s.time = kNow - 3 * 60 * kMinute + i * 4 * kMinute;
      infos.push_back(scan(s));
    }
    long long const lastNear = infos.back().getBlueToothRecordConst().getTimeStamp();
    for (int i = 0; i < c.farScans; ++i) {
      Scan s;
      s.east = 2000.0 + i;
      s.time = lastNear + c.farDelay + i * kMinute;
      s.confidence = c.farConfidence;
      s.sourceType = 3;
      infos.push_back(scan(s));
    }
    CorvexTagPositionCalculator calculator;
    LogCapture capture;
    TagBestLocation const result = calculator.getPosition(infos);
    EXPECT_EQ(result.getErrorCode().getErrorCode(), 500090);
    EXPECT_TRUE(contains(capture.messages(kInfo), "Tag is moved"));
    EXPECT_EQ(result.getLon(), infos.back().getLastLocationConst().getLon());
    EXPECT_EQ(result.getTimeStamp(), infos.back().getBlueToothRecordConst().getTimeStamp());
    EXPECT_NEAR(distanceFromTag(result.getLon(), result.getLat()),
                (2000.0 + c.farScans - 1) * kMeasuredPerPlaneMetre, 1e-3);
  }
}

}  // namespace
}  // namespace Vantis::Location
