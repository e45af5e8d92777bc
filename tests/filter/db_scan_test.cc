#include "filter/db_scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/literal_db_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::Ids;
using corvex_test::idsOf;
using corvex_test::ordersStrictWeakly;
using corvex_test::Records;
using Scan = DbScan<BleScanInfoWithConfidence>;

double const kNaN = std::numeric_limits<double>::quiet_NaN();
double const kInf = std::numeric_limits<double>::infinity();

// A record at x metres on the east axis; `time` separates records that would otherwise be equal.
BleScanInfoWithConfidence at(double x, std::string const& id, long long time) {
  return corvex_test::makeRecord(x, 0, time, 0, 0.5, id);
}

// Clusters of the records at xs (metres) named a, b, ..., at times `times` (default 1, 2, ...),
// written "ab|c".
std::string clustered(double eps, int minPts, std::vector<double> const& xs,
                      std::vector<long long> const& times = {}) {
  Records infos;
  for (size_t i = 0; i < xs.size(); ++i) {
    infos.push_back(at(xs[i], std::string(1, 'a' + i), times.empty() ? i + 1 : times[i]));
  }
  std::string text;
  for (Ids const& members : idsOf(Scan(eps, minPts).cluster(infos))) {
    text += (text.empty() ? "" : "|");
    for (std::string const& id : members) text += id;
  }
  return text;
}

TEST(DbScan, TrickyCases) {
  corvex_test::LogCapture capture;
  EXPECT_EQ(clustered(10, 1, {0, 5}), "ab");
  EXPECT_EQ(clustered(10, 2, {0, 8, 16}), "bc");            // noise never becomes a border record
  EXPECT_EQ(clustered(10, 1, {0, 0}, {1, 1}), "");          // equal records are no neighbours...
  EXPECT_EQ(clustered(10, 1, {0, 5, 5}, {1, 2, 2}), "ab");  // ...and join a cluster once
  EXPECT_EQ(clustered(10.5, 1, {20, 0, 10, 30}), "acdb");   // founder, then seeds as merged
  EXPECT_EQ(clustered(1, 1, {50, 0, 50.5, 1}), "ac|bd");
  EXPECT_EQ(clustered(10, 0, {0, 50, 55}), "a|bc");
  EXPECT_EQ(clustered(-1, 1, {0, 0, 1e-9}), "ab");
  EXPECT_EQ(clustered(10, -3, {0, 1}), "");
  EXPECT_EQ(clustered(kNaN, 1, {0, 0}), "");
  EXPECT_EQ(clustered(10, 1, {}), "");
  EXPECT_EQ(corvex_test::tagged(capture),
            (Ids{"I:DBSCAN eps error. eps = -1.000000", "I:DBSCAN minPts error. minPts = -3"}));
  BleScanInfoWithConfidence notSelf = at(0, "n", 1);
  notSelf.setConfidence(kNaN);  // not == to itself, so its own neighbour
  EXPECT_EQ(idsOf(Scan(10, 1).cluster({notSelf})), (std::vector<Ids>{{"n"}}));
}

// Records on a small lattice: many at equal positions, at exactly eps or an ulp off it, equal
// or equivalent to each other. NaN or infinite fields come with a time of their own, so that
// operator< stays a strict weak ordering.
struct RandomCase {
  Records infos;
  double eps;
  int minPts;
};

RandomCase randomCase(std::mt19937& random, int maxSize, int lattice) {
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  double const scale = std::vector<double>{0.1, 1, 7, 1e-163, 1e160}[uniform(0, 4)];
  double const origin = std::vector<double>{0, 0, 1e6, -3.5e7}[uniform(0, 3)];
  double const eps = std::vector<double>{0, 1, 2, 2.5, 3, 10, -1}[uniform(0, 6)] * scale;
  RandomCase c{{},
               std::vector<double>{eps, eps, eps, 0, kInf, kNaN}[uniform(0, 5)],
               std::vector<int>{-2, 0, 1, 1, 2, 3, 5}[uniform(0, 6)]};
  for (int i = 0, size = uniform(0, maxSize); i < size; ++i) {
    std::string const id = std::to_string(i);
    int const kind = uniform(0, 9);
    if (kind == 0 && i > 0) {  // an equal copy of an earlier record
      c.infos.push_back(c.infos[uniform(0, i - 1)]);
      c.infos.back().getLastLocation().setFloorInfo(id);
      continue;
    }
    double x = uniform(0, lattice) == 0 ? -0.0 : origin + uniform(0, lattice) * scale;
    if (kind >= 7) x = std::nextafter(x, kind == 7 ? kInf : -kInf);  // a rounding off eps
    c.infos.push_back(corvex_test::makeRecord(x, origin + uniform(0, lattice) * scale,
                                              uniform(0, 2), 0, kind == 3 ? 0.7 : 0.5, id));
    if (kind == 1 || kind == 2) {
      c.infos.back().getBlueToothRecord().setTimeStamp(1000 + i);
      if (kind == 1)
        c.infos.back().getLastLocation().setLat(std::vector<double>{kNaN, kInf}[i % 2]);
      if (kind == 2) c.infos.back().setConfidence(kNaN);
    }
  }
  return c;
}

TEST(DbScan, MatchesTheLiteralAlgorithmOnRandomInputs) {
  corvex_test::LogCapture quiet;
  std::mt19937 random(2024);
  for (int round = 0; round < 3000; ++round) {
    RandomCase const c = round < 40 ? randomCase(random, 400, 60) : randomCase(random, 40, 12);
    ASSERT_EQ(idsOf(Scan(c.eps, c.minPts).cluster(c.infos)),
              idsOf(corvex_test::LiteralDbScan<BleScanInfoWithConfidence>(c.eps, c.minPts)
                        .cluster(c.infos)))
        << "round " << round;
  }
}

TEST(DbScan, SingleStepsWorkOnTheirOwn) {
  Scan const scan(5, 1);
  Records const infos = {at(0, "a", 1), at(5, "b", 2), at(0, "c", 1), at(6, "d", 3)};
  EXPECT_EQ(idsOf(scan.getNeighbours(infos[0], infos)), (Ids{"b"}));
  EXPECT_EQ(scan.distance(&infos[0], &infos[3]), 6.0);
  Records seeds = {infos[0]};  // judged against the seeds as they were at entry
  Scan::merge(seeds, {infos[2], infos[1], infos[1]});
  EXPECT_EQ(idsOf(seeds), (Ids{"a", "b", "b"}));
}

// Records sharing a scan time, some with NaN fields. Where operator< still orders them strictly
// weakly, the literal algorithm's answer holds; where it does not (containers keyed by it are
// then undefined, and replaying them once looped forever), the answer must still be a
// deterministic set of disjoint clusters.
TEST(DbScan, MatchesTheLiteralAlgorithmWhereNaNFieldsLeaveTheOrderingIntact) {
  corvex_test::LogCapture quiet;
  std::mt19937 random(11);
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  int broken = 0;
  for (int round = 0; round < 3000; ++round) {
    Records infos;
    for (int i = 0, size = uniform(1, 12); i < size; ++i) {
      double const confidence = std::vector<double>{0.5, 0.6, kNaN}[uniform(0, 2)];
      infos.push_back(corvex_test::makeRecord(uniform(0, 6), uniform(0, 1), uniform(0, 1), 0,
                                              confidence, std::to_string(i)));
      if (uniform(0, 5) == 0) infos.back().getLastLocation().setLat(kNaN);
    }
    double const eps = uniform(0, 4);
    int const minPts = uniform(0, 3);
    std::vector<Ids> const clusters = idsOf(Scan(eps, minPts).cluster(infos));
    if (ordersStrictWeakly(infos)) {
      ASSERT_EQ(
          clusters,
          idsOf(corvex_test::LiteralDbScan<BleScanInfoWithConfidence>(eps, minPts).cluster(infos)))
          << "round " << round;
      continue;
    }
    ++broken;
    ASSERT_EQ(idsOf(Scan(eps, minPts).cluster(infos)), clusters) << "round " << round;
    std::vector<std::string> members;
    for (Ids const& cluster : clusters) {
      members.insert(members.end(), cluster.begin(), cluster.end());
    }
    std::sort(members.begin(), members.end());
    ASSERT_EQ(std::adjacent_find(members.begin(), members.end()), members.end())
        << "round " << round;
  }
  EXPECT_GT(broken, 100);
}

}  // namespace
}  // namespace Vantis::Location
