#include "geometry/gnss_distance_measure.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;

TEST(GnssDistanceMeasure, ValidatesDimensionThenLongitudeThenLatitude) {
  struct Case {
    std::vector<double> pos;
    std::vector<std::string> errors;
  } const cases[] = {
      {{180.0, 90.0}, {}},
      {{-180.0, -90.0}, {}},
      {{180.0001, 95.0}, {"E:Longitude illegal"}},
      {{0.0, -90.0001}, {"E:Latitude illegal"}},
      {{0.0}, {"E:pos is null or dimension != 2"}},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    EXPECT_EQ(GnssDistanceMeasure::isValid(c.pos), c.errors.empty());
    EXPECT_EQ(corvex_test::tagged(capture), c.errors);
  }
}

TEST(GnssDistanceMeasure, GreatCircleOnA6371KmSphere) {
  EXPECT_NEAR(GnssDistanceMeasure::compute({0, 0}, {0, 1}), 111194.93, 0.01);
  EXPECT_EQ(GnssDistanceMeasure::compute({116.4, 39.9}, {116.4, 39.9}), 0.0);
  LogCapture capture;
  EXPECT_EQ(GnssDistanceMeasure::compute({200, 0}, {0}), 0.0);  // b is not examined
  EXPECT_EQ(GnssDistanceMeasure::compute({0, 0}, {0, -91}), 0.0);
  EXPECT_EQ(corvex_test::tagged(capture),
            (std::vector<std::string>{"E:Longitude illegal", "E:Latitude illegal"}));
}

}  // namespace
}  // namespace Vantis::Location
