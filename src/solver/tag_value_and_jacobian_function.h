#ifndef CORVEX_SOLVER_TAG_VALUE_AND_JACOBIAN_FUNCTION_H_
#define CORVEX_SOLVER_TAG_VALUE_AND_JACOBIAN_FUNCTION_H_

#include <vector>

#include "solver/value_and_jacobian.h"
#include "solver/value_and_jacobian_function.h"

namespace Vantis::Location {

// Range model of the tag: the value of observation i is the planar distance from the
// parameter point {east, north} to anchor i, the position from which that range was heard.
class TagValueAndJacobianFunction : public ValueAndJacobianFunction {
 public:
  // One anchor per row, planar coordinates (metres) in elements 0 and 1.
  explicit TagValueAndJacobianFunction(std::vector<std::vector<double>> const& anchors);
  // Anchor i at {xs[i], ys[i]} (metres); xs and ys have equal lengths.
  TagValueAndJacobianFunction(std::vector<double> xs, std::vector<double> ys);

  // Distances (metres) to every anchor and their gradients with respect to the point.
  ValueAndJacobian calculate(std::vector<double> const& point) const override;
  void calculateInto(std::vector<double> const& point, ValueAndJacobian& into) const override;

  // Planar Euclidean distance of the first two coordinates (metres); a missing coordinate
  // reads as NaN.
  static double dist(std::vector<double> const& a, std::vector<double> const& b);

 private:
  // Anchor coordinates; a missing one reads as NaN.
  std::vector<double> xs_;
  std::vector<double> ys_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_TAG_VALUE_AND_JACOBIAN_FUNCTION_H_
