#ifndef CORVEX_GEOMETRY_NORMAL_DISTANCE_H_
#define CORVEX_GEOMETRY_NORMAL_DISTANCE_H_

#include <vector>

#include "geometry/distance_calculator.h"

namespace Vantis::Location {

// Euclidean distance over all coordinates.
class NormalDistance : public DistanceCalculator {
 public:
  // 0.0 (and an error line) when the lengths differ.
  double compute(std::vector<double> const& a, std::vector<double> const& b) override;
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_NORMAL_DISTANCE_H_
