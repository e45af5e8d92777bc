#include "filter/db_scan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/literal_db_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::idsOf;
using corvex_test::LogCapture;
using corvex_test::makeRecord;
using corvex_test::tagged;
using Ids = std::vector<std::vector<std::string>>;

// A record at x (metres) on the east axis, told apart by `id`; `time` separates records that
// would otherwise be equal.
BleScanInfoWithConfidence at(double x, std::string const& id, long long time) {
  return tagged(makeRecord(x, 0, time), id);
}

TEST(DbScan, TrickyCases) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  BleScanInfoWithConfidence notSelf = at(0, "n", 1);
  notSelf.setConfidence(nan);  // not == to itself, so it is its own neighbour
  struct Case {
    char const* name;
    double eps;
    int minPts;
    std::vector<BleScanInfoWithConfidence> infos;
    Ids clusters;
  };
  std::vector<Case> const cases = {
      {"two close records", 10, 1, {at(0, "a", 1), at(5, "b", 2)}, {{"a", "b"}}},
      {"noise never becomes a border record",
       10,
       2,
       {at(0, "a", 1), at(8, "b", 2), at(16, "c", 3)},
       {{"b", "c"}}},
      {"equal records are not neighbours", 10, 1, {at(0, "a", 1), at(0, "b", 1)}, {}},
      {"equal records join a cluster once",
       10,
       1,
       {at(0, "a", 1), at(5, "b", 2), at(5, "c", 2)},
       {{"a", "b"}}},
      {"founder first, then seeds as they were merged",
       10.5,
       1,
       {at(20, "a", 1), at(0, "b", 2), at(10, "c", 3), at(30, "d", 4)},
       {{"a", "c", "d", "b"}}},
      {"minPts zero makes every record core",
       10,
       0,
       {at(0, "a", 1), at(50, "b", 2), at(55, "c", 3)},
       {{"a"}, {"b", "c"}}},
      {"clusters in founding order",
       1,
       1,
       {at(50, "a", 1), at(0, "b", 2), at(50.5, "c", 3), at(1, "d", 4), at(9, "e", 5)},
       {{"a", "c"}, {"b", "d"}}},
      {"a record unequal to itself clusters alone", 10, 1, {notSelf}, {{"n"}}},
      {"negative eps becomes zero",
       -1,
       1,
       {at(0, "a", 1), at(0, "b", 2), at(1e-9, "c", 3)},
       {{"a", "b"}}},
      {"negative minPts makes everything noise", 10, -3, {at(0, "a", 1), at(1, "b", 2)}, {}},
      {"NaN eps finds no neighbours", nan, 1, {at(0, "a", 1), at(0, "b", 2)}, {}},
      {"nothing in, nothing out", 10, 1, {}, {}},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(idsOf(DbScan<BleScanInfoWithConfidence>(c.eps, c.minPts).cluster(c.infos)),
              c.clusters)
        << c.name;
  }
}

TEST(DbScan, CorrectsParametersWithInfoMessages) {
  LogCapture capture;
  DbScan<BleScanInfoWithConfidence>(-1, 1).cluster({});
  DbScan<BleScanInfoWithConfidence>(0, -3);
  DbScan<BleScanInfoWithConfidence>(0, 0);
  EXPECT_EQ(capture.messages(corvex_test::kInfo),
            (std::vector<std::string>{"DBSCAN eps error. eps = -1.000000",
                                      "DBSCAN minPts error. minPts = -3"}));
  EXPECT_EQ(capture.lines().size(), 2u);
}

TEST(DbScan, NeighboursMergeAndDistanceOnTheirOwn) {
  DbScan<BleScanInfoWithConfidence> scan(5, 1);
  std::vector<BleScanInfoWithConfidence> const infos = {at(0, "a", 1), at(5, "b", 2), at(0, "c", 1),
                                                        at(6, "d", 3)};
  EXPECT_EQ(corvex_test::idsOf(scan.getNeighbours(infos[0], infos)),
            (std::vector<std::string>{"b"}));
  EXPECT_EQ(scan.distance(&infos[0], &infos[3]), 6.0);
  // Equivalence is judged against the seeds as they were at entry.
  std::vector<BleScanInfoWithConfidence> seeds = {infos[0]};
  DbScan<BleScanInfoWithConfidence>::merge(seeds, {infos[2], infos[1], infos[1]});
  EXPECT_EQ(corvex_test::idsOf(seeds), (std::vector<std::string>{"a", "b", "b"}));
}

// Random records on a small lattice: many at equal positions, at exactly eps, equal (==) or
// only equivalent to each other. Records with NaN or infinite fields get a time of their own,
// so that operator< stays a strict weak ordering.
struct RandomCase {
  std::vector<BleScanInfoWithConfidence> infos;
  double eps;
  int minPts;
};

RandomCase randomCase(std::mt19937& random, int maxSize, int latticeSize) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  double const inf = std::numeric_limits<double>::infinity();
  auto pick = [&random](auto const& options) {
    return options[std::uniform_int_distribution<size_t>(0, options.size() - 1)(random)];
  };
  double const scale = pick(std::vector<double>{0.1, 1, 7, 1e-163, 1e160});
  double const origin = pick(std::vector<double>{0, 0, 1e6, -3.5e7});
  RandomCase c;
  c.eps = pick(std::vector<double>{0, 1, 2, 2.5, 3, 10, -1}) * scale;
  c.eps = pick(std::vector<double>{c.eps, c.eps, c.eps, 0, inf, nan});
  c.minPts = pick(std::vector<int>{-2, 0, 1, 1, 2, 3, 5});
  std::uniform_int_distribution<int> lattice(0, latticeSize);
  std::uniform_int_distribution<int> kind(0, 9);
  int const size = std::uniform_int_distribution<int>(0, maxSize)(random);
  for (int i = 0; i < size; ++i) {
    std::string const id = std::to_string(i);
    int const roll = kind(random);
    if (roll == 0 && i > 0) {  // an equal copy of an earlier record
      c.infos.push_back(tagged(c.infos[std::uniform_int_distribution<int>(0, i - 1)(random)], id));
      continue;
    }
    double const x = lattice(random) == 0 ? -0.0 : origin + lattice(random) * scale;
    BleScanInfoWithConfidence info = makeRecord(x, origin + lattice(random) * scale,
                                                lattice(random) % 3, 0, roll == 3 ? 0.7 : 0.5);
    if (roll == 1 || roll == 2) {
      info.getBlueToothRecord().setTimeStamp(1000 + i);
      if (roll == 1) {
        info.getLastLocation().setLat(pick(std::vector<double>{nan, inf, -inf}));
      } else {
        info.setConfidence(nan);
      }
    }
    c.infos.push_back(tagged(info, id));
  }
  return c;
}

TEST(DbScan, MatchesTheLiteralAlgorithmOnRandomInputs) {
  LogCapture quiet;
  std::mt19937 random(2024);
  for (int round = 0; round < 3000; ++round) {
    RandomCase const c = round < 40 ? randomCase(random, 400, 60) : randomCase(random, 40, 12);
    ASSERT_EQ(idsOf(DbScan<BleScanInfoWithConfidence>(c.eps, c.minPts).cluster(c.infos)),
              idsOf(corvex_test::LiteralDbScan<BleScanInfoWithConfidence>(c.eps, c.minPts)
                        .cluster(c.infos)))
        << "round " << round << ", eps " << c.eps << ", minPts " << c.minPts;
  }
}

TEST(DbScan, StaysSafeAndDeterministicWhenOrderIsNoStrictWeakOrdering) {
  // NaN latitudes at shared times make operator< cyclic.
  std::mt19937 random(5);
  std::uniform_int_distribution<int> coordinate(0, 6);
  for (int round = 0; round < 200; ++round) {
    std::vector<BleScanInfoWithConfidence> infos;
    for (int i = 0; i < 60; ++i) {
      BleScanInfoWithConfidence info =
          at(coordinate(random), std::to_string(i), coordinate(random) % 2);
      info.getLastLocation().setLat(coordinate(random) == 0 ? std::nan("") : coordinate(random));
      infos.push_back(info);
    }
    DbScan<BleScanInfoWithConfidence> const scan(2, 1);
    Ids const clusters = idsOf(scan.cluster(infos));
    ASSERT_EQ(idsOf(scan.cluster(infos)), clusters);
    std::set<std::string> seen;
    for (std::vector<std::string> const& members : clusters) {
      for (std::string const& id : members) {
        ASSERT_TRUE(seen.insert(id).second) << id;
      }
    }
  }
}

}  // namespace
}  // namespace Vantis::Location
