#include "calculator/kmeans_position_calculator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;
using corvex_test::LogLine;
using Infos = std::vector<BleScanInfoWithConfidence>;

constexpr double kMetresPerDegree = 111201.78;  // along a meridian, as the distances use it

BleScanInfoWithConfidence makeInfo(long long time, double lon, double lat, double confidence = 0.9,
                                   float acc = 10) {
  return BleScanInfoWithConfidence(BlueToothRecord("tag", "AA", time, -60),
                                   LastLocation(lon, lat, acc, 1, 1), 0, 0, confidence);
}

std::vector<long long> timesOf(Infos const& infos) {
  std::vector<long long> times;
  for (BleScanInfoWithConfidence const& info : infos) {
    times.push_back(info.getBlueToothRecordConst().getTimeStamp());
  }
  return times;
}

std::vector<long long> descending(long long from, long long to) {
  std::vector<long long> values;
  for (long long value = from; value >= to; --value) {
    values.push_back(value);
  }
  return values;
}

std::vector<long long> concat(std::vector<long long> a, std::vector<long long> const& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Newest first: position i has time 1000 - i.
Infos timeOrdered(int count, std::function<double(int)> const& confidenceAt) {
  Infos infos;
  for (int i = 0; i < count; ++i) {
    infos.push_back(makeInfo(1000 - i, 1, 1, confidenceAt(i)));
  }
  return infos;
}

TEST(KmeansPositionCalculator, ConfidenceCutKeepsSmallListsTheNewest100AndTheTwoNewest) {
  // The two newest have confidence 0; position 2 and every tenth from position 5 on have 0.5;
  // the others sit on the threshold.
  auto const confidenceAt = [](int i) {
    if (i < 2) {
      return 0.0;
    }
    return i == 2 || i % 10 == 5 ? 0.5 : 0.8;
  };
  struct Case {
    int count;
    std::size_t kept;
    long long oldestKept;
  } const cases[] = {
      {20, 20, 981},   // small lists stay as they are
      {21, 18, 980},   // positions 2, 5 and 15 go
      {150, 89, 901},  // positions 100 on go first, then eleven with 0.5
  };
  for (Case const& c : cases) {
    Infos infos = timeOrdered(c.count, confidenceAt);
    KmeansPositionCalculator::filterLowConfidence(infos);
    ASSERT_EQ(infos.size(), c.kept) << c.count;
    EXPECT_EQ(timesOf(infos)[0], 1000);
    EXPECT_EQ(timesOf(infos)[1], 999);
    EXPECT_EQ(timesOf(infos).back(), c.oldestKept);
  }
}

TEST(KmeansPositionCalculator, PreprocessingDropsInaccurateFixesAndKeepsTheThreeNewestFirst) {
  float const accs[] = {10, 100.5f, 100.0f, 50, 200, 20, 30};
  Infos infos;
  for (int i = 0; i < 7; ++i) {
    infos.push_back(makeInfo(7 - i, 1, 1, 0.1, accs[i]));
  }
  EXPECT_EQ(timesOf(KmeansPositionCalculator::preprocessOfflineLocation(infos)),
            (std::vector<long long>{7, 5, 4, 2, 1}));
}

TEST(KmeansPositionCalculator, PreprocessingTakesTwentyByConfidenceThenOnlyConfidentOnes) {
  // 28 records: the three newest (confidence 0), then 25 whose oldest `confident` have 0.8 and
  // the others 0.5 (just below the threshold), so that the confidence order differs from the time
  // order.
  struct Case {
    int confident;
    std::vector<long long> tail;  // after 1000, 999, 998
  } const cases[] = {
      {21, descending(993, 973)},  // the 20 best, then one more at 0.8, then a stop at 0.5
      {18, concat(descending(990, 973), {997, 996})},  // the two newest at 0.5 fill the 20
  };
  for (Case const& c : cases) {
    Infos const infos = timeOrdered(28, [&c](int i) {
      if (i < 3) {
        return 0.0;
      }
      return i >= 28 - c.confident ? 0.8 : 0.5;
    });
    EXPECT_EQ(timesOf(KmeansPositionCalculator::preprocessOfflineLocation(infos)),
              concat({1000, 999, 998}, c.tail))
        << c.confident;
  }
}

TEST(KmeansPositionCalculator, TagMovesUnlessOneOfTheThreeNewestSurvivesExactly) {
  auto const pointOf = [](BleScanInfoWithConfidence const& info, float acc) {
    Point point(info.getLastLocationConst().getLon(), info.getLastLocationConst().getLat(), 9);
    point.setAcc(acc);
    return point;
  };
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
    EXPECT_EQ(KmeansPositionCalculator::checkMove(infos, {pointOf(scrambled[c.index], c.acc)}),
              c.moving)
        << c.index;
    EXPECT_EQ(timesOf(infos), (std::vector<long long>{5, 4, 3, 2, 1}));
  }
  Infos none;
  EXPECT_TRUE(KmeansPositionCalculator::checkMove(none, {Point()}));
}

TEST(KmeansPositionCalculator, RefusesEmptyAndOversizedInput) {
  KmeansPositionCalculator calculator;
  struct Case {
    std::size_t count;
    ErrorCode code;
    std::vector<LogLine> log;
  } const cases[] = {
      {0, ErrorCode::INPUT_INFO_EMPTY, {{6, " infos is null or empty"}}},
      {5001, ErrorCode::INPUT_INFO_OVER_LIMIT, {{6, " infos size exceed limit"}}},
  };
  for (Case const& c : cases) {
    Infos infos(c.count, makeInfo(1, 3, 4));
    LogCapture capture;
    TagBestLocation const result = calculator.getPosition(infos);
    EXPECT_EQ(result.getErrorCode(), c.code);
    EXPECT_EQ(result.getLon(), 0.0);
    EXPECT_EQ(result.getTimeStamp(), 0);
    EXPECT_EQ(result.getConfidence(), 1.0);
    EXPECT_EQ(capture.lines(), c.log);
  }
  Infos limit(5000, makeInfo(1, 3, 4));
  LogCapture capture;
  EXPECT_EQ(calculator.getPosition(limit).getErrorCode(), ErrorCode::SUCCESS);
  EXPECT_EQ(capture.messages()[0], " offlineLocationList size: 100");
}

// Each way of falling back to the newest phone position.
TEST(KmeansPositionCalculator, FallsBackToTheNewestPhonePosition) {
  struct Case {
    char const* name;
    Infos infos;
    ErrorCode code;
    double lon;
    double lat;
    long long newest;
    std::vector<LogLine> log;
  } const cases[] = {
      {"no accurate fix",
       {makeInfo(5, 1, 2, 0.9, 100.5f), makeInfo(6, 3, 4, 0.9, 150)},
       ErrorCode::FILTERED_ALL_INFOS,
       3,
       4,
       6,
       {{4, " offlineLocationList size: 2"}, {4, " preprocessedOfflineLocation is empty"}}},
      {"nothing measurable",
       {makeInfo(7, 5, NAN)},
       ErrorCode::FILTERED_ALL_INFOS,
       5,
       NAN,
       7,
       {{4, " offlineLocationList size: 1"},
        {4, "getFilteredPointList"},
        {4, "applyDbScanInner: result size 0"},
        {6, "dbscanResult is empty."},
        {4, " Old DBScan after: 0"},
        {4, " filteredPointList is empty"}}},
      {"three newest outside the group",
       {makeInfo(10, 10, 10), makeInfo(9, 20, 20), makeInfo(8, 30, 30), makeInfo(4, 0, 0),
        makeInfo(3, 0, 0.0001), makeInfo(2, 0, 0.0002), makeInfo(1, 0.0001, 0)},
       ErrorCode::SUCCESS,
       10,
       10,
       10,
       {{4, " offlineLocationList size: 7"},
        {4, "getFilteredPointList"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: 4"},
        {4, "applyDbScanInner: result size 4"},
        {4, " Old DBScan after: 4"},
        {4, " TAG is moving."}}},
      {"group too small",
       {makeInfo(10, 0, 0), makeInfo(9, 0, 0.0001), makeInfo(8, 0.0001, 0), makeInfo(4, 10, 10),
        makeInfo(3, 20, 20), makeInfo(2, 30, 30), makeInfo(1, 40, 40)},
       ErrorCode::SUCCESS,
       0,
       0,
       10,
       {{4, " offlineLocationList size: 7"},
        {4, "getFilteredPointList"},
        {4, "applyDbScanInner: 3"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: result size 5"},
        {4, " Old DBScan after: 3"},
        {4, " successRatio too low: 0.428571"}}},
      {"centre at the origin",
       {makeInfo(3, 0, 0)},
       ErrorCode::ALGORITHM_RUNNING_FAILED,
       0,
       0,
       3,
       {{4, " offlineLocationList size: 1"},
        {4, "getFilteredPointList"},
        {4, "applyDbScanInner: 1"},
        {4, "applyDbScanInner: result size 1"},
        {4, " Old DBScan after: 1"},
        {4, "getCorePoint"},
        {4, "applyKmeansInner"},
        {4, "kmeans"},
        {4, "points size 1"}}},
  };
  KmeansPositionCalculator calculator;
  for (Case const& c : cases) {
    Infos infos = c.infos;
    LogCapture capture;
    TagBestLocation const result = calculator.getPosition(infos);
    EXPECT_EQ(result.getErrorCode(), c.code) << c.name;
    EXPECT_EQ(result.getLon(), c.lon) << c.name;
    if (std::isnan(c.lat)) {
      EXPECT_TRUE(std::isnan(result.getLat())) << c.name;
    } else {
      EXPECT_EQ(result.getLat(), c.lat) << c.name;
    }
    EXPECT_EQ(result.getRunTimeStamp(), c.newest) << c.name;
    EXPECT_EQ(result.getTimeStamp(), 0) << c.name;
    EXPECT_EQ(result.getAcc(), 0.0f) << c.name;
    EXPECT_EQ(capture.lines(), c.log) << c.name;
  }
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

  LogCapture capture;
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
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{4, " offlineLocationList size: 4"},
                                                   {4, "getFilteredPointList"},
                                                   {4, "applyDbScanInner: 3"},
                                                   {4, "applyDbScanInner: 1"},
                                                   {4, "applyDbScanInner: result size 2"},
                                                   {4, " Old DBScan after: 3"},
                                                   {4, "getCorePoint"},
                                                   {4, "applyKmeansInner"},
                                                   {4, "kmeans"},
                                                   {4, "points size 3"}}));
}

TEST(KmeansPositionCalculator, ThirtyPhonesAroundATagOutweighFiveOutliers) {
  Point const tag(116.3, 39.9);
  double const metresPerLonDegree = kMetresPerDegree * std::cos(39.9 * 3.1415926 / 180.0);
  Infos infos;
  for (int i = 0; i < 30; ++i) {
    double const radius = 5 + (i * 7) % 35;  // up to 39 m, so all phones are within 78 m
    double const angle = i * 2.4;
    infos.push_back(makeInfo(1000 + i * 10,
                             tag.getLon() + radius * std::sin(angle) / metresPerLonDegree,
                             tag.getLat() + radius * std::cos(angle) / kMetresPerDegree, 0.9,
                             static_cast<float>(5 + i % 20)));
  }
  for (int k = 0; k < 5; ++k) {
    double const angle = k * 1.25;  // 2 to 6 km out, kilometres apart
    double const radius = 2000 + k * 1000;
    infos.push_back(makeInfo(1005 + k * 50,
                             tag.getLon() + radius * std::sin(angle) / metresPerLonDegree,
                             tag.getLat() + radius * std::cos(angle) / kMetresPerDegree, 0.9, 15));
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
