#ifndef CORVEX_SOLVER_LS_PROBLEM_H_
#define CORVEX_SOLVER_LS_PROBLEM_H_

#include <memory>
#include <vector>

#include "solver/constriction_inspector.h"
#include "solver/estimation.h"
#include "solver/value_and_jacobian_function.h"

namespace Vantis::Location {

// A weighted non-linear least-squares problem: find the point whose model values match the
// targets, starting from a given point, within evaluation and iteration limits.
class LSProblem {
 public:
  // target and weights have one entry per observation, start one per parameter.
  LSProblem(std::shared_ptr<ValueAndJacobianFunction> const& model,
            std::vector<double> const& target, std::vector<double> const& start,
            std::vector<double> const& weights, ConstrictionInspector<Estimation> const& inspector);

  // Element-wise square roots; a negative entry gives NaN.
  static std::vector<double> arraySqrt(std::vector<double> const& values);

  int getObservationSize() const { return static_cast<int>(target_.size()); }
  int getParameterSize() const { return static_cast<int>(start_.size()); }
  std::vector<double> getStart() const { return start_; }
  void setMaxEvaluations(int maxEvaluations) { maxEvaluations_ = maxEvaluations; }
  int getMaxEvaluations() const { return maxEvaluations_; }
  void setMaxIterations(int maxIterations) { maxIterations_ = maxIterations; }
  int getMaxIterations() const { return maxIterations_; }
  // Convergence is decided by the optimizer alone; this inspector does nothing.
  ConstrictionInspector<Estimation> getConstrictionInspector() const { return {}; }

  // The problem at one point (residuals target minus model value).
  Estimation evaluate(std::vector<double> const& point);
  // The same into `into`, reusing its storage and the problem's scratch evaluation.
  void evaluate(std::vector<double> const& point, Estimation& into);

 private:
  int maxEvaluations_ = 0;
  int maxIterations_ = 0;
  Estimation::Weights weightsSqrt_;
  std::vector<double> target_;
  std::shared_ptr<ValueAndJacobianFunction> model_;
  std::vector<double> start_;
  ValueAndJacobian evaluation_;  // the model's last evaluation, kept for its storage
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_LS_PROBLEM_H_
