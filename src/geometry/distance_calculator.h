#ifndef CORVEX_GEOMETRY_DISTANCE_CALCULATOR_H_
#define CORVEX_GEOMETRY_DISTANCE_CALCULATOR_H_

#include <vector>

namespace Vantis::Location {

// A distance measure between two coordinate vectors, chosen by the clustering's owner.
class DistanceCalculator {
 public:
  virtual double compute(std::vector<double> const& a, std::vector<double> const& b) = 0;
  virtual ~DistanceCalculator() = default;

 protected:
  DistanceCalculator() = default;
  DistanceCalculator(DistanceCalculator const&) = default;
  DistanceCalculator& operator=(DistanceCalculator const&) = default;
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_DISTANCE_CALCULATOR_H_
