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
using corvex_test::LogCapture;
using corvex_test::makeRecord;
using corvex_test::Records;
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

TEST(BleScanInfoFilters, CountsAndGuards) {
  BleScanInfoWithConfidence inaccurate = active(0, 1);
  inaccurate.getLastLocation().setAcc(50.0f);
  Records const three = {gnss(0, 1), plain(0, 1), plain(0, 1)};
  Records four = three;
  four.push_back(plain(0, 1));
  LogCapture capture;
  EXPECT_EQ(Filters::getActiveCount({inaccurate, active(0, 1), makeRecord(0, 0, 1, 0, 0.979)}), 1);
  // One GNSS record makes a candidate only in a cluster of four or more.
  EXPECT_EQ(Filters::getHaveGnssCluster({three, {plain(0, 1)}}), -1);
  EXPECT_EQ(Filters::getHaveGnssCluster({{plain(0, 1)}, four}), 1);
  EXPECT_EQ(Filters::getClusterByTimeSwitchCheck({{plain(0, 2)}}), -1);  // a lone record
  EXPECT_EQ(capture.messages(),
            (Ids{"getActiveCount: 1", "getGnssCount: 1", "getGnssCount: 0", "getGnssCount: 0",
                 "getGnssCount: 1", "only one GNSS, needs careful consideration",
                 "Latest points belong to: [0]"}));
}

TEST(BleScanInfoFilters, LatestClusterSavesTheOnlyRecentOneOrErasesTheStale) {
  struct Case {
    std::vector<long long> newest;  // per cluster
    int choice;
    std::string message;
    std::vector<long long> left;  // newest times of the clusters left
  } const cases[] = {
      {{kNow, kNow - 7200001}, 0, "saved cluster: 0", {kNow, kNow - 7200001}},
      {{kNow, kNow - 7200000}, -1, "delete cluster: []", {kNow, kNow - 7200000}},
      {{kNow - 3 * kHour, kNow, 0, kNow - kHour},
       -1,
       "delete cluster: [2, 0]",
       {kNow, kNow - kHour}},
      {{}, -1, "delete cluster: []", {}},
  };
  for (Case const& c : cases) {
    Filters::ClusterList clusters;
    for (long long time : c.newest) clusters.push_back({plain(0, 0), plain(0, time)});
    LogCapture capture;
    EXPECT_EQ(Filters::getLatestCluster(clusters), c.choice) << c.message;
    EXPECT_EQ(capture.messages(), (Ids{c.message}));
    std::vector<long long> left;
    for (Records const& cluster : clusters) left.push_back(Filters::getClusterTimeStamp(cluster));
    EXPECT_EQ(left, c.left) << c.message;
  }
}

TEST(BleScanInfoFilters, StaticChoiceAppliesTheRulesInOrder) {
  long long const t = kNow;
  struct Case {
    Filters::ClusterList clusters;
    int choice;
    std::string lastMessage;
  } cases[] = {
      {{{plain(0, t - 1), plain(0, t)}, {gnss(1e3, 1), gnss(1e3, 2)}}, 0, "getLatestCluster"},
      {{{active(0, t - 1), active(0, t)}, {gnss(1e3, t - 3), gnss(1e3, t - 2)}},
       1,
       "haveGnssCluster"},
      {{{plain(0, t - 1), plain(0, t)}, {active(1e3, t - 3), active(1e3, t - 2)}},
       1,
       "haveActiveCluster"},
      {{{plain(0, t - 9), plain(0, t - 8), plain(0, t - 7)}, {plain(1e3, t - 1), plain(1e3, t)}},
       1,
       "Latest points belong to: [1, 1, -1, -1, -1]"},  // time switch before size
      {{{plain(0, 1), plain(0, t - 1), plain(0, 3)}, {plain(1e3, 2), plain(1e3, t)}},
       0,
       "Latest points belong to: [1, -1, -1, -1, -1]"},  // newest two apart: the biggest
      {{{plain(0, t), plain(0, t - 2), plain(0, 1)}, {plain(99, t - 1), plain(99, t - 3)}},
       0,
       "Latest points belong to: [0, 1, 0, 1, 0]"},  // cluster 0 seen in two stretches
  };
  for (Case& c : cases) {
    LogCapture capture;
    EXPECT_EQ(Filters::selectStaticCluster(c.clusters), c.choice) << c.lastMessage;
    EXPECT_EQ(capture.messages().back(), c.lastMessage);
  }
  // Later rules run on the list as the recency rule left it.
  Filters::ClusterList clusters = {{gnss(0, t - 1), gnss(0, t)},
                                   {plain(1e3, t - kHour)},
                                   {gnss(2e3, 1), gnss(2e3, t - 3 * kHour)}};
  LogCapture capture;
  EXPECT_EQ(Filters::selectStaticCluster(clusters), 0);
  EXPECT_EQ(clusters.size(), 2u);
  EXPECT_EQ(capture.messages(),
            (Ids{"delete cluster: [2]", "getGnssCount: 2", "getGnssCount: 0", "haveGnssCluster"}));
}

TEST(BleScanInfoFilters, ClusteringStagesKeepOneCluster) {
  struct Case {
    int stage;
    Records infos;
    Ids kept;
    Ids messages;
  } cases[] = {
      {0,  // the newest group, though smaller
       {plain(1e3, 1, "b"), plain(1e3, 2, "b"), plain(1e3, 3, "b"), plain(0, 5, "a"),
        plain(9, 6, "a")},
       {"a", "a"},
       {"Cluster size: [3, 2]", "isValid set to false, valid len = 2",
        "Latest points belong to: [1, 1, -1, -1, -1]",
        "Filtered by DBScan stage 0, Infos size: 2, cluster size: 2"}},
      {0,  // the tag hopped: the biggest group
       {plain(0, 1, "a"), plain(1e3, 2, "b"), plain(1e3, 3, "b"), plain(1e3, 5, "b"),
        plain(0, 6, "a")},
       {"b", "b", "b"},
       {"Cluster size: [2, 3]", "isValid set to false, valid len = 1",
        "Latest points belong to: [0, -1, -1, -1, -1]",
        "Filtered by DBScan stage 0, Infos size: 3, cluster size: 2"}},
      {0,  // all isolated: the last record as the list stands
       {plain(0, 3, "x"), plain(1e3, 1, "y"), plain(2e3, 2, "z")},
       {"z"},
       {"Cluster failed, return latest info in stage 0",
        "Filtered by DBScan stage 0, Infos size: 1, cluster size: 0"}},
      {1,
       {plain(0, 1, "a"), plain(59, 2, "b"), plain(120, 3, "c")},
       {"a", "b"},
       {"Filtered by DBScan stage 1, Infos size: 2, cluster size: 1"}},
      {7,
       {},
       {},
       {"Cluster failed, return latest info in stage 7",
        "Filtered by DBScan stage 7, Infos size: 0, cluster size: 0"}},
  };
  for (Case& c : cases) {
    LogCapture capture;
    Filters::dbscanClustering(c.infos, static_cast<Filters::DbscanStage>(c.stage));
    EXPECT_EQ(corvex_test::idsOf(c.infos), c.kept);
    EXPECT_EQ(capture.messages(corvex_test::kInfo), c.messages);
  }
}

TEST(BleScanInfoFilters, PipelineIndoorsCutsAtSixHoursCountsSixStagesAndSortsByTime) {
  Records const infos = {
      plain(0, kNow - 7 * kHour, "7h"),        plain(1, kNow - 21600001, "6h+1"),
      plain(2, kNow - 21600000, "6h"),         makeRecord(3, 0, kNow - 2, 0, 0.7, "c"),
      makeRecord(4, 0, kNow - 1, 0, 0.9, "b"), makeRecord(5, 0, kNow, 0, 0.8, "a")};
  std::vector<int> infoCount;
  LogCapture capture;
  EXPECT_EQ(corvex_test::idsOf(Filters::filter(infos, infoCount)), (Ids{"6h", "c", "b", "a"}));
  EXPECT_EQ(infoCount, (std::vector<int>{6, 4, 4, 4, 4, 4}));
  EXPECT_EQ(capture.messages(),
            (Ids{"Infos size(Before filter, Filtered by timeStamp, by kindTransID, by confidence): "
                 "[6, 4, 4, 4]",
                 "Filtered by DBScan stage 0, Infos size: 4, cluster size: 1",
                 "Filtered by DBScan stage 1, Infos size: 4, cluster size: 1"}));
}

TEST(BleScanInfoFilters, PipelineKeepsHalfButAtLeastFifteenByConfidenceAndTenByDistance) {
  struct Case {
    int records;
    bool outdoor;
    std::vector<int> lastCounts;
  } const cases[] = {{40, false, {20, 20, 20}},
                     {20, false, {15, 15, 15}},
                     {10, false, {10, 10, 10}},
                     {30, true, {30, 30, 15}},
                     {12, true, {12, 12, 10}}};
  for (Case const& c : cases) {
    // A row 7 m apart: one cluster, but far too spread out. Indoors the confidence is low.
    Records infos;
    for (int i = 0; i < c.records; ++i) {
      infos.push_back(makeRecord(7.0 * i, 0, 1000 + i, c.outdoor ? 1 : 0, c.outdoor ? 0.7 : 0.5));
    }
    std::vector<int> infoCount;
    LogCapture capture;
    Filters::filter(infos, infoCount);
    ASSERT_EQ(infoCount.size(), c.outdoor ? 8u : 6u);
    EXPECT_EQ(std::vector<int>(infoCount.end() - 3, infoCount.end()), c.lastCounts) << c.records;
    if (c.outdoor) {
      Ids const messages = capture.messages(corvex_test::kInfo);
      EXPECT_EQ(Ids(messages.end() - 3, messages.end()),
                (Ids{"GnssRatio: 1.000000",
                     "Infos size(Filtered by GNSS std): " + std::to_string(c.records),
                     "Infos size(Filtered by distance std): " + std::to_string(c.lastCounts[2])}));
    }
  }
}

TEST(BleScanInfoFilters, PipelineRefusesEmptyInputAndSurvivesExtremeTimes) {
  std::vector<int> infoCount;
  LogCapture capture;
  EXPECT_TRUE(Filters::filter({}, infoCount).empty());
  EXPECT_TRUE(infoCount.empty());
  EXPECT_EQ(capture.messages(), (Ids{"infos is null or empty"}));
  Filters::filter({plain(0, LLONG_MIN), plain(1, LLONG_MAX)}, infoCount);
  EXPECT_EQ(infoCount[1], 2);  // the age wraps like the hardware: LLONG_MAX - LLONG_MIN is -1
}

}  // namespace
}  // namespace Vantis::Location
