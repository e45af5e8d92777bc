#include "geometry/coordinate_converter.h"

#include <gtest/gtest.h>

#include <vector>

namespace Vantis::Location {
namespace {

std::vector<double> const kRef = {116.397128, 39.916527};

BleScanInfoWithConfidence makeInfo(double lon, double lat) {
  return BleScanInfoWithConfidence(BlueToothRecord(1, -60), LastLocation(lon, lat, 1, 1, 0), 0, 0,
                                   0.5);
}

TEST(CoordinateConverter, RecordsRoundTripAroundTheReferenceAndConvertOnlyOnce) {
  EXPECT_EQ(CoordinateConverter::gpsConvertENU(kRef[0], kRef[1], kRef),
            (std::vector<double>{0.0, 0.0}));
  EXPECT_EQ(CoordinateConverter::enuConvertGPS(0, 0, kRef), kRef);
  std::vector<BleScanInfoWithConfidence> infos = {makeInfo(116.4, 39.9), makeInfo(116.39, 39.93)};
  CoordinateConverter::gnssConvertToEnu(infos, kRef);
  std::vector<double> const enu = CoordinateConverter::gpsConvertENU(116.39, 39.93, kRef);
  EXPECT_EQ(infos[1].getPoint(), enu);
  CoordinateConverter::gnssConvertToEnu(infos, kRef);
  EXPECT_EQ(infos[1].getPoint(), enu);

  for (int pass = 0; pass < 2; ++pass) {  // the second pass finds nothing left to convert
    CoordinateConverter::enuConvertToGnss(infos, kRef);
    EXPECT_FALSE(infos[1].getLastLocation().getEnu());
    EXPECT_NEAR(infos[1].getLastLocation().getLon(), 116.39, 1e-12);
    EXPECT_NEAR(infos[1].getLastLocation().getLat(), 39.93, 1e-12);
  }

  TagBestLocation result(enu[0], enu[1]);
  CoordinateConverter::enuConvertToGnss(result, kRef);
  EXPECT_NEAR(result.getLon(), 116.39, 1e-12);
  EXPECT_NEAR(result.getLat(), 39.93, 1e-12);
}

TEST(CoordinateConverter, BadReferenceChangesNothing) {
  for (std::vector<double> const& ref : {std::vector<double>{1.0}, std::vector<double>{1, 2, 3}}) {
    EXPECT_EQ(CoordinateConverter::gpsConvertENU(116.4, 39.9, ref), (std::vector<double>{0, 0}));
    EXPECT_EQ(CoordinateConverter::enuConvertGPS(10, 20, ref), (std::vector<double>{0, 0}));

    std::vector<BleScanInfoWithConfidence> infos = {makeInfo(116.4, 39.9)};
    CoordinateConverter::gnssConvertToEnu(infos, ref);
    EXPECT_EQ(infos[0].getPoint(), (std::vector<double>{116.4, 39.9}));
    EXPECT_FALSE(infos[0].getLastLocation().getEnu());
    infos[0].getLastLocation().setEnu(true);
    CoordinateConverter::enuConvertToGnss(infos, ref);
    EXPECT_EQ(infos[0].getPoint(), (std::vector<double>{116.4, 39.9}));

    TagBestLocation result(10, 20);
    CoordinateConverter::enuConvertToGnss(result, ref);
    EXPECT_EQ(result.getLon(), 10);
    EXPECT_EQ(result.getLat(), 20);
  }
}

}  // namespace
}  // namespace Vantis::Location
