#ifndef CORVEX_SOLVER_OPTIMIZER_RESULT_H_
#define CORVEX_SOLVER_OPTIMIZER_RESULT_H_

#include <vector>

#include "solver/estimation.h"

namespace Vantis::Location {

// Outcome of one optimizer run: the estimation it ended on and what the run cost.
class OptimizerResult {
 public:
  OptimizerResult(Estimation estimation, int evaluations, int iterations);

  int getEvaluations() const { return evaluations_; }
  int getIterations() const { return iterations_; }
  std::vector<double> getPoint() const { return estimation_.getPoint(); }
  double getRMS() const { return estimation_.getRMS(); }
  double getCost() const { return estimation_.getCost(); }
  std::vector<double> getResiduals() const { return estimation_.getResiduals(); }
  std::vector<std::vector<double>> getJacobian() const { return estimation_.getJacobian(); }

 private:
  Estimation estimation_;
  int evaluations_;
  int iterations_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_OPTIMIZER_RESULT_H_
