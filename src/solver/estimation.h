#ifndef CORVEX_SOLVER_ESTIMATION_H_
#define CORVEX_SOLVER_ESTIMATION_H_

#include <cstddef>
#include <memory>
#include <vector>

#include "solver/row_matrix.h"
#include "solver/value_and_jacobian.h"

namespace Vantis::Location {

// A least-squares problem evaluated at one parameter point. Residuals (target minus model
// value) and Jacobian are stored unweighted; the getters apply the square-rooted weights.
// The weights are shared with the problem, so copies and moves are cheap.
class Estimation {
 public:
  using Weights = std::shared_ptr<std::vector<double> const>;

  Estimation() = default;
  Estimation(std::vector<double> const& value, std::vector<std::vector<double>> const& jacobian,
             std::vector<double> const& target, std::vector<double> const& point,
             std::vector<double> const& weightsSqrt);

  // Element-wise a - b; empty (with an error line) when a is empty or the lengths differ.
  static std::vector<double> subtract(std::vector<double> const& a, std::vector<double> const& b);

  // Becomes the estimation of `evaluation` at `point`, reusing this object's storage; takes
  // the evaluation's Jacobian and leaves it this object's old one to refill.
  void assign(ValueAndJacobian& evaluation, std::vector<double> const& target,
              std::vector<double> const& point, Weights const& weightsSqrt);

  std::vector<double> getPoint() const { return point_; }
  std::vector<double> const& point() const { return point_; }
  // Weighted residuals.
  std::vector<double> getResiduals() const;
  // The same into `weighted`, reusing its storage.
  void weightedResiduals(std::vector<double>& weighted) const;
  // Weighted Jacobian: row i scaled by the square root of weight i.
  std::vector<std::vector<double>> getJacobian() const;
  // The unweighted Jacobian.
  RowMatrix const& jacobian() const { return jacobian_; }
  // Square root of weight i; a missing weight reads as NaN.
  double weightSqrt(std::size_t i) const;
  // Square root of the weighted sum of squared residuals.
  double getCost() const;
  // Cost divided by the square root of the number of observations.
  double getRMS() const;

 private:
  static void subtract(std::vector<double> const& a, std::vector<double> const& b,
                       std::vector<double>& difference);

  int observationCount_ = 0;  // length of the target vector
  std::vector<double> point_;
  RowMatrix jacobian_;
  std::vector<double> residuals_;
  Weights weightsSqrt_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_ESTIMATION_H_
