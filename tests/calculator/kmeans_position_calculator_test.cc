#include "calculator/kmeans_position_calculator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/log_capture.h"

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

// Each refusal, and each way of falling back to the newest phone position (its place and scan
// time, no time stamp, no accuracy), told by the code and the last line logged.
TEST(KmeansPositionCalculator, RefusesOrFallsBackToTheNewestPhonePosition) {
  struct Case {
    char const* why;
    Infos infos;
    ErrorCode code;
    double lon;
    long long runTime;
    char const* lastLine;
  } const cases[] = {
      {"empty", {}, ErrorCode::INPUT_INFO_EMPTY, 0, 0, "E: infos is null or empty"},
      {"over the limit", Infos(5001, makeInfo(1, 3, 4)), ErrorCode::INPUT_INFO_OVER_LIMIT, 0, 0,
       "E: infos size exceed limit"},
      {"no accurate fix",
       {makeInfo(5, 1, 2, 0.9, 100.5f), makeInfo(6, 3, 4, 0.9, 150)},
       ErrorCode::FILTERED_ALL_INFOS,
       3,
       6,
       "I: preprocessedOfflineLocation is empty"},
      {"nothing measurable",
       {makeInfo(7, 5, NAN)},
       ErrorCode::FILTERED_ALL_INFOS,
       5,
       7,
       "I: filteredPointList is empty"},
      {"three newest outside the group",
       {makeInfo(10, 10, 10), makeInfo(9, 20, 20), makeInfo(8, 30, 30), makeInfo(4, 0, 0),
        makeInfo(3, 0, 0.0001), makeInfo(2, 0, 0.0002), makeInfo(1, 0.0001, 0)},
       ErrorCode::SUCCESS,
       10,
       10,
       "I: TAG is moving."},
      {"group too small",
       {makeInfo(10, 0, 0), makeInfo(9, 0, 0.0001), makeInfo(8, 0.0001, 0), makeInfo(4, 10, 10),
        makeInfo(3, 20, 20), makeInfo(2, 30, 30), makeInfo(1, 40, 40)},
       ErrorCode::SUCCESS,
       0,
       10,
       "I: successRatio too low: 0.428571"},
      {"centre at the origin",
       {makeInfo(3, 0, 0)},
       ErrorCode::ALGORITHM_RUNNING_FAILED,
       0,
       3,
       "I:points size 1"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.why);
    Infos infos = c.infos;
    corvex_test::LogCapture capture;
    TagBestLocation const result = KmeansPositionCalculator().getPosition(infos);
    EXPECT_EQ(result.getErrorCode(), c.code);
    EXPECT_EQ(result.getLon(), c.lon);
    EXPECT_EQ(result.getRunTimeStamp(), c.runTime);
    EXPECT_EQ(result.getTimeStamp(), 0);
    EXPECT_EQ(result.getAcc(), 0.0f);
    EXPECT_EQ(result.getConfidence(), 1.0);
    EXPECT_EQ(tagged(capture).back(), c.lastLine);
  }
  Infos fiveThousand(5000, makeInfo(1, 3, 4));
  EXPECT_EQ(KmeansPositionCalculator().getPosition(fiveThousand).getErrorCode(),
            ErrorCode::SUCCESS);
}

}  // namespace
}  // namespace Vantis::Location
