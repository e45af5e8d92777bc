#include "solver/value_and_jacobian_function.h"

namespace Vantis::Location {

ValueAndJacobianFunction::~ValueAndJacobianFunction() = default;

void ValueAndJacobianFunction::calculateInto(std::vector<double> const& point,
                                             ValueAndJacobian& into) const {
  into = calculate(point);
}

}  // namespace Vantis::Location
