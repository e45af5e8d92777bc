#include "solver/value_and_jacobian_function.h"

namespace Vantis::Location {

ValueAndJacobianFunction::~ValueAndJacobianFunction() = default;

}  // namespace Vantis::Location
