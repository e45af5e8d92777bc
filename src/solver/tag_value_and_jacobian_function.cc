#include "solver/tag_value_and_jacobian_function.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace Vantis::Location {
namespace {

// Below this distance (metres) the gradient of the range is not computed.
constexpr double kMinGradientDistance = 0.0001;

double coordinate(std::vector<double> const& v, std::size_t index) {
  return index < v.size() ? v[index] : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

TagValueAndJacobianFunction::TagValueAndJacobianFunction(
    std::vector<std::vector<double>> const& anchors)
    : anchors_(anchors) {}

ValueAndJacobian TagValueAndJacobianFunction::calculate(std::vector<double> const& point) const {
  std::vector<double> value;
  std::vector<std::vector<double>> jacobian;
  value.reserve(anchors_.size());
  jacobian.reserve(anchors_.size());
  for (std::vector<double> const& anchor : anchors_) {
    double const d = dist(anchor, point);
    value.push_back(d);
    if (d <= kMinGradientDistance) {
      // On top of an anchor the direction is undefined; a fixed row avoids dividing by ~0.
      jacobian.push_back({1.0, 1.0});
    } else {
      jacobian.push_back({(coordinate(point, 0) - coordinate(anchor, 0)) / d,
                          (coordinate(point, 1) - coordinate(anchor, 1)) / d});
    }
  }
  return ValueAndJacobian(value, jacobian);
}

double TagValueAndJacobianFunction::dist(std::vector<double> const& a,
                                         std::vector<double> const& b) {
  double const dx = coordinate(a, 0) - coordinate(b, 0);
  double const dy = coordinate(a, 1) - coordinate(b, 1);
  return std::sqrt(dx * dx + dy * dy);
}

}  // namespace Vantis::Location
