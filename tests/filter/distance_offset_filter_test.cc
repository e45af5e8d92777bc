#include "filter/distance_offset_filter.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "geometry/distance_utils.h"
#include "support/filter_records.h"
#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::Ids;
using corvex_test::idsOf;
using corvex_test::makeRecord;
using corvex_test::Records;
using Filter = DistanceOffsetFilter;

TEST(DistanceOffsetFilter, StripsFarthestOldestOrLeastTrustedUntilTheSpreadIsSmall) {
  // Three records within a metre and, oldest and least trusted, one 100 m away.
  Records infos = {makeRecord(0, 0, 2, 0, 0.5, "a"), makeRecord(100, 0, 1, 0, 0.5, "far"),
                   makeRecord(1, 0, 3, 0, 0.5, "b"), makeRecord(0, 1, 4, 0, 0.5, "c")};
  for (size_t i = 0; i < infos.size(); ++i) infos[i].setNewConfidence(i == 1 ? 0.1 : 0.5);
  EXPECT_EQ(Filter::getMaxOffsetIndex(Records(infos.begin(), infos.begin() + 3), {50, 0}), 0);
  EXPECT_EQ(Filter::getMaxOffsetIndex({makeRecord(1, 1)}, {1, 1}), -1);
  EXPECT_EQ(Filter::getOldestIndex(infos), 1);
  EXPECT_EQ(idsOf(Filter::filterByDistance(infos, 1, 2.0)), (Ids{"a", "b", "c"}));
  EXPECT_EQ(idsOf(Filter::filterByDistance(infos, 4, 0.0)), idsOf(infos));
  EXPECT_EQ(idsOf(Filter::filterByTime(infos, 2, 0.1)), (Ids{"b", "c"}));
  EXPECT_EQ(idsOf(Filter::filterByNewConfidence(infos, 3, 50.0)), (Ids{"a", "b", "c", "far"}));
  EXPECT_EQ(idsOf(Filter::filterByNewConfidence(infos, 1, 2.0)), (Ids{"a", "b", "c"}));
  // When nothing can be selected the loops still end.
  Records const stuck = {makeRecord(0, 0, LLONG_MAX), makeRecord(0, 0, LLONG_MAX)};
  EXPECT_EQ(Filter::filterByDistance(stuck, 1, -1.0).size(), 2u);
  EXPECT_EQ(Filter::filterByTime(stuck, 1, -1.0).size(), 2u);
  corvex_test::LogCapture capture;
  EXPECT_TRUE(Filter::filterByDistance({}, 1, 1).empty());
  EXPECT_TRUE(Filter::filterByTime(infos, 0, 1).empty());
  EXPECT_EQ(corvex_test::tagged(capture),
            (Ids{"E:infos is null or empty", "E:minItems can't less than 1"}));
}

TEST(DistanceOffsetFilter, FilterByDistanceMatchesTheLiteralLoop) {
  // Symmetric lattices give equal distances, ulp jitter distances whose roots round alike.
  double const special[] = {std::nan(""), std::numeric_limits<double>::infinity(), -0.0, 1e300};
  std::mt19937 random(99);
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 1500; ++round) {
    double const scale = std::vector<double>{1, 0.1, 3e-162, 1e8}[uniform(0, 3)];
    double const origin = uniform(0, 1) * 1e5;
    Records infos;
    for (int i = 0, size = uniform(1, 60); i < size; ++i) {
      double x = origin + uniform(-4, 4) * scale;
      for (int ulps = uniform(0, 3); ulps > 0; --ulps) x = std::nextafter(x, 0.0);
      double const y =
          uniform(0, 40) == 0 ? special[uniform(0, 3)] : origin + uniform(-4, 4) * scale;
      infos.push_back(makeRecord(x, y, i, 0, 0.5, std::to_string(i)));
    }
    int const minItems = uniform(1, static_cast<int>(infos.size()));
    double const maxStd = std::vector<double>{0.0, -1.0, 0.5 * scale, 2 * scale}[uniform(0, 3)];
    Records literal = infos;
    while (literal.size() > static_cast<size_t>(minItems) &&
           DistanceUtils::stdPointError(literal) > maxStd) {
      int const farthest = Filter::getMaxOffsetIndex(literal, DistanceUtils::meanPoint(literal));
      if (farthest < 0) break;
      literal.erase(literal.begin() + farthest);
    }
    ASSERT_EQ(idsOf(Filter::filterByDistance(infos, minItems, maxStd)), idsOf(literal)) << round;
  }
}

}  // namespace
}  // namespace Vantis::Location
