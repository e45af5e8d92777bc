#include "solver/value_and_jacobian.h"

namespace Vantis::Location {

ValueAndJacobian::ValueAndJacobian(std::vector<double> const& value,
                                   std::vector<std::vector<double>> const& jacobian)
    : value_(value), jacobian_(jacobian) {}

}  // namespace Vantis::Location
