#include "solver/optimizer_result.h"

namespace Vantis::Location {

OptimizerResult::OptimizerResult(Estimation const& estimation, int evaluations, int iterations)
    : estimation_(estimation), evaluations_(evaluations), iterations_(iterations) {}

}  // namespace Vantis::Location
