#include "filter/ble_scan_info_filters.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::idsOf;
using corvex_test::LogCapture;
using corvex_test::makeRecord;
using corvex_test::tagged;
using Filters = BleScanInfoFilters;
using Ids = std::vector<std::string>;

constexpr long long kHour = 3600000;
constexpr int kGnss = 1;

BleScanInfoWithConfidence active(double x, long long time) {
  return makeRecord(x, 0, time, 0, 0.98);
}

BleScanInfoWithConfidence gnss(double x, long long time) { return makeRecord(x, 0, time, kGnss); }

BleScanInfoWithConfidence plain(double x, long long time) { return makeRecord(x, 0, time); }

std::vector<long long> timesOf(std::vector<BleScanInfoWithConfidence> const& infos) {
  std::vector<long long> times;
  for (BleScanInfoWithConfidence const& info : infos) {
    times.push_back(info.getBlueToothRecordConst().getTimeStamp());
  }
  return times;
}

TEST(BleScanInfoFilters, ClusterFiguresAndCounts) {
  EXPECT_EQ(Filters::printVec({}), "[]");
  EXPECT_EQ(Filters::printVec({3, -1, 12}), "[3, -1, 12]");
  EXPECT_EQ(Filters::getClusterTimeStamp({}), 0);
  EXPECT_EQ(Filters::getClusterTimeStamp({plain(0, -5)}), 0);
  EXPECT_EQ(Filters::getClusterTimeStamp({plain(0, 7), plain(0, 9), plain(0, 8)}), 9);
  EXPECT_EQ(Filters::findBiggestClusterIndex({}), -1);
  EXPECT_EQ(Filters::findBiggestClusterIndex(
                {{plain(0, 1)}, {plain(0, 1), plain(0, 2)}, {plain(0, 1), plain(0, 2)}}),
            1);
  BleScanInfoWithConfidence farFix = active(0, 1);
  farFix.getLastLocation().setAcc(50.0f);
  BleScanInfoWithConfidence nearFix = active(0, 1);
  nearFix.getLastLocation().setAcc(49.9f);
  LogCapture capture;
  EXPECT_EQ(Filters::getActiveCount({farFix, nearFix, makeRecord(0, 0, 1, 0, 0.979)}), 1);
  EXPECT_EQ(Filters::getGnssCount({gnss(0, 1), plain(0, 1), gnss(0, 2)}), 2);
  EXPECT_EQ(capture.messages(), (Ids{"getActiveCount: 1", "getGnssCount: 2"}));
}

TEST(BleScanInfoFilters, GnssAndActiveRulesNeedExactlyOneCandidate) {
  struct Case {
    char const* name;
    Filters::ClusterList clusters;
    int gnssChoice;
    int activeChoice;
  };
  std::vector<Case> const cases = {
      {"one GNSS among three is no candidate",
       {{gnss(0, 1), plain(0, 1), plain(0, 1)}, {plain(0, 1)}},
       -1,
       -1},
      {"one GNSS among four is",
       {{plain(0, 1)}, {gnss(0, 1), plain(0, 1), plain(0, 1), plain(0, 1)}},
       1,
       -1},
      {"two candidates decide nothing",
       {{gnss(0, 1), gnss(0, 1)}, {gnss(0, 1), gnss(0, 1), active(0, 1), active(0, 1)}},
       -1,
       1},
      {"two active clusters decide nothing",
       {{active(0, 1), active(0, 1)}, {active(0, 1), active(0, 1)}},
       -1,
       -1},
      {"no clusters", {}, -1, -1},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(Filters::getHaveGnssCluster(c.clusters), c.gnssChoice) << c.name;
    EXPECT_EQ(Filters::getActiveCluster(c.clusters), c.activeChoice) << c.name;
  }
  LogCapture capture;
  Filters::getHaveGnssCluster(cases[1].clusters);
  EXPECT_EQ(capture.messages(), (Ids{"getGnssCount: 0", "getGnssCount: 1",
                                     "only one GNSS, needs careful consideration"}));
}

TEST(BleScanInfoFilters, LatestPointsStopAtTheFirstJumpOver400Metres) {
  LogCapture capture;
  EXPECT_EQ(Filters::getLatestPointsCluster({{plain(0, 1), plain(10, 4)}, {plain(300, 2)}}),
            (std::vector<int>{0, 1, 0}));
  EXPECT_EQ(Filters::getLatestPointsCluster(
                {{plain(0, 1), plain(10, 4)}, {plain(300, 2), plain(900, 3)}}),
            (std::vector<int>{0, -1, -1, -1}));
  EXPECT_EQ(capture.messages(), (Ids{"isValid set to false, valid len = 1"}));
}

TEST(BleScanInfoFilters, TimeSwitchCheckWantsOneUnbrokenNewestStretch) {
  struct Case {
    char const* name;
    Filters::ClusterList clusters;
    int choice;
    std::string labels;
  };
  std::vector<Case> const cases = {
      {"newest cluster visited once",
       {{plain(0, 1), plain(0, 2), plain(0, 3)}, {plain(100, 5), plain(100, 4)}},
       1,
       "[1, 1, 0, 0, 0]"},
      {"hopping back and forth",
       {{plain(0, 4), plain(0, 2)}, {plain(100, 3), plain(100, 1)}},
       -1,
       "[0, 1, 0, 1]"},
      {"newest two disagree", {{plain(0, 2), plain(0, 3)}, {plain(100, 4)}}, -1, "[1, 0, 0]"},
      {"lone record", {{plain(0, 2)}}, -1, "[0]"},
      {"no clusters", {}, -1, "[]"},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    EXPECT_EQ(Filters::getClusterByTimeSwitchCheck(c.clusters), c.choice) << c.name;
    EXPECT_EQ(capture.messages(), (Ids{"Latest points belong to: " + c.labels})) << c.name;
  }
}

TEST(BleScanInfoFilters, LatestClusterSavesTheOnlyRecentOneOrErasesTheStale) {
  long long const now = 10 * kHour;
  struct Case {
    char const* name;
    std::vector<long long> newest;  // per cluster
    int choice;
    std::string message;
    size_t clustersLeft;
  };
  std::vector<Case> const cases = {
      {"three hours apart", {now - 3 * kHour, now}, 1, "saved cluster: 1", 2},
      {"just over two hours", {now, now - 7200001}, 0, "saved cluster: 0", 2},
      {"exactly two hours", {now, now - 7200000}, -1, "delete cluster: []", 2},
      {"one stale of three", {now, now - kHour, now - 3 * kHour}, -1, "delete cluster: [2]", 2},
      {"stale erased from the top down",
       {now - 3 * kHour, now, now - 4 * kHour, now - kHour},
       -1,
       "delete cluster: [2, 0]",
       2},
      {"single cluster", {now}, 0, "saved cluster: 0", 1},
      {"no clusters", {}, -1, "delete cluster: []", 0},
  };
  for (Case const& c : cases) {
    Filters::ClusterList clusters;
    for (long long time : c.newest) {
      clusters.push_back({plain(0, 0), plain(0, time)});
    }
    LogCapture capture;
    EXPECT_EQ(Filters::getLatestCluster(clusters), c.choice) << c.name;
    EXPECT_EQ(capture.messages(), (Ids{c.message})) << c.name;
    EXPECT_EQ(clusters.size(), c.clustersLeft) << c.name;
  }
}

TEST(BleScanInfoFilters, StaticChoiceAppliesTheRulesInOrder) {
  long long const now = 10 * kHour;
  struct Case {
    char const* name;
    Filters::ClusterList clusters;
    int choice;
    std::string lastMessage;
  };
  std::vector<Case> const cases = {
      {"recency before GNSS",
       {{plain(0, now - 1), plain(0, now)}, {gnss(1000, 1), gnss(1000, 2)}},
       0,
       "getLatestCluster"},
      {"GNSS before active",
       {{active(0, now - 1), active(0, now)}, {gnss(1000, now - 3), gnss(1000, now - 2)}},
       1,
       "haveGnssCluster"},
      {"active before time switch",
       {{plain(0, now - 1), plain(0, now)}, {active(1000, now - 3), active(1000, now - 2)}},
       1,
       "haveActiveCluster"},
      {"time switch before size",
       {{plain(0, now - 10), plain(0, now - 9), plain(0, now - 8)},
        {plain(1000, now - 1), plain(1000, now)}},
       1,
       "Latest points belong to: [1, 1, -1, -1, -1]"},
      {"biggest at last",
       {{plain(0, 1), plain(0, now - 1), plain(0, 3)}, {plain(1000, 2), plain(1000, now)}},
       0,
       "Latest points belong to: [1, -1, -1, -1, -1]"},
  };
  for (Case c : cases) {
    LogCapture capture;
    EXPECT_EQ(Filters::selectStaticCluster(c.clusters), c.choice) << c.name;
    EXPECT_EQ(capture.messages().back(), c.lastMessage) << c.name;
  }
}

TEST(BleScanInfoFilters, StaticChoiceRunsLaterRulesOnTheShortenedList) {
  long long const now = 10 * kHour;
  Filters::ClusterList clusters = {{gnss(0, now - 1), gnss(0, now)},
                                   {plain(1000, now - kHour)},
                                   {gnss(2000, 1), gnss(2000, now - 3 * kHour)}};
  LogCapture capture;
  EXPECT_EQ(Filters::selectStaticCluster(clusters), 0);
  EXPECT_EQ(clusters.size(), 2u);
  EXPECT_EQ(capture.messages(),
            (Ids{"delete cluster: [2]", "getGnssCount: 2", "getGnssCount: 0", "haveGnssCluster"}));
}

TEST(BleScanInfoFilters, DynamicStageFollowsTheTagOrFallsBackToTheBiggestCluster) {
  struct Case {
    char const* name;
    std::vector<BleScanInfoWithConfidence> infos;
    Ids kept;
    Ids messages;
  };
  std::vector<Case> const cases = {
      {"newest group visited once",
       {tagged(plain(1000, 1), "b1"), tagged(plain(1000, 2), "b2"), tagged(plain(1010, 3), "b3"),
        tagged(plain(0, 5), "a1"), tagged(plain(10, 6), "a2")},
       {"a1", "a2"},
       {"Cluster size: [3, 2]", "isValid set to false, valid len = 2",
        "Latest points belong to: [1, 1, -1, -1, -1]",
        "Filtered by DBScan stage 0, Infos size: 2, cluster size: 2"}},
      {"tag hopped: biggest group",
       {tagged(plain(0, 1), "a1"), tagged(plain(1000, 2), "b1"), tagged(plain(1000, 3), "b2"),
        tagged(plain(1000, 5), "b3"), tagged(plain(0, 6), "a2")},
       {"b1", "b2", "b3"},
       {"Cluster size: [2, 3]", "isValid set to false, valid len = 1",
        "Latest points belong to: [0, -1, -1, -1, -1]",
        "Filtered by DBScan stage 0, Infos size: 3, cluster size: 2"}},
      {"every record isolated: the last as the list stands",
       {tagged(plain(0, 3), "x"), tagged(plain(1000, 1), "y"), tagged(plain(2000, 2), "z")},
       {"z"},
       {"Cluster failed, return latest info in stage 0",
        "Filtered by DBScan stage 0, Infos size: 1, cluster size: 0"}},
  };
  for (Case c : cases) {
    LogCapture capture;
    Filters::dbscanClustering(c.infos, Filters::DYNAMIC_STAGE);
    EXPECT_EQ(idsOf(c.infos), c.kept) << c.name;
    EXPECT_EQ(capture.messages(), c.messages) << c.name;
  }
}

TEST(BleScanInfoFilters, StaticStageUsesA60MetreRadius) {
  std::vector<BleScanInfoWithConfidence> infos = {
      tagged(plain(0, 1), "a"), tagged(plain(59, 2), "b"), tagged(plain(120, 3), "c")};
  LogCapture capture;
  Filters::dbscanClustering(infos, Filters::STATIC_STAGE);
  EXPECT_EQ(idsOf(infos), (Ids{"a", "b"}));
  EXPECT_EQ(capture.messages().back(),
            "Filtered by DBScan stage 1, Infos size: 2, cluster size: 1");
  std::vector<BleScanInfoWithConfidence> empty;
  Filters::dbscanClustering(empty, static_cast<Filters::DbscanStage>(7));
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(capture.messages().back(),
            "Filtered by DBScan stage 7, Infos size: 0, cluster size: 0");
}

// `count` indoor records at one place, ascending times, all of low confidence.
std::vector<BleScanInfoWithConfidence> indoorRecords(int count) {
  std::vector<BleScanInfoWithConfidence> infos;
  for (int i = 0; i < count; ++i) {
    infos.push_back(makeRecord(i * 0.01, 0, 1000 + i, 0, 0.5));
  }
  return infos;
}

TEST(BleScanInfoFilters, PipelineIndoorsCountsSixStagesAndSortsByTime) {
  long long const now = 10 * kHour;
  std::vector<BleScanInfoWithConfidence> const infos = {
      plain(0, now - 7 * kHour),         plain(1, now - 21600001),
      plain(2, now - 21600000),          makeRecord(3, 0, now - 2, 0, 0.7),
      makeRecord(4, 0, now - 1, 0, 0.9), makeRecord(5, 0, now, 0, 0.8)};
  std::vector<int> infoCount;
  LogCapture capture;
  std::vector<BleScanInfoWithConfidence> const kept = Filters::filter(infos, infoCount);
  EXPECT_EQ(infoCount, (std::vector<int>{6, 4, 4, 4, 4, 4}));
  EXPECT_EQ(timesOf(kept), (std::vector<long long>{now - 21600000, now - 2, now - 1, now}));
  EXPECT_EQ(capture.messages(),
            (Ids{"Infos size(Before filter, Filtered by timeStamp, by kindTransID, by "
                 "confidence): [6, 4, 4, 4]",
                 "Filtered by DBScan stage 0, Infos size: 4, cluster size: 1",
                 "Filtered by DBScan stage 1, Infos size: 4, cluster size: 1"}));
}

TEST(BleScanInfoFilters, PipelineConfidenceStageKeepsHalfButAtLeastFifteen) {
  struct Case {
    int records;
    int kept;
  };
  for (Case const& c : {Case{40, 20}, Case{31, 15}, Case{20, 15}, Case{10, 10}}) {
    std::vector<int> infoCount;
    Filters::filter(indoorRecords(c.records), infoCount);
    ASSERT_EQ(infoCount.size(), 6u);
    EXPECT_EQ(infoCount[3], c.kept) << c.records;
  }
}

TEST(BleScanInfoFilters, PipelineOutdoorsTrimsTheSpreadDownToHalfButAtLeastTen) {
  struct Case {
    int records;
    int kept;
  };
  for (Case const& c : {Case{30, 15}, Case{12, 10}}) {
    // GNSS records 7 m apart in a row: one cluster, but far too spread out.
    std::vector<BleScanInfoWithConfidence> infos;
    for (int i = 0; i < c.records; ++i) {
      infos.push_back(makeRecord(7.0 * i, 0, 1000 + i, kGnss, 0.7));
    }
    std::vector<int> infoCount;
    LogCapture capture;
    EXPECT_EQ(Filters::filter(infos, infoCount).size(), static_cast<size_t>(c.kept));
    int const n = c.records;
    EXPECT_EQ(infoCount, (std::vector<int>{n, n, n, n, n, n, n, c.kept}));
    Ids const messages = capture.messages(corvex_test::kInfo);
    EXPECT_EQ(Ids(messages.end() - 3, messages.end()),
              (Ids{"GnssRatio: 1.000000", "Infos size(Filtered by GNSS std): " + std::to_string(n),
                   "Infos size(Filtered by distance std): " + std::to_string(c.kept)}));
  }
}

TEST(BleScanInfoFilters, PipelineSurvivesExtremeTimesAndRefusesEmptyInput) {
  std::vector<int> infoCount;
  LogCapture capture;
  EXPECT_TRUE(Filters::filter({}, infoCount).empty());
  EXPECT_TRUE(infoCount.empty());
  EXPECT_EQ(capture.messages(), (Ids{"infos is null or empty"}));
  // The age difference wraps like the hardware: LLONG_MAX - LLONG_MIN is -1.
  Filters::filter({plain(0, LLONG_MIN), plain(1, LLONG_MAX)}, infoCount);
  EXPECT_EQ(infoCount[1], 2);
}

}  // namespace
}  // namespace Vantis::Location
