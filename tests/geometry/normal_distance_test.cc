#include "geometry/normal_distance.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;
using corvex_test::LogLine;

TEST(NormalDistance, EuclideanOverAllEntriesZeroOnLengthMismatch) {
  NormalDistance distance;
  DistanceCalculator& measure = distance;
  LogCapture capture;
  EXPECT_EQ(measure.compute({1, 1, 1, 1}, {2, 2, 2, 2}), 2.0);
  EXPECT_EQ(measure.compute({}, {}), 0.0);
  EXPECT_TRUE(capture.lines().empty());
  EXPECT_EQ(measure.compute({0, 0}, {3, 4, 5}), 0.0);
  EXPECT_EQ(capture.lines(),
            (std::vector<LogLine>{{corvex_test::kError, "checkEqualLength error"}}));
}

}  // namespace
}  // namespace Vantis::Location
