#include "filter/db_scan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

}  // namespace
}  // namespace Vantis::Location
