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

namespace Vantis::Location {
namespace {

using corvex_test::idsOf;
using corvex_test::makeRecord;
using corvex_test::tagged;
using Ids = std::vector<std::string>;

// Three records within a metre and, oldest, one 100 m away.
std::vector<BleScanInfoWithConfidence> withOutlier() {
  std::vector<BleScanInfoWithConfidence> infos = {
      tagged(makeRecord(0, 0, 2), "a"), tagged(makeRecord(100, 0, 1), "far"),
      tagged(makeRecord(1, 0, 3), "b"), tagged(makeRecord(0, 1, 4), "c")};
  for (size_t i = 0; i < infos.size(); ++i) {
    infos[i].setNewConfidence(i == 1 ? 0.1 : 0.5);
  }
  return infos;
}

TEST(DistanceOffsetFilter, IndexSelectionKeepsTheFirstOfEquals) {
  std::vector<BleScanInfoWithConfidence> const infos = {makeRecord(1, 0, 5), makeRecord(0, 2, 3),
                                                        makeRecord(-2, 0, 3), makeRecord(0, 0, 9)};
  EXPECT_EQ(DistanceOffsetFilter::getMaxOffsetIndex(infos, {0, 0}), 1);
  EXPECT_EQ(DistanceOffsetFilter::getMaxOffsetIndex({makeRecord(1, 1)}, {1, 1}), -1);
  EXPECT_EQ(DistanceOffsetFilter::getMaxOffsetIndex({}, {0, 0}), -1);
  EXPECT_EQ(DistanceOffsetFilter::getOldestIndex(infos), 1);
  EXPECT_EQ(DistanceOffsetFilter::getOldestIndex({}), -1);
}

TEST(DistanceOffsetFilter, StripsUntilTheSpreadIsSmallEnough) {
  std::vector<BleScanInfoWithConfidence> const infos = withOutlier();
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByDistance(infos, 1, 2.0)), (Ids{"a", "b", "c"}));
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByDistance(infos, 1, 0.1)), (Ids{"c"}));
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByDistance(infos, 4, 0.0)), idsOf(infos));
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByTime(infos, 1, 2.0)), (Ids{"a", "b", "c"}));
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByTime(infos, 2, 0.1)), (Ids{"b", "c"}));
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByNewConfidence(infos, 1, 2.0)),
            (Ids{"a", "b", "c"}));
  EXPECT_EQ(idsOf(DistanceOffsetFilter::filterByNewConfidence(infos, 3, 50.0)),
            (Ids{"a", "b", "c", "far"}));
}

TEST(DistanceOffsetFilter, StopsWhenNothingCanBeSelected) {
  // A negative maximum can never be met; the loops must still end.
  std::vector<BleScanInfoWithConfidence> const samePlace = {makeRecord(1, 1, 1),
                                                            makeRecord(1, 1, 2)};
  EXPECT_EQ(DistanceOffsetFilter::filterByDistance(samePlace, 1, -1.0).size(), 2u);
  std::vector<BleScanInfoWithConfidence> const latest = {makeRecord(0, 0, LLONG_MAX),
                                                         makeRecord(9, 0, LLONG_MAX)};
  EXPECT_EQ(DistanceOffsetFilter::filterByTime(latest, 1, 1.0).size(), 2u);
  EXPECT_EQ(DistanceOffsetFilter::filterByNewConfidence(latest, 1, -1.0).size(), 1u);
}

TEST(DistanceOffsetFilter, RefusesEmptyInputAndMinItemsBelowOne) {
  corvex_test::LogCapture capture;
  EXPECT_TRUE(DistanceOffsetFilter::filterByDistance({}, 1, 1).empty());
  EXPECT_TRUE(DistanceOffsetFilter::filterByTime(withOutlier(), 0, 1).empty());
  EXPECT_FALSE(DistanceOffsetFilter::checkValid(withOutlier(), -1));
  EXPECT_TRUE(DistanceOffsetFilter::checkValid(withOutlier(), 1));
  EXPECT_EQ(capture.messages(corvex_test::kError),
            (std::vector<std::string>{"infos is null or empty", "minItems can't less than 1",
                                      "minItems can't less than 1"}));
}

// The removal loop spelled out with the shared helpers.
std::vector<BleScanInfoWithConfidence> literalFilterByDistance(
    std::vector<BleScanInfoWithConfidence> result, int minItems, double maxStd) {
  while (result.size() > static_cast<size_t>(minItems) &&
         DistanceUtils::stdPointError(result) > maxStd) {
    int const farthest =
        DistanceOffsetFilter::getMaxOffsetIndex(result, DistanceUtils::meanPoint(result));
    if (farthest < 0) {
      break;
    }
    result.erase(result.begin() + farthest);
  }
  return result;
}

TEST(DistanceOffsetFilter, FilterByDistanceMatchesTheLiteralLoop) {
  // Symmetric lattices give equal distances; ulp jitter gives distances whose roots round
  // alike; the special values must not derail the loop.
  double const special[] = {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(), -0.0, 1e300};
  std::mt19937 random(99);
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 1500; ++round) {
    double const scale = std::vector<double>{1, 0.1, 3e-162, 1e8}[uniform(0, 3)];
    double const origin = uniform(0, 1) * 1e5;
    std::vector<BleScanInfoWithConfidence> infos;
    int const size = uniform(1, 60);
    for (int i = 0; i < size; ++i) {
      double x = origin + uniform(-4, 4) * scale;
      for (int ulps = uniform(0, 3); ulps > 0; --ulps) {
        x = std::nextafter(x, 0.0);
      }
      double const y =
          uniform(0, 40) == 0 ? special[uniform(0, 3)] : origin + uniform(-4, 4) * scale;
      infos.push_back(tagged(makeRecord(x, y, i), std::to_string(i)));
    }
    int const minItems = uniform(1, size);
    double const maxStd = std::vector<double>{0.0, -1.0, 0.5 * scale, 2 * scale}[uniform(0, 3)];
    ASSERT_EQ(idsOf(DistanceOffsetFilter::filterByDistance(infos, minItems, maxStd)),
              idsOf(literalFilterByDistance(infos, minItems, maxStd)))
        << "round " << round;
  }
}

}  // namespace
}  // namespace Vantis::Location
