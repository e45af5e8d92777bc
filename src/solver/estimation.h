#ifndef CORVEX_SOLVER_ESTIMATION_H_
#define CORVEX_SOLVER_ESTIMATION_H_

#include <cstddef>
#include <vector>

namespace Vantis::Location {

// A least-squares problem evaluated at one parameter point. Residuals (target minus model
// value) and Jacobian are stored unweighted; the getters apply the square-rooted weights.
class Estimation {
 public:
  Estimation(std::vector<double> const& value, std::vector<std::vector<double>> const& jacobian,
             std::vector<double> const& target, std::vector<double> const& point,
             std::vector<double> const& weightsSqrt);
  Estimation(Estimation const&) = default;
  Estimation& operator=(Estimation const&) = default;

  // Element-wise a - b; empty (with an error line) when a is empty or the lengths differ.
  static std::vector<double> subtract(std::vector<double> const& a, std::vector<double> const& b);

  std::vector<double> getPoint() const { return point_; }
  // Weighted residuals.
  std::vector<double> getResiduals() const;
  // Weighted Jacobian: row i scaled by the square root of weight i.
  std::vector<std::vector<double>> getJacobian() const;
  // Square root of the weighted sum of squared residuals.
  double getCost() const;
  // Cost divided by the square root of the number of observations.
  double getRMS() const;

 private:
  // Square root of weight i; a missing weight reads as NaN.
  double weightSqrt(std::size_t i) const;

  int observationCount_;  // length of the target vector
  std::vector<double> point_;
  std::vector<std::vector<double>> jacobian_;
  std::vector<double> residuals_;
  std::vector<double> weightsSqrt_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_ESTIMATION_H_
