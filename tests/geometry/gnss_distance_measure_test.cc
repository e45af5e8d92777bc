#include "geometry/gnss_distance_measure.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

TEST(GnssDistanceMeasure, GreatCircleOnA6371KmSphereOverTheClosedRanges) {
  corvex_test::LogCapture capture;
  EXPECT_TRUE(GnssDistanceMeasure::isValid({180.0, 90.0}));
  EXPECT_TRUE(GnssDistanceMeasure::isValid({-180.0, -90.0}));
  EXPECT_NEAR(GnssDistanceMeasure::compute({0, 0}, {0, 1}), 111194.93, 0.01);
  EXPECT_EQ(GnssDistanceMeasure::compute({116.4, 39.9}, {116.4, 39.9}), 0.0);
  EXPECT_TRUE(capture.lines().empty());
}

}  // namespace
}  // namespace Vantis::Location
