#include "solver/optimizer_result.h"

#include <utility>

namespace Vantis::Location {

OptimizerResult::OptimizerResult(Estimation estimation, int evaluations, int iterations)
    : estimation_(std::move(estimation)), evaluations_(evaluations), iterations_(iterations) {}

}  // namespace Vantis::Location
