#ifndef CORVEX_SOLVER_LM_OPTIMIZER_H_
#define CORVEX_SOLVER_LM_OPTIMIZER_H_

#include <cstddef>
#include <vector>

#include "solver/estimation.h"
#include "solver/ls_problem.h"
#include "solver/optimizer_result.h"

namespace Vantis::Location {

// Levenberg-Marquardt minimiser with a trust region for LSProblem, after J. J. Moré, "The
// Levenberg-Marquardt algorithm: implementation and theory", Numerical Analysis, Lecture
// Notes in Mathematics 630, Springer, 1978 (the MINPACK lmder scheme): pivoted Householder
// QR of the weighted Jacobian, a search for the LM parameter that fits the step into the
// bound, and the damped step solved by Givens rotations. Holds only its settings, so one
// object may run any number of problems.
class LMOptimizer {
 public:
  // Result of the pivoted QR factorisation of a Jacobian with nR rows and nC columns; reused
  // from iteration to iteration.
  struct DataSet {
    // Sizes every member for an nR x nC Jacobian, keeping the storage.
    void reset(int rows, int columns);
    double& factor(int row, int column) {
      return factors[static_cast<std::size_t>(column) * static_cast<std::size_t>(rows) +
                     static_cast<std::size_t>(row)];
    }
    double factor(int row, int column) const {
      return factors[static_cast<std::size_t>(column) * static_cast<std::size_t>(rows) +
                     static_cast<std::size_t>(row)];
    }

    // nR x nC, column after column; on and below row k of column p[k] the k-th Householder
    // vector, above it R.
    std::vector<double> factors;
    int rows = 0;
    std::vector<int> permutation;           // column k of R is Jacobian column permutation[k]
    int rank = 0;                           // number of columns factorised
    std::vector<double> rDiagonal;          // diagonal of R, by Jacobian column
    std::vector<double> columnNorms;        // norm of each Jacobian column
    std::vector<double> householderScales;  // by Jacobian column; 0 where never factorised
  };

  static constexpr double kSafeMin = 2.2250738585072014e-308;       // smallest normal double
  static constexpr double kMachineEpsilon = 2.220446049250313e-16;  // 2^-52

  LMOptimizer();
  LMOptimizer(double initialStepBound, double costTolerance, double pointTolerance,
              double orthogonalityTolerance, double rankingThreshold);
  LMOptimizer(LMOptimizer const&) = default;
  LMOptimizer& operator=(LMOptimizer const&) = default;

  // Minimises the problem's weighted cost from its start point. Never fails: every stop
  // (convergence, a limit, tolerances too small) returns the estimation current at that time.
  virtual OptimizerResult optimize(LSProblem& problem) const;
  virtual ~LMOptimizer() = default;

  // Householder QR with column pivoting of the negated weighted Jacobian of the estimation,
  // into dataSet.
  void qrDecomposition(Estimation const& estimation, int solvedCols, DataSet& dataSet) const;
  // y (one entry per row) multiplied in place by the transpose of Q; returns y.
  std::vector<double>& qtMultiplyY(std::vector<double>& y, DataSet const& dataSet) const;
  // The LM parameter whose step, left in direction, has scaled length close to delta.
  // triangle is scratch for the direction solve.
  double getLevenbergMarquardtParameter(std::vector<double> const& qy, double delta,
                                        std::vector<double> const& scale, DataSet const& dataSet,
                                        int solvedCols, std::vector<double>& work1,
                                        std::vector<double>& work2, std::vector<double>& work3,
                                        std::vector<double>& direction, double lambda,
                                        std::vector<double>& triangle) const;
  // Solves the system damped by the diagonal diag for direction; fills lmDiag and work. The
  // rotated triangle is built in `triangle` (solvedCols x solvedCols), the data set stays.
  void getLevenbergMarquardtDirection(std::vector<double> const& qy,
                                      std::vector<double> const& diag, std::vector<double>& lmDiag,
                                      DataSet const& dataSet, int solvedCols,
                                      std::vector<double>& work, std::vector<double>& direction,
                                      std::vector<double>& triangle) const;

  // Sets scale to the column norms (1.0 for a zero norm); returns the norm of the scaled point.
  double getFirstXNorm(int n, std::vector<double>& scale, std::vector<double> const& point,
                       std::vector<double> const& columnNorms) const;
  // Largest cosine between the residuals and a Jacobian column.
  double getMaxCosine(int solvedCols, std::vector<double> const& qtf, double cost,
                      DataSet const& dataSet) const;
  // Norm of the scaled direction; the scaled components are left in work.
  double getDxNorm(std::vector<double> const& scale, int solvedCols, std::vector<double>& work,
                   std::vector<double> const& direction, std::vector<int> const& permutation) const;

 private:
  struct Run;

  bool runTrial(Run& run) const;
  static double squaredRStep(Run& run);
  static void updateStepBound(Run& run, double actRed, double dirDer, double previousCost,
                              double stepNorm);
  bool toleranceTooSmall(Run const& run, double actRed, double preRed) const;

  double initialStepBound_;        // first step bound, times the scaled start point norm
  double costTolerance_;           // relative cost reduction
  double pointTolerance_;          // relative step size
  double orthogonalityTolerance_;  // cosine between residuals and Jacobian columns
  double rankingThreshold_;        // squared column norm below which factorisation stops
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_LM_OPTIMIZER_H_
