#include "geometry/coordinate_converter.h"

#include <cmath>

namespace Vantis::Location {

namespace {

constexpr double kEarthRadius = 6378137.0;
constexpr double kDegToRad = 0.017453292519943295;

bool isValidReference(std::vector<double> const& ref) { return ref.size() == 2; }

// The cosine of the point's own latitude (not the reference's) keeps the inverse exact.
std::vector<double> toEnu(double lon, double lat, std::vector<double> const& ref) {
  double east = std::cos(lat * kDegToRad) * ((lon - ref[0]) * kDegToRad * kEarthRadius);
  double north = (lat - ref[1]) * kDegToRad * kEarthRadius;
  return {east, north};
}

std::vector<double> toGps(double east, double north, std::vector<double> const& ref) {
  double lat = north / kEarthRadius / kDegToRad + ref[1];
  double lon = ref[0] + east / kEarthRadius / kDegToRad / std::cos(lat * kDegToRad);
  return {lon, lat};
}

}  // namespace

std::vector<double> CoordinateConverter::gpsConvertENU(double lon, double lat,
                                                       std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return {0.0, 0.0};
  }
  return toEnu(lon, lat, ref);
}

std::vector<double> CoordinateConverter::enuConvertGPS(double east, double north,
                                                       std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return {0.0, 0.0};
  }
  return toGps(east, north, ref);
}

void CoordinateConverter::enuConvertToGnss(TagBestLocation& result,
                                           std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return;
  }
  std::vector<double> gps = toGps(result.getLon(), result.getLat(), ref);
  result.setLon(gps[0]);
  result.setLat(gps[1]);
}

void CoordinateConverter::enuConvertToGnss(std::vector<BleScanInfoWithConfidence>& infos,
                                           std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return;
  }
  for (BleScanInfoWithConfidence& info : infos) {
    LastLocation& location = info.getLastLocation();
    if (!location.getEnu()) {
      continue;
    }
    std::vector<double> gps = toGps(location.getLon(), location.getLat(), ref);
    location.setLon(gps[0]);
    location.setLat(gps[1]);
    location.setEnu(false);
  }
}

void CoordinateConverter::gnssConvertToEnu(std::vector<BleScanInfoWithConfidence>& infos,
                                           std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return;
  }
  for (BleScanInfoWithConfidence& info : infos) {
    LastLocation& location = info.getLastLocation();
    if (location.getEnu()) {
      continue;
    }
    std::vector<double> enu = toEnu(location.getLon(), location.getLat(), ref);
    location.setLon(enu[0]);
    location.setLat(enu[1]);
    location.setEnu(true);
  }
}

}  // namespace Vantis::Location
