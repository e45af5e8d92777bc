#include "solver/counter.h"

#include <gtest/gtest.h>

#include <vector>

namespace Vantis::Location {
namespace {

TEST(Counter, ReportsTheLimitOnceReachedAndKeepsCounting) {
  struct Case {
    int maximum;
    std::vector<bool> reached;  // by the first four counts
  } const cases[] = {
      {2, {false, false, true, true}},
      {0, {true, true, true, true}},
      {-5, {true, true, true, true}},
  };
  for (Case const& c : cases) {
    Counter counter(c.maximum);
    std::vector<bool> reached;
    std::vector<int> counts = {counter.getCount()};
    for (int i = 0; i < 4; ++i) {
      reached.push_back(counter.countPlus());
      counts.push_back(counter.getCount());
    }
    EXPECT_EQ(reached, c.reached) << c.maximum;
    EXPECT_EQ(counts, (std::vector<int>{0, 1, 2, 3, 4}));
  }
}

}  // namespace
}  // namespace Vantis::Location
