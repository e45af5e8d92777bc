#include "geometry/gnss_distance_measure.h"

#include <cmath>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {

constexpr double kDegToRad = 0.017453292519943295;
constexpr double kEarthRadius = 6.371e6;

double square(double value) { return value * value; }

}  // namespace

bool GnssDistanceMeasure::isValid(std::vector<double> const& pos) {
  if (pos.size() != 2) {
    CorvexTagLogger::getInstance().error("pos is null or dimension != 2");
    return false;
  }
  return isValid(pos[0], pos[1]);
}

bool GnssDistanceMeasure::isValid(double lon, double lat) {
  if (lon < -180.0 || lon > 180.0) {
    CorvexTagLogger::getInstance().error("Longitude illegal");
    return false;
  }
  if (lat < -90.0 || lat > 90.0) {
    CorvexTagLogger::getInstance().error("Latitude illegal");
    return false;
  }
  return true;
}

double GnssDistanceMeasure::computeGnssDistance(LastLocation const& a, LastLocation const& b) {
  return haversine(a.getLon(), a.getLat(), b.getLon(), b.getLat());
}

double GnssDistanceMeasure::compute(std::vector<double> const& a, std::vector<double> const& b) {
  if (!isValid(a) || !isValid(b)) {
    return 0.0;
  }
  return haversine(a[0], a[1], b[0], b[1]);
}

double GnssDistanceMeasure::compute(double aLon, double aLat, double bLon, double bLat) {
  if (!isValid(aLon, aLat) || !isValid(bLon, bLat)) {
    return 0.0;
  }
  return haversine(aLon, aLat, bLon, bLat);
}

double GnssDistanceMeasure::haversine(double aLon, double aLat, double bLon, double bLat) {
  double phi1 = aLat * kDegToRad;
  double phi2 = bLat * kDegToRad;
  double deltaPhi = (bLat - aLat) * kDegToRad;
  double deltaLambda = (bLon - aLon) * kDegToRad;
  double h = square(std::sin(deltaPhi / 2)) +
             std::cos(phi1) * std::cos(phi2) * square(std::sin(deltaLambda / 2));
  double c = 2 * std::atan2(std::sqrt(h), std::sqrt(1 - h));
  return kEarthRadius * c;
}

}  // namespace Vantis::Location
