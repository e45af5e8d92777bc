#include "filter/distance_offset_filter.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "support/filter_records.h"

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
}

}  // namespace
}  // namespace Vantis::Location
