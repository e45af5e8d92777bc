#include "solver/counter.h"

#include <gtest/gtest.h>

#include <vector>

namespace Vantis::Location {
namespace {

TEST(Counter, ReportsTheLimitOnlyOnceReachedAndKeepsCounting) {
  Counter counter(2);
  std::vector<bool> reached;
  std::vector<int> counts;
  for (int i = 0; i < 4; ++i) {
    reached.push_back(counter.countPlus());
    counts.push_back(counter.getCount());
  }
  EXPECT_EQ(reached, (std::vector<bool>{false, false, true, true}));
  EXPECT_EQ(counts, (std::vector<int>{1, 2, 3, 4}));
}

TEST(Counter, ZeroOrNegativeLimitIsReachedAtOnce) {
  for (int maximum : {0, -5}) {
    Counter counter(maximum);
    EXPECT_EQ(counter.getCount(), 0);
    EXPECT_TRUE(counter.countPlus()) << maximum;
    EXPECT_EQ(counter.getCount(), 1);
  }
}

}  // namespace
}  // namespace Vantis::Location
