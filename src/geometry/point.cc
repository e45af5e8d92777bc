#include "geometry/point.h"

#include <cmath>

namespace Vantis::Location {

namespace {
constexpr double kTruncatedPi = 3.1415926;
constexpr double kEarthRadiusKm = 6371.393;

double square(double value) { return value * value; }
}  // namespace

Point::Point(double lon, double lat) : Point(lon, lat, 0) {}

Point::Point(double lon, double lat, int id) : id_(id), lon_(lon), lat_(lat) {}

double Point::rad(double degrees) { return degrees * kTruncatedPi / 180.0; }

double Point::getDistance(Point const& other) const {
  double dx = lon_ - other.lon_;
  double dy = lat_ - other.lat_;
  return std::sqrt(dx * dx + dy * dy);
}

double Point::getDistanceGNSS(Point const& other) const {
  double radLat1 = rad(lat_);
  double radLat2 = rad(other.lat_);
  double a = radLat1 - radLat2;
  double b = rad(lon_) - rad(other.lon_);
  double h =
      square(std::sin(a * 0.5)) + std::cos(radLat1) * std::cos(radLat2) * square(std::sin(b * 0.5));
  double d = 2 * std::asin(std::sqrt(h)) * kEarthRadiusKm * 1000.0;
  return std::round(d);
}

bool Point::operator==(Point const& other) const {
  return lon_ == other.lon_ && lat_ == other.lat_ && id_ == other.id_;
}

}  // namespace Vantis::Location
