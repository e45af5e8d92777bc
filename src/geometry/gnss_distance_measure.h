#ifndef CORVEX_GEOMETRY_GNSS_DISTANCE_MEASURE_H_
#define CORVEX_GEOMETRY_GNSS_DISTANCE_MEASURE_H_

#include <vector>

#include "model/last_location.h"

namespace Vantis::Location {

// Great-circle distance by the haversine formula (R. W. Sinnott, "Virtues of the Haversine",
// Sky and Telescope, 1984) on a sphere of radius 6371 km.
class GnssDistanceMeasure {
 public:
  // A {lon, lat} vector (degrees) within [-180, 180] x [-90, 90]; logs why not.
  static bool isValid(std::vector<double> const& pos);
  // Distance (metres) between the two locations' degree positions.
  static double computeGnssDistance(LastLocation const& a, LastLocation const& b);
  // Distance (metres) between two {lon, lat} vectors (degrees); 0.0 when either is invalid.
  static double compute(std::vector<double> const& a, std::vector<double> const& b);
  // The same for {aLon, aLat} and {bLon, bLat} (degrees), without building vectors.
  static double compute(double aLon, double aLat, double bLon, double bLat);

 private:
  static bool isValid(double lon, double lat);
  static double haversine(double aLon, double aLat, double bLon, double bLat);
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_GNSS_DISTANCE_MEASURE_H_
