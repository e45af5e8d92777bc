#include "solver/tag_value_and_jacobian_function.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace Vantis::Location {
namespace {

// Below this distance (metres) the gradient of the range is not computed.
constexpr double kMinGradientDistance = 0.0001;

double coordinate(std::vector<double> const& v, std::size_t index) {
  return index < v.size() ? v[index] : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

TagValueAndJacobianFunction::TagValueAndJacobianFunction(
    std::vector<std::vector<double>> const& anchors) {
  xs_.reserve(anchors.size());
  ys_.reserve(anchors.size());
  for (std::vector<double> const& anchor : anchors) {
    xs_.push_back(coordinate(anchor, 0));
    ys_.push_back(coordinate(anchor, 1));
  }
}

TagValueAndJacobianFunction::TagValueAndJacobianFunction(std::vector<double> xs,
                                                         std::vector<double> ys)
    : xs_(std::move(xs)), ys_(std::move(ys)) {}

ValueAndJacobian TagValueAndJacobianFunction::calculate(std::vector<double> const& point) const {
  ValueAndJacobian result;
  calculateInto(point, result);
  return result;
}

void TagValueAndJacobianFunction::calculateInto(std::vector<double> const& point,
                                                ValueAndJacobian& into) const {
  double const px = coordinate(point, 0);
  double const py = coordinate(point, 1);
  std::vector<double>& value = into.value();
  RowMatrix& jacobian = into.jacobian();
  value.resize(xs_.size());
  jacobian.resize(xs_.size(), 2);
  for (std::size_t i = 0; i < xs_.size(); ++i) {
    double const dx = xs_[i] - px;
    double const dy = ys_[i] - py;
    double const d = std::sqrt(dx * dx + dy * dy);
    value[i] = d;
    if (d <= kMinGradientDistance) {
      // On top of an anchor the direction is undefined; a fixed row avoids dividing by ~0.
      jacobian(i, 0) = 1.0;
      jacobian(i, 1) = 1.0;
    } else {
      // Not -dx / d: a zero difference must stay +0.0.
      jacobian(i, 0) = (px - xs_[i]) / d;
      jacobian(i, 1) = (py - ys_[i]) / d;
    }
  }
}

double TagValueAndJacobianFunction::dist(std::vector<double> const& a,
                                         std::vector<double> const& b) {
  double const dx = coordinate(a, 0) - coordinate(b, 0);
  double const dy = coordinate(a, 1) - coordinate(b, 1);
  return std::sqrt(dx * dx + dy * dy);
}

}  // namespace Vantis::Location
