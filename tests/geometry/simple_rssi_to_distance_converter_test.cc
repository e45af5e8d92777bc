#include "geometry/simple_rssi_to_distance_converter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;

TEST(SimpleRssiToDistanceConverter, LogDistanceModelOverTheClosedRange) {
  LogCapture capture;
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-72.5), 1.0);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-99.0), 10.0);
  EXPECT_NEAR(SimpleRssiToDistanceConverter::convert(-128.0), 124.26, 0.005);
  EXPECT_NEAR(SimpleRssiToDistanceConverter::convert(0.0), 0.00184, 0.000005);
  EXPECT_TRUE(capture.lines().empty());

  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(0.1), 0.0);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-128.5), 0.0);
  EXPECT_EQ(
      corvex_test::tagged(capture),
      (std::vector<std::string>{"E:rssi 0.100000 out of range! Must be -128 <= rssi < 0 !",
                                "E:rssi -128.500000 out of range! Must be -128 <= rssi < 0 !"}));
}

}  // namespace
}  // namespace Vantis::Location
