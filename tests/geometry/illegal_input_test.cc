// The geometry helpers answer illegal input (no records, points of the wrong dimension,
// coordinates or signals outside their closed ranges, a reference that is no position) with a
// neutral value and one error line each, and leave records and results alone.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry/coordinate_converter.h"
#include "geometry/distance_utils.h"
#include "geometry/gnss_distance_measure.h"
#include "geometry/gnss_utils.h"
#include "geometry/normal_distance.h"
#include "geometry/simple_rssi_to_distance_converter.h"
#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using Point2 = std::vector<double>;
using Strings = std::vector<std::string>;

TEST(GeometryHelpers, AnswerIllegalInputWithANeutralValueAndOneErrorLine) {
  corvex_test::Records const none;
  corvex_test::LogCapture capture;
  // The edges of the closed ranges are legal.
  EXPECT_TRUE(GnssDistanceMeasure::isValid({180.0, 90.0}));
  EXPECT_TRUE(GnssDistanceMeasure::isValid({-180.0, -90.0}));
  EXPECT_NEAR(GnssDistanceMeasure::compute({0, 0}, {0, 1}), 111194.93, 0.01);  // 6371 km sphere
  EXPECT_NEAR(SimpleRssiToDistanceConverter::convert(-128.0), 124.26, 0.005);
  EXPECT_NEAR(SimpleRssiToDistanceConverter::convert(0.0), 0.00184, 0.000005);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-72.5), 1.0);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-99.0), 10.0);
  EXPECT_TRUE(capture.lines().empty());
  EXPECT_EQ(DistanceUtils::distSquare(corvex_test::makeRecord(1, 2), Point2{4, 6, 8}), 0);
  EXPECT_EQ(DistanceUtils::distSquare(Point2{1}, Point2{4, 6}), 0);
  EXPECT_EQ(DistanceUtils::sumOfNewConfidence(none), 0);
  EXPECT_FALSE(DistanceUtils::checkValid(none));
  EXPECT_EQ(DistanceUtils::meanPointWeight(none), (Point2{0, 0}));
  EXPECT_EQ(DistanceUtils::meanPoint(none), (Point2{0, 0}));
  EXPECT_EQ(DistanceUtils::stdPointError(none), 0);
  EXPECT_FALSE(GnssDistanceMeasure::isValid({0.0}));
  EXPECT_FALSE(GnssDistanceMeasure::isValid({180.0001, 95.0}));
  EXPECT_FALSE(GnssDistanceMeasure::isValid({0.0, -90.0001}));
  EXPECT_EQ(GnssDistanceMeasure::compute({200, 0}, {0}), 0);  // the second is not examined
  EXPECT_EQ(GnssDistanceMeasure::compute({0, 0}, {0, -91}), 0);
  EXPECT_EQ(GnssUtils::getGnssCount(none), 0);
  EXPECT_FALSE(GnssUtils::isOutDoor(none));
  EXPECT_TRUE(GnssUtils::getGnssProactiveList(none).empty());
  EXPECT_FALSE(GnssUtils::checkCohesion(none));
  EXPECT_EQ(NormalDistance().compute({0, 0}, {3, 4, 5}), 0);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(0.1), 0);
  EXPECT_EQ(SimpleRssiToDistanceConverter::convert(-128.5), 0);
  Strings expected(2, "distSquare(): point is null or illegal");
  expected.insert(expected.end(), 5, "DistanceUtils: points is null or empty");
  expected.insert(expected.end(), {"pos is null or dimension != 2", "Longitude illegal",
                                   "Latitude illegal", "Longitude illegal", "Latitude illegal"});
  expected.insert(expected.end(), 4, "infos == null or is empty");
  expected.insert(expected.end(), {"checkEqualLength error",
                                   "rssi 0.100000 out of range! Must be -128 <= rssi < 0 !",
                                   "rssi -128.500000 out of range! Must be -128 <= rssi < 0 !"});
  EXPECT_EQ(capture.messages(corvex_test::kError), expected);
  EXPECT_EQ(capture.lines().size(), expected.size());

  // A reference that is no position converts neither points, records nor results.
  for (Point2 const& ref : {Point2{1.0}, Point2{1, 2, 3}}) {
    EXPECT_EQ(CoordinateConverter::gpsConvertENU(116.4, 39.9, ref), (Point2{0, 0}));
    EXPECT_EQ(CoordinateConverter::enuConvertGPS(10, 20, ref), (Point2{0, 0}));
    corvex_test::Records infos = {corvex_test::makeRecord(116.4, 39.9)};
    infos[0].getLastLocation().setEnu(false);
    CoordinateConverter::gnssConvertToEnu(infos, ref);
    EXPECT_EQ(infos[0].getPoint(), (Point2{116.4, 39.9}));
    EXPECT_FALSE(infos[0].getLastLocation().getEnu());
    infos[0].getLastLocation().setEnu(true);
    CoordinateConverter::enuConvertToGnss(infos, ref);
    EXPECT_EQ(infos[0].getPoint(), (Point2{116.4, 39.9}));
    TagBestLocation result(10, 20);
    CoordinateConverter::enuConvertToGnss(result, ref);
    EXPECT_EQ(result.getLon(), 10);
    EXPECT_EQ(result.getLat(), 20);
  }
}

}  // namespace
}  // namespace Vantis::Location
