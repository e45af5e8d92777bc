#include "solver/estimation.h"

#include <algorithm>
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
      weightsSqrt_(std::make_shared<std::vector<double> const>(weightsSqrt)) {
  subtract(target, value, residuals_);
}

std::vector<double> Estimation::subtract(std::vector<double> const& a,
                                         std::vector<double> const& b) {
  std::vector<double> difference;
  subtract(a, b, difference);
  return difference;
}

void Estimation::subtract(std::vector<double> const& a, std::vector<double> const& b,
                          std::vector<double>& difference) {
  if (a.empty() || a.size() != b.size()) {
    CorvexTagLogger::getInstance().error("checkVectorDimensions " + std::to_string(a.size()) + "," +
                                         std::to_string(b.size()));
    difference.clear();
    return;
  }
  difference.resize(a.size());
  for (size_t i = 0; i < a.size(); ++i) {
    difference[i] = a[i] - b[i];
  }
}

void Estimation::assign(ValueAndJacobian& evaluation, std::vector<double> const& target,
                        std::vector<double> const& point, Weights const& weightsSqrt) {
  observationCount_ = static_cast<int>(target.size());
  point_ = point;
  std::swap(jacobian_, evaluation.jacobian());
  subtract(target, evaluation.value(), residuals_);
  weightsSqrt_ = weightsSqrt;
}

std::vector<double> Estimation::getResiduals() const {
  std::vector<double> weighted;
  weightedResiduals(weighted);
  return weighted;
}

void Estimation::weightedResiduals(std::vector<double>& weighted) const {
  weighted.resize(residuals_.size());
  size_t const withWeight =
      weightsSqrt_ == nullptr ? 0 : std::min(residuals_.size(), weightsSqrt_->size());
  for (size_t i = 0; i < withWeight; ++i) {
    weighted[i] = residuals_[i] * (*weightsSqrt_)[i];
  }
  for (size_t i = withWeight; i < residuals_.size(); ++i) {
    weighted[i] = residuals_[i] * weightSqrt(i);  // NaN
  }
}

std::vector<std::vector<double>> Estimation::getJacobian() const {
  std::vector<std::vector<double>> weighted = jacobian_.toRows();
  for (size_t i = 0; i < weighted.size(); ++i) {
    double const factor = weightSqrt(i);
    for (double& element : weighted[i]) {
      element *= factor;
    }
  }
  return weighted;
}

double Estimation::weightSqrt(std::size_t i) const {
  return weightsSqrt_ != nullptr && i < weightsSqrt_->size()
             ? (*weightsSqrt_)[i]
             : std::numeric_limits<double>::quiet_NaN();
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

}  // namespace Vantis::Location
