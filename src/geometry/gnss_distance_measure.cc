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
  if (pos[0] < -180.0 || pos[0] > 180.0) {
    CorvexTagLogger::getInstance().error("Longitude illegal");
    return false;
  }
  if (pos[1] < -90.0 || pos[1] > 90.0) {
    CorvexTagLogger::getInstance().error("Latitude illegal");
    return false;
  }
  return true;
}

double GnssDistanceMeasure::computeGnssDistance(LastLocation const& a, LastLocation const& b) {
  double phi1 = a.getLat() * kDegToRad;
  double phi2 = b.getLat() * kDegToRad;
  double deltaPhi = (b.getLat() - a.getLat()) * kDegToRad;
  double deltaLambda = (b.getLon() - a.getLon()) * kDegToRad;
  double h = square(std::sin(deltaPhi / 2)) +
             std::cos(phi1) * std::cos(phi2) * square(std::sin(deltaLambda / 2));
  double c = 2 * std::atan2(std::sqrt(h), std::sqrt(1 - h));
  return kEarthRadius * c;
}

double GnssDistanceMeasure::compute(std::vector<double> const& a, std::vector<double> const& b) {
  if (!isValid(a) || !isValid(b)) {
    return 0.0;
  }
  return computeGnssDistance(LastLocation(a[0], a[1], 0, 0, 0), LastLocation(b[0], b[1], 0, 0, 0));
}

}  // namespace Vantis::Location
