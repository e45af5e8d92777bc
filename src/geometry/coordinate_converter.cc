#include "geometry/coordinate_converter.h"

#include <cmath>

namespace Vantis::Location {

namespace {

constexpr double kEarthRadius = 6378137.0;
constexpr double kDegToRad = 0.017453292519943295;

bool isValidReference(std::vector<double> const& ref) { return ref.size() == 2; }

struct CoordinatePair {
  double first;
  double second;
};

// The cosine of the point's own latitude (not the reference's) keeps the inverse exact.
// Returned by value, not as a vector: records are converted by the thousand.
CoordinatePair toEnu(double lon, double lat, std::vector<double> const& ref) {
  double east = std::cos(lat * kDegToRad) * ((lon - ref[0]) * kDegToRad * kEarthRadius);
  double north = (lat - ref[1]) * kDegToRad * kEarthRadius;
  return {east, north};
}

CoordinatePair toGps(double east, double north, std::vector<double> const& ref) {
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
  CoordinatePair const enu = toEnu(lon, lat, ref);
  return {enu.first, enu.second};
}

std::vector<double> CoordinateConverter::enuConvertGPS(double east, double north,
                                                       std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return {0.0, 0.0};
  }
  CoordinatePair const gps = toGps(east, north, ref);
  return {gps.first, gps.second};
}

void CoordinateConverter::enuConvertToGnss(TagBestLocation& result,
                                           std::vector<double> const& ref) {
  if (!isValidReference(ref)) {
    return;
  }
  CoordinatePair const gps = toGps(result.getLon(), result.getLat(), ref);
  result.setLon(gps.first);
  result.setLat(gps.second);
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
    CoordinatePair const gps = toGps(location.getLon(), location.getLat(), ref);
    location.setLon(gps.first);
    location.setLat(gps.second);
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
    CoordinatePair const enu = toEnu(location.getLon(), location.getLat(), ref);
    location.setLon(enu.first);
    location.setLat(enu.second);
    location.setEnu(true);
  }
}

}  // namespace Vantis::Location
