#include "calculator/kmeans_position_calculator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::tagged;
using Infos = std::vector<BleScanInfoWithConfidence>;
using Lines = std::vector<std::string>;
using Times = std::vector<long long>;

BleScanInfoWithConfidence makeInfo(long long time, double lon, double lat, double confidence = 0.9,
                                   float acc = 10) {
  return BleScanInfoWithConfidence(BlueToothRecord("tag", "AA", time, -60),
                                   LastLocation(lon, lat, acc, 1, 1), 0, 0, confidence);
}

Times timesOf(Infos const& infos) {
  Times times;
  for (auto const& info : infos) times.push_back(info.getBlueToothRecordConst().getTimeStamp());
  return times;
}

// Newest first: position i has time 1000 - i.
Infos timeOrdered(int count, std::function<double(int)> const& confidenceAt) {
  Infos infos;
  for (int i = 0; i < count; ++i) infos.push_back(makeInfo(1000 - i, 1, 1, confidenceAt(i)));
  return infos;
}

TEST(KmeansPositionCalculator, ConfidenceCutKeepsSmallListsTheNewest100AndTheTwoNewest) {
  // The two newest have confidence 0; position 2 and every tenth from position 5 on have 0.5;
  // the others sit on the threshold.
  auto const confidenceAt = [](int i) { return i < 2 ? 0.0 : i == 2 || i % 10 == 5 ? 0.5 : 0.8; };
  struct Case {
    std::size_t count, kept;
    long long oldestKept;
  } const cases[] = {
      {20, 20, 981},   // small lists stay as they are
      {21, 18, 980},   // positions 2, 5 and 15 go
      {150, 89, 901},  // positions 100 on go first, then eleven with 0.5
  };
  for (Case const& c : cases) {
    Infos infos = timeOrdered(static_cast<int>(c.count), confidenceAt);
    KmeansPositionCalculator::filterLowConfidence(infos);
    Times const times = timesOf(infos);
    ASSERT_EQ(times.size(), c.kept) << c.count;
    EXPECT_EQ(Times(times.begin(), times.begin() + 2), (Times{1000, 999}));
    EXPECT_EQ(times.back(), c.oldestKept);
  }
}

TEST(KmeansPositionCalculator, PreprocessingKeepsTheThreeNewestAccurateThenTheMostConfident) {
  float const accs[] = {10, 100.5f, 100.0f, 50, 200, 20, 30};
  Infos inaccurate;
  for (int i = 0; i < 7; ++i) inaccurate.push_back(makeInfo(7 - i, 1, 1, 0.1, accs[i]));
  EXPECT_EQ(timesOf(KmeansPositionCalculator::preprocessOfflineLocation(inaccurate)),
            (Times{7, 5, 4, 2, 1}));
  // 28 records: the three newest (confidence 0), then 25 whose oldest `confident` have 0.8 and
  // the others 0.5, so that the confidence order differs from the time order. The 20 most
  // confident follow, then more only while they reach 0.8.
  struct Case {
    int confident;
    Times tail;  // after 1000, 999, 998
  } const cases[] = {
      {21, {993, 992, 991, 990, 989, 988, 987, 986, 985, 984, 983,
            982, 981, 980, 979, 978, 977, 976, 975, 974, 973}},
      // The two newest at 0.5 fill the 20.
      {18, {990, 989, 988, 987, 986, 985, 984, 983, 982, 981,
            980, 979, 978, 977, 976, 975, 974, 973, 997, 996}},
  };
  for (Case const& c : cases) {
    Infos const infos = timeOrdered(28, [&c](int i) {
      return i < 3 ? 0.0 : i >= 28 - c.confident ? 0.8 : 0.5;
    });
    Times expected = {1000, 999, 998};
    expected.insert(expected.end(), c.tail.begin(), c.tail.end());
    EXPECT_EQ(timesOf(KmeansPositionCalculator::preprocessOfflineLocation(infos)), expected)
        << c.confident;
  }
}

TEST(KmeansPositionCalculator, TagMovesUnlessOneOfTheThreeNewestSurvivesExactly) {
  Infos const scrambled = {makeInfo(2, 2, 2), makeInfo(5, 5, 5), makeInfo(1, 1, 1),
                           makeInfo(3, 3, 3), makeInfo(4, 4, 4)};
  struct Case {
    std::size_t index;  // into scrambled
    float acc;
    bool moving;
  } const cases[] = {
      {1, 10, false},  // the newest
      {3, 10, false},  // the third newest
      {0, 10, true},   // the fourth newest does not count
      {1, 11, true},   // same place, other accuracy
  };
  for (Case const& c : cases) {
    Infos infos = scrambled;
    LastLocation const& location = scrambled[c.index].getLastLocationConst();
    Point point(location.getLon(), location.getLat(), 9);
    point.setAcc(c.acc);
    EXPECT_EQ(KmeansPositionCalculator::checkMove(infos, {point}), c.moving) << c.index;
    EXPECT_EQ(timesOf(infos), (Times{5, 4, 3, 2, 1}));
  }
  Infos none;
  EXPECT_TRUE(KmeansPositionCalculator::checkMove(none, {Point()}));
}

TEST(KmeansPositionCalculator, RefusesEmptyAndOversizedInput) {
  struct Case {
    std::size_t count;
    ErrorCode code;
    Lines log;
  } const cases[] = {
      {0, ErrorCode::INPUT_INFO_EMPTY, {"E: infos is null or empty"}},
      {5001, ErrorCode::INPUT_INFO_OVER_LIMIT, {"E: infos size exceed limit"}},
      {5000, ErrorCode::SUCCESS, {"I: offlineLocationList size: 100"}},  // the first line
  };
  for (Case const& c : cases) {
    Infos infos(c.count, makeInfo(1, 3, 4));
    corvex_test::LogCapture capture;
    TagBestLocation const result = KmeansPositionCalculator().getPosition(infos);
    Lines const lines = tagged(capture);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(c.code == ErrorCode::SUCCESS ? Lines{lines[0]} : lines, c.log);
    EXPECT_EQ(result.getErrorCode(), c.code);
    if (c.code != ErrorCode::SUCCESS) {
      EXPECT_EQ(result.getLon(), 0.0);
      EXPECT_EQ(result.getTimeStamp(), 0);
      EXPECT_EQ(result.getConfidence(), 1.0);
    }
  }
}

// Each way of falling back to the newest phone position: its place, the newest scan time as
// run time stamp, no time stamp and no accuracy.
TEST(KmeansPositionCalculator, FallsBackToTheNewestPhonePosition) {
  auto const expectFallback = [](char const* why, Infos infos, ErrorCode code, double lon,
                                 double lat, long long newest, Lines const& log) {
    SCOPED_TRACE(why);
    corvex_test::LogCapture capture;
    TagBestLocation const result = KmeansPositionCalculator().getPosition(infos);
    EXPECT_EQ(result.getErrorCode(), code);
    EXPECT_EQ(result.getLon(), lon);
    EXPECT_TRUE(result.getLat() == lat || (std::isnan(result.getLat()) && std::isnan(lat)));
    EXPECT_EQ(result.getRunTimeStamp(), newest);
    EXPECT_EQ(result.getTimeStamp(), 0);
    EXPECT_EQ(result.getAcc(), 0.0f);
    EXPECT_EQ(tagged(capture), log);
  };
  expectFallback("no accurate fix", {makeInfo(5, 1, 2, 0.9, 100.5f), makeInfo(6, 3, 4, 0.9, 150)},
                 ErrorCode::FILTERED_ALL_INFOS, 3, 4, 6,
                 {"I: offlineLocationList size: 2", "I: preprocessedOfflineLocation is empty"});
  expectFallback("nothing measurable", {makeInfo(7, 5, NAN)}, ErrorCode::FILTERED_ALL_INFOS, 5, NAN,
                 7,
                 {"I: offlineLocationList size: 1", "I:getFilteredPointList",
                  "I:applyDbScanInner: result size 0", "E:dbscanResult is empty.",
                  "I: Old DBScan after: 0", "I: filteredPointList is empty"});
  expectFallback(
      "three newest outside the group",
      {makeInfo(10, 10, 10), makeInfo(9, 20, 20), makeInfo(8, 30, 30), makeInfo(4, 0, 0),
       makeInfo(3, 0, 0.0001), makeInfo(2, 0, 0.0002), makeInfo(1, 0.0001, 0)},
      ErrorCode::SUCCESS, 10, 10, 10,
      {"I: offlineLocationList size: 7", "I:getFilteredPointList", "I:applyDbScanInner: 1",
       "I:applyDbScanInner: 1", "I:applyDbScanInner: 1", "I:applyDbScanInner: 4",
       "I:applyDbScanInner: result size 4", "I: Old DBScan after: 4", "I: TAG is moving."});
  expectFallback(
      "group too small",
      {makeInfo(10, 0, 0), makeInfo(9, 0, 0.0001), makeInfo(8, 0.0001, 0), makeInfo(4, 10, 10),
       makeInfo(3, 20, 20), makeInfo(2, 30, 30), makeInfo(1, 40, 40)},
      ErrorCode::SUCCESS, 0, 0, 10,
      {"I: offlineLocationList size: 7", "I:getFilteredPointList", "I:applyDbScanInner: 3",
       "I:applyDbScanInner: 1", "I:applyDbScanInner: 1", "I:applyDbScanInner: 1",
       "I:applyDbScanInner: 1", "I:applyDbScanInner: result size 5", "I: Old DBScan after: 3",
       "I: successRatio too low: 0.428571"});
  expectFallback(
      "centre at the origin", {makeInfo(3, 0, 0)}, ErrorCode::ALGORITHM_RUNNING_FAILED, 0, 0, 3,
      {"I: offlineLocationList size: 1", "I:getFilteredPointList", "I:applyDbScanInner: 1",
       "I:applyDbScanInner: result size 1", "I: Old DBScan after: 1", "I:getCorePoint",
       "I:applyKmeansInner", "I:kmeans", "I:points size 1"});
}

TEST(KmeansPositionCalculator, LocatesTheKmeansCentreOfTheLargestGroup) {
  double const step = 1.0 / 4096;  // about 21 to 27 m; keeps every sum exact
  // Newest first: p0, p1, p2 close together; p3 far away and the most accurate.
  BleScanInfoWithConfidence const p0 = makeInfo(40, 116 + step, 40, 0.9, 20);
  BleScanInfoWithConfidence const p1 = makeInfo(30, 116, 40 + step, 0.9, 10);
  BleScanInfoWithConfidence const p2 = makeInfo(20, 116 - step, 40, 0.9, 30);
  BleScanInfoWithConfidence const p3 = makeInfo(10, 117, 41, 0.9, 5);
  Infos infos = {p2, p3, p0, p1};
  Infos const before = infos;

  corvex_test::LogCapture capture;
  TagBestLocation const result = KmeansPositionCalculator().getPosition(infos);

  // Centre and points[0] start at p1, the most accurate of the group; p0 is never summed.
  double lon = 116;
  double lat = 40 + step;
  for (int round = 0; round < 10; ++round) {
    lon = (lon + lon + 116 + (116 - step)) / 4;
    lat = (lat + lat + (40 + step) + 40) / 4;
  }
  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_EQ(result.getLon(), lon);
  EXPECT_EQ(result.getLat(), lat);
  EXPECT_EQ(result.getAcc(), 50.0f);
  EXPECT_EQ(result.getConfidence(), 1.0);
  EXPECT_EQ(result.getTimeStamp(), 40);
  EXPECT_EQ(result.getRunTimeStamp(), 40);
  EXPECT_EQ(result.getFloorId(), -100);
  EXPECT_TRUE(infos == before);
  EXPECT_EQ(
      tagged(capture),
      (Lines{"I: offlineLocationList size: 4", "I:getFilteredPointList", "I:applyDbScanInner: 3",
             "I:applyDbScanInner: 1", "I:applyDbScanInner: result size 2", "I: Old DBScan after: 3",
             "I:getCorePoint", "I:applyKmeansInner", "I:kmeans", "I:points size 3"}));
}

TEST(KmeansPositionCalculator, ThirtyPhonesAroundATagOutweighFiveOutliers) {
  Point const tag(116.3, 39.9);
  double const metresPerLatDegree = 111201.78;  // along a meridian, as the distances use it
  double const metresPerLonDegree = metresPerLatDegree * std::cos(39.9 * 3.1415926 / 180.0);
  auto const around = [&](long long time, double radius, double angle, float acc) {
    return makeInfo(time, tag.getLon() + radius * std::sin(angle) / metresPerLonDegree,
                    tag.getLat() + radius * std::cos(angle) / metresPerLatDegree, 0.9, acc);
  };
  Infos infos;
  for (int i = 0; i < 30; ++i) {  // up to 39 m out, so all phones are within 78 m
    infos.push_back(around(1000 + i * 10, 5 + (i * 7) % 35, i * 2.4, 5 + i % 20));
  }
  for (int k = 0; k < 5; ++k) {  // 2 to 6 km out, kilometres apart
    infos.push_back(around(1005 + k * 50, 2000 + k * 1000, k * 1.25, 15));
  }
  Infos const before = infos;

  TagBestLocation const result = KmeansPositionCalculator().getPosition(infos);

  EXPECT_EQ(result.getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_LT(tag.getDistanceGNSS(Point(result.getLon(), result.getLat())), 50.0);
  EXPECT_EQ(result.getAcc(), 50.0f);
  EXPECT_EQ(result.getTimeStamp(), 1290);
  EXPECT_TRUE(infos == before);
}

}  // namespace
}  // namespace Vantis::Location
