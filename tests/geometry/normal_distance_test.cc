#include "geometry/normal_distance.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;

TEST(NormalDistance, EuclideanOverAllEntriesZeroOnLengthMismatch) {
  NormalDistance distance;
  DistanceCalculator& measure = distance;
  LogCapture capture;
  EXPECT_EQ(measure.compute({1, 1, 1, 1}, {2, 2, 2, 2}), 2.0);
  EXPECT_EQ(measure.compute({}, {}), 0.0);
  EXPECT_TRUE(capture.lines().empty());
  EXPECT_EQ(measure.compute({0, 0}, {3, 4, 5}), 0.0);
  EXPECT_EQ(corvex_test::tagged(capture), std::vector<std::string>{"E:checkEqualLength error"});
}

}  // namespace
}  // namespace Vantis::Location
