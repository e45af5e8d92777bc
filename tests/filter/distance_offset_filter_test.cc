#include "filter/distance_offset_filter.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

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

}  // namespace
}  // namespace Vantis::Location
