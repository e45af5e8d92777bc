#ifndef CORVEX_GEOMETRY_DISTANCE_UTILS_H_
#define CORVEX_GEOMETRY_DISTANCE_UTILS_H_

#include <vector>

#include "model/ble_scan_info_with_confidence.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {

// Planar distances, centroids and spread of scan records, in whatever frame the records hold
// (metres once converted to the local frame). Distances are squared to spare square roots.
class DistanceUtils {
 public:
  // Squared distance of two {x, y} vectors; 0.0 and an error line unless both have size 2.
  static double distSquare(std::vector<double> const& a, std::vector<double> const& b);
  static double distSquare(BleScanInfoWithConfidence const& a, BleScanInfoWithConfidence const& b);
  static double distSquare(BleScanInfoWithConfidence const& a, TagBestLocation const& t);
  static double distSquare(BleScanInfoWithConfidence const& a, std::vector<double> const& p);

  static double sumOfNewConfidence(std::vector<BleScanInfoWithConfidence> const& infos);
  // False, with an error line, for an empty list.
  static bool checkValid(std::vector<BleScanInfoWithConfidence> const& infos);
  // newConfidence-weighted centroid {x, y}; {0, 0} when the weights sum below 0.0001.
  static std::vector<double> meanPointWeight(std::vector<BleScanInfoWithConfidence> const& infos);
  static std::vector<double> meanPoint(std::vector<BleScanInfoWithConfidence> const& infos);
  // Root-mean-square distance from the unweighted centroid.
  static double stdPointError(std::vector<BleScanInfoWithConfidence> const& infos);
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_DISTANCE_UTILS_H_
