// Test models for the optimizer given as plain functions, and problems built around them.
#ifndef CORVEX_TESTS_SOLVER_FUNCTION_MODEL_H_
#define CORVEX_TESTS_SOLVER_FUNCTION_MODEL_H_

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "solver/constriction_inspector.h"
#include "solver/estimation.h"
#include "solver/ls_problem.h"
#include "solver/value_and_jacobian_function.h"

namespace corvex_test {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

// A least-squares model whose values and Jacobian come from a function of the parameters.
class FunctionModel : public Vantis::Location::ValueAndJacobianFunction {
 public:
  using Function = std::function<Vantis::Location::ValueAndJacobian(Vector const&)>;

  explicit FunctionModel(Function function) : function_(std::move(function)) {}
  Vantis::Location::ValueAndJacobian calculate(Vector const& point) const override {
    return function_(point);
  }

 private:
  Function function_;
};

// Weights default to one per target; both limits are set to `limit`.
inline Vantis::Location::LSProblem problemWith(
    std::shared_ptr<Vantis::Location::ValueAndJacobianFunction> const& model, Vector const& target,
    Vector const& start, int limit = 1000, Vector weights = {}) {
  if (weights.empty()) weights.assign(target.size(), 1.0);
  Vantis::Location::LSProblem problem(
      model, target, start, weights,
      Vantis::Location::ConstrictionInspector<Vantis::Location::Estimation>());
  problem.setMaxEvaluations(limit);
  problem.setMaxIterations(limit);
  return problem;
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SOLVER_FUNCTION_MODEL_H_
