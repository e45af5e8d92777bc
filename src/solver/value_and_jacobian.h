#ifndef CORVEX_SOLVER_VALUE_AND_JACOBIAN_H_
#define CORVEX_SOLVER_VALUE_AND_JACOBIAN_H_

#include <vector>

#include "solver/row_matrix.h"

namespace Vantis::Location {

// A model evaluated at one parameter point: one value per observation and the derivatives
// of each value with respect to each parameter (row i belongs to observation i).
class ValueAndJacobian {
 public:
  ValueAndJacobian() = default;
  ValueAndJacobian(std::vector<double> const& value,
                   std::vector<std::vector<double>> const& jacobian);

  std::vector<double> getValue() const { return value_; }
  void setValue(std::vector<double> const& value) { value_ = value; }
  std::vector<std::vector<double>> getJacobian() const { return jacobian_.toRows(); }
  void setJacobian(std::vector<std::vector<double>> const& jacobian) {
    jacobian_ = RowMatrix(jacobian);
  }

  // In-place access, for models that refill an evaluation and for its consumers.
  std::vector<double>& value() { return value_; }
  RowMatrix& jacobian() { return jacobian_; }

 private:
  std::vector<double> value_;
  RowMatrix jacobian_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_VALUE_AND_JACOBIAN_H_
