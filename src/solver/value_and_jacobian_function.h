#ifndef CORVEX_SOLVER_VALUE_AND_JACOBIAN_FUNCTION_H_
#define CORVEX_SOLVER_VALUE_AND_JACOBIAN_FUNCTION_H_

#include <vector>

#include "solver/value_and_jacobian.h"

namespace Vantis::Location {

// The model of a least-squares problem: maps a parameter point to the model values of all
// observations and their Jacobian.
class ValueAndJacobianFunction {
 public:
  virtual ValueAndJacobian calculate(std::vector<double> const& point) const = 0;
  virtual ~ValueAndJacobianFunction();
  // The same evaluation into an existing object; models override it to reuse its storage.
  virtual void calculateInto(std::vector<double> const& point, ValueAndJacobian& into) const;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_VALUE_AND_JACOBIAN_FUNCTION_H_
