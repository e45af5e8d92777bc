#include "geometry/simple_rssi_to_distance_converter.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

TEST(SimpleRssiToDistanceConverter, LogDistanceModelOverTheClosedRange) {
  corvex_test::LogCapture capture;
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-72.5), 1.0);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-99.0), 10.0);
  EXPECT_NEAR(SimpleRssiToDistanceConverter::convert(-128.0), 124.26, 0.005);
  EXPECT_NEAR(SimpleRssiToDistanceConverter::convert(0.0), 0.00184, 0.000005);
  EXPECT_TRUE(capture.lines().empty());
}

}  // namespace
}  // namespace Vantis::Location
