#include "filter/ble_scan_info_filters.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::Ids;
using corvex_test::idsOf;
using corvex_test::LogCapture;
using corvex_test::makeRecord;
using corvex_test::Records;
using corvex_test::tagged;
using Filters = BleScanInfoFilters;

constexpr long long kHour = 3600000;
constexpr long long kNow = 10 * kHour;

BleScanInfoWithConfidence plain(double x, long long time, char const* id = "") {
  return makeRecord(x, 0, time, 0, 0.5, id);
}
BleScanInfoWithConfidence gnss(double x, long long time) { return makeRecord(x, 0, time, 1); }
BleScanInfoWithConfidence active(double x, long long time) {
  return makeRecord(x, 0, time, 0, 0.98);  // accuracy 10 m
}

TEST(BleScanInfoFilters, ActiveAndGnssCountsHaveTheirBounds) {
  BleScanInfoWithConfidence inaccurate = active(0, 1);
  inaccurate.getLastLocation().setAcc(50.0f);
  Records const three = {gnss(0, 1), plain(0, 1), plain(0, 1)};
  Records four = three;
  four.push_back(plain(0, 1));
  LogCapture quiet;
  EXPECT_EQ(Filters::getActiveCount({inaccurate, active(0, 1), makeRecord(0, 0, 1, 0, 0.979)}), 1);
  // One GNSS record makes a candidate only in a cluster of four or more.
  EXPECT_EQ(Filters::getHaveGnssCluster({three, {plain(0, 1)}}), -1);
  EXPECT_EQ(Filters::getHaveGnssCluster({{plain(0, 1)}, four}), 1);
  EXPECT_EQ(Filters::getClusterByTimeSwitchCheck({{plain(0, 2)}}), -1);  // a lone record
}

TEST(BleScanInfoFilters, LatestClusterSavesTheOnlyRecentOneOrErasesTheStale) {
  long long const t = kNow;
  // The newest time of each cluster before and after, the choice and the line logged.
  auto const expectLatest = [](std::vector<long long> const& newest,
                               std::vector<long long> const& left, int choice, std::string line) {
    SCOPED_TRACE(line);
    Filters::ClusterList clusters;
    for (long long time : newest) clusters.push_back({plain(0, 0), plain(0, time)});
    LogCapture capture;
    EXPECT_EQ(Filters::getLatestCluster(clusters), choice);
    EXPECT_EQ(tagged(capture), Ids{line});
    std::vector<long long> times;
    for (Records const& cluster : clusters) times.push_back(Filters::getClusterTimeStamp(cluster));
    EXPECT_EQ(times, left);
  };
  expectLatest({t, t - 7200001}, {t, t - 7200001}, 0, "I:saved cluster: 0");
  expectLatest({t, t - 7200000}, {t, t - 7200000}, -1, "I:delete cluster: []");
  expectLatest({t - 3 * kHour, t, 0, t - kHour}, {t, t - kHour}, -1, "I:delete cluster: [2, 0]");
  expectLatest({}, {}, -1, "I:delete cluster: []");
}

TEST(BleScanInfoFilters, StaticChoiceAppliesTheRulesInOrder) {
  long long const t = kNow;
  auto const expectChoice = [](Filters::ClusterList clusters, int choice, std::string lastLine) {
    SCOPED_TRACE(lastLine);
    LogCapture capture;
    EXPECT_EQ(Filters::selectStaticCluster(clusters), choice);
    EXPECT_EQ(tagged(capture).back(), "I:" + lastLine);
  };
  expectChoice({{plain(0, t - 1), plain(0, t)}, {gnss(1e3, 1), gnss(1e3, 2)}}, 0,
               "getLatestCluster");
  expectChoice({{active(0, t - 1), active(0, t)}, {gnss(1e3, t - 3), gnss(1e3, t - 2)}}, 1,
               "haveGnssCluster");
  expectChoice({{plain(0, t - 1), plain(0, t)}, {active(1e3, t - 3), active(1e3, t - 2)}}, 1,
               "haveActiveCluster");
  // The time switch comes before size.
  expectChoice(
      {{plain(0, t - 9), plain(0, t - 8), plain(0, t - 7)}, {plain(1e3, t - 1), plain(1e3, t)}}, 1,
      "Latest points belong to: [1, 1, -1, -1, -1]");
  // The newest two apart: the biggest.
  expectChoice({{plain(0, 1), plain(0, t - 1), plain(0, 3)}, {plain(1e3, 2), plain(1e3, t)}}, 0,
               "Latest points belong to: [1, -1, -1, -1, -1]");
  // Cluster 0 seen in two stretches.
  expectChoice({{plain(0, t), plain(0, t - 2), plain(0, 1)}, {plain(99, t - 1), plain(99, t - 3)}},
               0, "Latest points belong to: [0, 1, 0, 1, 0]");
  // Later rules run on the list as the recency rule left it.
  Filters::ClusterList clusters = {{gnss(0, t - 1), gnss(0, t)},
                                   {plain(1e3, t - kHour)},
                                   {gnss(2e3, 1), gnss(2e3, t - 3 * kHour)}};
  LogCapture capture;
  EXPECT_EQ(Filters::selectStaticCluster(clusters), 0);
  EXPECT_EQ(clusters.size(), 2u);
  EXPECT_EQ(tagged(capture), (Ids{"I:delete cluster: [2]", "I:getGnssCount: 2", "I:getGnssCount: 0",
                                  "I:haveGnssCluster"}));
}

TEST(BleScanInfoFilters, PipelineIndoorsCutsAtSixHoursCountsSixStagesAndSortsByTime) {
  Records const infos = {
      plain(0, kNow - 7 * kHour, "7h"),        plain(1, kNow - 21600001, "6h+1"),
      plain(2, kNow - 21600000, "6h"),         makeRecord(3, 0, kNow - 2, 0, 0.7, "c"),
      makeRecord(4, 0, kNow - 1, 0, 0.9, "b"), makeRecord(5, 0, kNow, 0, 0.8, "a")};
  std::vector<int> infoCount;
  LogCapture quiet;
  EXPECT_EQ(idsOf(Filters::filter(infos, infoCount)), (Ids{"6h", "c", "b", "a"}));
  EXPECT_EQ(infoCount, (std::vector<int>{6, 4, 4, 4, 4, 4}));
}

TEST(BleScanInfoFilters, PipelineRefusesEmptyInputAndSurvivesExtremeTimes) {
  std::vector<int> infoCount;
  LogCapture capture;
  EXPECT_TRUE(Filters::filter({}, infoCount).empty());
  EXPECT_TRUE(infoCount.empty());
  EXPECT_EQ(tagged(capture), (Ids{"E:infos is null or empty"}));
  Filters::filter({plain(0, LLONG_MIN), plain(1, LLONG_MAX)}, infoCount);
  EXPECT_EQ(infoCount[1], 2);  // the age wraps like the hardware: LLONG_MAX - LLONG_MIN is -1
}

}  // namespace
}  // namespace Vantis::Location
