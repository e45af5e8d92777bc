#ifndef CORVEX_SOLVER_VALUE_AND_JACOBIAN_H_
#define CORVEX_SOLVER_VALUE_AND_JACOBIAN_H_

#include <vector>

namespace Vantis::Location {

// A model evaluated at one parameter point: one value per observation and the derivatives
// of each value with respect to each parameter (row i belongs to observation i).
class ValueAndJacobian {
 public:
  ValueAndJacobian(std::vector<double> const& value,
                   std::vector<std::vector<double>> const& jacobian);

  std::vector<double> getValue() const { return value_; }
  void setValue(std::vector<double> const& value) { value_ = value; }
  std::vector<std::vector<double>> const& getJacobian() const { return jacobian_; }
  void setJacobian(std::vector<std::vector<double>> const& jacobian) { jacobian_ = jacobian; }

 private:
  std::vector<double> value_;
  std::vector<std::vector<double>> jacobian_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_VALUE_AND_JACOBIAN_H_
