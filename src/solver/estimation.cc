#include "solver/estimation.h"

#include <cmath>
#include <limits>
#include <string>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

Estimation::Estimation(std::vector<double> const& value,
                       std::vector<std::vector<double>> const& jacobian,
                       std::vector<double> const& target, std::vector<double> const& point,
                       std::vector<double> const& weightsSqrt)
    : observationCount_(static_cast<int>(target.size())),
      point_(point),
      jacobian_(jacobian),
      residuals_(subtract(target, value)),
      weightsSqrt_(weightsSqrt) {}

std::vector<double> Estimation::subtract(std::vector<double> const& a,
                                         std::vector<double> const& b) {
  if (a.empty() || a.size() != b.size()) {
    CorvexTagLogger::getInstance().error("checkVectorDimensions " + std::to_string(a.size()) + "," +
                                         std::to_string(b.size()));
    return {};
  }
  std::vector<double> difference(a.size());
  for (size_t i = 0; i < a.size(); ++i) {
    difference[i] = a[i] - b[i];
  }
  return difference;
}

std::vector<double> Estimation::getResiduals() const {
  std::vector<double> weighted(residuals_.size());
  for (size_t i = 0; i < residuals_.size(); ++i) {
    weighted[i] = residuals_[i] * weightSqrt(i);
  }
  return weighted;
}

std::vector<std::vector<double>> Estimation::getJacobian() const {
  std::vector<std::vector<double>> weighted = jacobian_;
  for (size_t i = 0; i < weighted.size(); ++i) {
    double const factor = weightSqrt(i);
    for (double& element : weighted[i]) {
      element *= factor;
    }
  }
  return weighted;
}

double Estimation::getCost() const {
  double sum = 0.0;
  for (size_t i = 0; i < residuals_.size(); ++i) {
    double const weighted = residuals_[i] * weightSqrt(i);
    sum += weighted * weighted;
  }
  return std::sqrt(sum);
}

double Estimation::getRMS() const {
  double const cost = getCost();
  return std::sqrt(cost * cost / static_cast<double>(observationCount_));
}

double Estimation::weightSqrt(std::size_t i) const {
  return i < weightsSqrt_.size() ? weightsSqrt_[i] : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace Vantis::Location
