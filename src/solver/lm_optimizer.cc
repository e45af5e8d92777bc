#include "solver/lm_optimizer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>

#include "interface/corvex_tag_logger.h"
#include "solver/counter.h"

namespace Vantis::Location {
namespace {

constexpr double kDefaultInitialStepBound = 100.0;
constexpr double kDefaultTolerance = 1e-10;
constexpr double kDefaultRankingThreshold = 2.2250738585072014e-308;
// A trial step is accepted when the actual cost reduction reaches this share of the
// predicted one.
constexpr double kMinAcceptedRatio = 0.0001;
constexpr int kMaxParameterPasses = 11;

void logError(std::string const& message) { CorvexTagLogger::getInstance().error(message); }

using DataSet = LMOptimizer::DataSet;

// True when the Jacobian and the weighted residuals have the sizes the problem announced; the
// kernels index by those sizes.
bool fitsProblem(Estimation const& estimation, std::vector<double> const& residuals, int nR,
                 int nC) {
  RowMatrix const& jacobian = estimation.jacobian();
  if (static_cast<int>(jacobian.rows()) != nR || static_cast<int>(residuals.size()) != nR ||
      (nR == 0 && nC != 0)) {
    return false;
  }
  return nR == 0 || (!jacobian.ragged() && static_cast<int>(jacobian.columns()) == nC);
}

// Gauss-Newton step: R x = qy by back substitution over the first rank columns.
void gaussNewtonStep(DataSet const& dataSet, std::vector<double> const& qy,
                     std::vector<double>& direction) {
  std::vector<int> const& permutation = dataSet.permutation;
  int const nC = static_cast<int>(permutation.size());
  for (int j = 0; j < dataSet.rank; ++j) {
    direction[permutation[j]] = qy[j];
  }
  for (int j = dataSet.rank; j < nC; ++j) {
    direction[permutation[j]] = 0.0;
  }
  for (int k = dataSet.rank - 1; k >= 0; --k) {
    int const pk = permutation[k];
    double const y = direction[pk] / dataSet.rDiagonal[pk];
    for (int i = 0; i < k; ++i) {
      direction[permutation[i]] -= y * dataSet.factor(i, pk);
    }
    direction[pk] = y;
  }
}

// Lower bound of the LM parameter from the Newton step at parameter 0; work1 holds the
// scaled Gauss-Newton step on entry.
double lowerBound(DataSet const& dataSet, int solvedCols, std::vector<double> const& scale,
                  double dxNorm, double fp, double delta, std::vector<double>& work1) {
  std::vector<int> const& permutation = dataSet.permutation;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work1[pj] = (work1[pj] / dxNorm) * scale[pj];
  }
  double sum2 = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    double sum = 0.0;
    for (int i = 0; i < j; ++i) {
      sum += dataSet.factor(i, pj) * work1[permutation[i]];
    }
    double const s = (work1[pj] - sum) / dataSet.rDiagonal[pj];
    work1[pj] = s;
    sum2 += s * s;
  }
  return fp / (delta * sum2);
}

// Norm of the scaled gradient, which bounds the LM parameter from above.
double gradientNorm(DataSet const& dataSet, int solvedCols, std::vector<double> const& qy,
                    std::vector<double> const& scale) {
  double sum2 = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = dataSet.permutation[j];
    double sum = 0.0;
    for (int i = 0; i <= j; ++i) {
      sum += dataSet.factor(i, pj) * qy[i];
    }
    sum /= scale[pj];
    sum2 += sum * sum;
  }
  return std::sqrt(sum2);
}

// Newton correction of the LM parameter. Uses the factor matrix as factorised (Householder
// entries below the diagonal), not the triangle rotated by the direction solve.
double newtonCorrection(DataSet const& dataSet, int solvedCols, std::vector<double> const& scale,
                        double dxNorm, double fp, double delta, std::vector<double> const& lmDiag,
                        std::vector<double> const& scaledDirection, std::vector<double>& work1) {
  std::vector<int> const& permutation = dataSet.permutation;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work1[pj] = scaledDirection[pj] * scale[pj] / dxNorm;
  }
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work1[pj] /= lmDiag[j];
    double const t = work1[pj];
    for (int i = j + 1; i < solvedCols; ++i) {
      work1[permutation[i]] -= dataSet.factor(i, pj) * t;
    }
  }
  double sum2 = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    double const s = work1[permutation[j]];
    sum2 += s * s;
  }
  return fp / (delta * sum2);
}

// Entry (row, column) of the leading solvedCols x solvedCols block of the factors in pivoted
// column order, kept column after column: it belongs to row `row` and Jacobian column
// p_column.
double& cell(std::vector<double>& triangle, int solvedCols, int row, int column) {
  return triangle[static_cast<std::size_t>(column) * static_cast<std::size_t>(solvedCols) +
                  static_cast<std::size_t>(row)];
}

// Eliminates the diagonal row diag[p_j] from the triangle by Givens rotations, carrying the
// right-hand side work along.
void rotateDiagonalRow(std::vector<double>& triangle, int solvedCols, int j,
                       std::vector<double>& lmDiag, std::vector<double>& work) {
  double q = 0.0;
  for (int k = j; k < solvedCols; ++k) {
    if (lmDiag[k] == 0.0) {
      continue;
    }
    double const r = cell(triangle, solvedCols, k, k);
    double sin = 0.0;
    double cos = 0.0;
    if (std::fabs(r) < std::fabs(lmDiag[k])) {
      double const cot = r / lmDiag[k];
      sin = 1.0 / std::sqrt(1.0 + cot * cot);
      cos = sin * cot;
    } else {
      double const tan = lmDiag[k] / r;
      cos = 1.0 / std::sqrt(1.0 + tan * tan);
      sin = cos * tan;
    }
    cell(triangle, solvedCols, k, k) = cos * r + sin * lmDiag[k];
    double const t = cos * work[k] + sin * q;
    q = -sin * work[k] + cos * q;
    work[k] = t;
    for (int i = k + 1; i < solvedCols; ++i) {
      double const u = cell(triangle, solvedCols, i, k);
      cell(triangle, solvedCols, i, k) = cos * u + sin * lmDiag[i];
      lmDiag[i] = -sin * u + cos * lmDiag[i];
    }
  }
}

// Solves the rotated triangle for work; a singular triangle gets a least-squares solution
// with the trailing components zeroed.
void solveRotatedTriangle(std::vector<double>& triangle, int solvedCols,
                          std::vector<double> const& lmDiag, std::vector<double>& work) {
  int nSing = solvedCols;
  for (int j = 0; j < solvedCols; ++j) {
    if (lmDiag[j] == 0.0 && nSing == solvedCols) {
      nSing = j;
    }
    if (nSing < solvedCols) {
      work[j] = 0.0;
    }
  }
  for (int j = nSing - 1; j >= 0; --j) {
    double sum = 0.0;
    for (int i = j + 1; i < nSing; ++i) {
      sum += cell(triangle, solvedCols, i, j) * work[i];
    }
    work[j] = (work[j] - sum) / lmDiag[j];
  }
}

}  // namespace

// Working state of one optimize call. The estimation at the current point and the one at the
// trial point swap places instead of being copied, and every buffer lives for the whole call.
struct LMOptimizer::Run {
  explicit Run(LSProblem& problem)
      : problem(problem),
        nR(problem.getObservationSize()),
        nC(problem.getParameterSize()),
        solvedCols(nR <= nC ? nR : nC),
        iterationCounter(problem.getMaxIterations()),
        evaluationCounter(problem.getMaxEvaluations()),
        qtf(nR),
        scale(nC),
        oldPoint(nC),
        work1(nC),
        work2(nC),
        work3(nC),
        direction(nC) {
    evaluationCounter.countPlus();  // the start evaluation
    problem.evaluate(problem.getStart(), current);
    problem.getConstrictionInspector();
    takeCurrent();
  }

  void takeCurrent() {
    current.weightedResiduals(residuals);
    // current.getCost(), from the same weighted residuals in the same order.
    double sum = 0.0;
    for (double const weighted : residuals) {
      sum += weighted * weighted;
    }
    cost = std::sqrt(sum);
    point = current.point();
  }

  // Makes the trial the current estimation; the previous one and its residuals are kept.
  void takeTrial() {
    std::swap(current, trial);
    std::swap(residuals, savedResiduals);
    takeCurrent();
  }

  // Back to the estimation before the trial.
  void restorePrevious(double previousCost, std::vector<int> const& permutation) {
    cost = previousCost;
    for (int j = 0; j < solvedCols; ++j) {
      point[permutation[j]] = oldPoint[permutation[j]];
    }
    std::swap(residuals, savedResiduals);
    std::swap(current, trial);
  }

  // The result; the run ends with it.
  OptimizerResult finish() {
    return OptimizerResult(std::move(current), evaluationCounter.getCount(),
                           iterationCounter.getCount());
  }

  LSProblem& problem;
  int const nR;
  int const nC;
  int const solvedCols;
  Counter iterationCounter;
  Counter evaluationCounter;
  Estimation current;
  Estimation trial;                    // after a trial: the estimation before it
  std::vector<double> residuals;       // current's weighted residuals
  std::vector<double> savedResiduals;  // after a trial: the residuals before it
  double cost = 0.0;                   // current's cost
  std::vector<double> point;           // current's point, then the trial point
  DataSet dataSet;                     // factorisation of current's weighted Jacobian
  std::vector<double> qtf;             // residuals multiplied by the transpose of Q
  std::vector<double> scale;           // column scaling, the diagonal D of the method
  std::vector<double> oldPoint;
  std::vector<double> work1;
  std::vector<double> work2;
  std::vector<double> work3;
  std::vector<double> direction;
  std::vector<double> triangle;  // scratch of the direction solve
  double delta = 0.0;            // step bound
  double lambda = 0.0;           // LM parameter
  double xNorm = 0.0;            // norm of the scaled point
  double maxCosine = 0.0;
  double ratio = 0.0;  // actual over predicted reduction of the last trial
  bool firstIteration = true;
};

void LMOptimizer::DataSet::reset(int rowCount, int columnCount) {
  rows = rowCount;
  factors.resize(static_cast<std::size_t>(rowCount) * static_cast<std::size_t>(columnCount));
  permutation.resize(static_cast<std::size_t>(columnCount));
  for (int k = 0; k < columnCount; ++k) {
    permutation[k] = k;
  }
  rank = 0;
  rDiagonal.assign(permutation.size(), 0.0);
  columnNorms.assign(permutation.size(), 0.0);
  householderScales.assign(permutation.size(), 0.0);
}

LMOptimizer::LMOptimizer()
    : LMOptimizer(kDefaultInitialStepBound, kDefaultTolerance, kDefaultTolerance, kDefaultTolerance,
                  kDefaultRankingThreshold) {}

LMOptimizer::LMOptimizer(double initialStepBound, double costTolerance, double pointTolerance,
                         double orthogonalityTolerance, double rankingThreshold)
    : initialStepBound_(initialStepBound),
      costTolerance_(costTolerance),
      pointTolerance_(pointTolerance),
      orthogonalityTolerance_(orthogonalityTolerance),
      rankingThreshold_(rankingThreshold) {}

OptimizerResult LMOptimizer::optimize(LSProblem& problem) const {
  Run run(problem);
  DataSet& dataSet = run.dataSet;
  while (true) {
    if (run.iterationCounter.countPlus()) {
      logError("Iteration counter exceeded the maximum value. return.");
      return run.finish();
    }
    if (!fitsProblem(run.current, run.residuals, run.nR, run.nC)) {
      logError("optimize estimation size does not match the problem " + std::to_string(run.nR) +
               ", " + std::to_string(run.nC));
      return run.finish();
    }
    qrDecomposition(run.current, run.solvedCols, dataSet);
    run.qtf = run.residuals;
    qtMultiplyY(run.qtf, dataSet);
    // The factorisation left the reflection vectors on the diagonal; put R's diagonal back.
    for (int k = 0; k < run.solvedCols; ++k) {
      int const pk = dataSet.permutation[k];
      dataSet.factor(k, pk) = dataSet.rDiagonal[pk];
    }
    if (run.firstIteration) {
      run.xNorm = getFirstXNorm(run.nC, run.scale, run.point, dataSet.columnNorms);
      run.delta = run.xNorm == 0.0 ? initialStepBound_ : initialStepBound_ * run.xNorm;
    }
    run.maxCosine = 0.0;
    if (run.solvedCols > 0 && run.cost != 0.0) {
      run.maxCosine = getMaxCosine(run.solvedCols, run.qtf, run.cost, dataSet);
    }
    if (run.maxCosine <= orthogonalityTolerance_) {
      return run.finish();
    }
    for (int j = 0; j < run.nC; ++j) {
      run.scale[j] = std::max(run.scale[j], dataSet.columnNorms[j]);
    }
    run.ratio = 0.0;
    while (run.ratio < kMinAcceptedRatio) {
      if (runTrial(run)) {
        return run.finish();
      }
    }
  }
}

// One trial step of the inner loop; true when the run ends with it.
bool LMOptimizer::runTrial(Run& run) const {
  std::vector<int> const& permutation = run.dataSet.permutation;
  for (int j = 0; j < run.solvedCols; ++j) {
    run.oldPoint[permutation[j]] = run.point[permutation[j]];
  }
  double const previousCost = run.cost;

  run.lambda = getLevenbergMarquardtParameter(run.qtf, run.delta, run.scale, run.dataSet,
                                              run.solvedCols, run.work1, run.work2, run.work3,
                                              run.direction, run.lambda, run.triangle);
  double stepNorm = 0.0;
  for (int j = 0; j < run.solvedCols; ++j) {
    int const pj = permutation[j];
    run.direction[pj] = -run.direction[pj];
    run.point[pj] = run.oldPoint[pj] + run.direction[pj];
    double const scaled = run.scale[pj] * run.direction[pj];
    stepNorm += scaled * scaled;
  }
  stepNorm = std::sqrt(stepNorm);
  if (run.firstIteration && stepNorm < run.delta) {
    run.delta = stepNorm;
  }

  run.problem.evaluate(run.point, run.trial);
  run.takeTrial();
  // Consulted after the evaluation: the evaluation beyond the limit is the one returned.
  if (run.evaluationCounter.countPlus()) {
    logError("Evaluation counter exceeded the maximum value. return.");
    return true;
  }

  double actRed = -1.0;
  if (0.1 * run.cost < previousCost) {
    double const r = run.cost / previousCost;
    actRed = 1.0 - r * r;
  }
  double const pc2 = previousCost * previousCost;
  double const coeff1 = squaredRStep(run) / pc2;
  double const coeff2 = run.lambda * stepNorm * stepNorm / pc2;
  double const preRed = coeff1 + 2.0 * coeff2;
  double const dirDer = -(coeff1 + coeff2);
  run.ratio = preRed == 0.0 ? 0.0 : actRed / preRed;
  updateStepBound(run, actRed, dirDer, previousCost, stepNorm);

  if (run.ratio >= kMinAcceptedRatio) {
    run.firstIteration = false;
    double sum = 0.0;
    for (int k = 0; k < run.nC; ++k) {
      double const scaled = run.scale[k] * run.point[k];
      sum += scaled * scaled;
    }
    run.xNorm = std::sqrt(sum);
  } else {
    run.restorePrevious(previousCost, permutation);
  }

  if ((std::fabs(actRed) <= costTolerance_ && preRed <= costTolerance_ && run.ratio <= 2.0) ||
      run.delta <= pointTolerance_ * run.xNorm) {
    return true;
  }
  return toleranceTooSmall(run, actRed, preRed);
}

// Squared norm of R times the step, left in work1: the Gauss-Newton part of the predicted
// reduction.
double LMOptimizer::squaredRStep(Run& run) {
  DataSet const& dataSet = run.dataSet;
  for (int j = 0; j < run.solvedCols; ++j) {
    int const pj = dataSet.permutation[j];
    double const dirJ = run.direction[pj];
    run.work1[j] = 0.0;
    for (int i = 0; i <= j; ++i) {
      run.work1[i] += dataSet.factor(i, pj) * dirJ;
    }
  }
  double sum = 0.0;
  for (int j = 0; j < run.solvedCols; ++j) {
    sum += run.work1[j] * run.work1[j];
  }
  return sum;
}

void LMOptimizer::updateStepBound(Run& run, double actRed, double dirDer, double previousCost,
                                  double stepNorm) {
  if (run.ratio <= 0.25) {
    double tmp = actRed >= 0.0 ? 0.5 : 0.5 * dirDer / (dirDer + 0.5 * actRed);
    if (tmp < 0.1 || 0.1 * run.cost >= previousCost) {
      tmp = 0.1;
    }
    run.lambda = run.lambda / tmp;
    run.delta = tmp * std::min(run.delta, 10.0 * stepNorm);
  } else if (run.lambda == 0.0 || run.ratio >= 0.75) {
    run.delta = 2.0 * stepNorm;
    run.lambda = 0.5 * run.lambda;
  }
}

// Logs and reports a stop when a tolerance is too small for further progress.
bool LMOptimizer::toleranceTooSmall(Run const& run, double actRed, double preRed) const {
  double tolerance = 0.0;
  if (std::fabs(actRed) <= kMachineEpsilon && preRed <= kMachineEpsilon && run.ratio <= 2.0) {
    tolerance = costTolerance_;
  } else if (run.delta <= kMachineEpsilon * run.xNorm) {
    tolerance = pointTolerance_;
  } else if (run.maxCosine <= kMachineEpsilon) {
    tolerance = orthogonalityTolerance_;
  } else {
    return false;
  }
  logError("optimize " + std::to_string(tolerance));
  return true;
}

void LMOptimizer::qrDecomposition(Estimation const& estimation, int solvedCols,
                                  DataSet& dataSet) const {
  RowMatrix const& jacobian = estimation.jacobian();
  int const nR = static_cast<int>(jacobian.rows());
  int const nC = nR > 0 ? static_cast<int>(jacobian.columns()) : 0;
  dataSet.reset(nR, nC);
  auto const column = [&dataSet, nR](int c) {
    return dataSet.factors.data() + static_cast<std::size_t>(c) * static_cast<std::size_t>(nR);
  };
  // The residuals are target minus value; the method wants the Jacobian of their negative.
  for (int i = 0; i < nR; ++i) {
    double const weight = estimation.weightSqrt(static_cast<std::size_t>(i));
    for (int j = 0; j < nC; ++j) {
      column(j)[i] = -(jacobian(static_cast<std::size_t>(i), static_cast<std::size_t>(j)) * weight);
    }
  }
  std::vector<int>& permutation = dataSet.permutation;
  for (int k = 0; k < nC; ++k) {
    double const* const a = column(k);
    double norm2 = 0.0;
    for (int i = 0; i < nR; ++i) {
      norm2 += a[i] * a[i];
    }
    dataSet.columnNorms[k] = std::sqrt(norm2);
  }

  for (int k = 0; k < nC; ++k) {
    if (k >= nR) {
      // No rows left to reflect; only reachable with a non-positive ranking threshold.
      dataSet.rank = k;
      return;
    }
    int nextColumn = k;
    double best = -std::numeric_limits<double>::infinity();
    for (int i = k; i < nC; ++i) {
      double const* const a = column(permutation[i]);
      double norm2 = 0.0;
      for (int j = k; j < nR; ++j) {
        norm2 += a[j] * a[j];
      }
      if (std::isinf(norm2) || std::isnan(norm2)) {
        logError("optimize " + std::to_string(nR) + ", " + std::to_string(nC));
        dataSet.rank = k;
        return;
      }
      if (norm2 > best) {
        best = norm2;
        nextColumn = i;
      }
    }
    if (best <= rankingThreshold_) {
      dataSet.rank = k;
      return;
    }
    std::swap(permutation[nextColumn], permutation[k]);
    int const pk = permutation[k];
    double* const v = column(pk);
    double const akk = v[k];
    double const alpha = akk > 0.0 ? -std::sqrt(best) : std::sqrt(best);
    double const betak = 1.0 / (best - akk * alpha);
    dataSet.householderScales[pk] = betak;
    dataSet.rDiagonal[pk] = alpha;
    v[k] = akk - alpha;
    for (int i = k + 1; i < nC; ++i) {
      double* const c = column(permutation[i]);
      double sum = 0.0;
      for (int j = k; j < nR; ++j) {
        sum += v[j] * c[j];
      }
      double const gamma = betak * sum;
      for (int j = k; j < nR; ++j) {
        c[j] -= gamma * v[j];
      }
    }
  }
  dataSet.rank = solvedCols;
}

std::vector<double>& LMOptimizer::qtMultiplyY(std::vector<double>& y,
                                              DataSet const& dataSet) const {
  int const nR = dataSet.rows;
  int const nC = static_cast<int>(dataSet.permutation.size());
  for (int k = 0; k < nC && k < nR; ++k) {
    int const pk = dataSet.permutation[k];
    double const* const v =
        dataSet.factors.data() + static_cast<std::size_t>(pk) * static_cast<std::size_t>(nR);
    double sum = 0.0;
    for (int i = k; i < nR; ++i) {
      sum += v[i] * y[i];
    }
    double const gamma = dataSet.householderScales[pk] * sum;
    for (int i = k; i < nR; ++i) {
      y[i] -= gamma * v[i];
    }
  }
  return y;
}

double LMOptimizer::getLevenbergMarquardtParameter(
    std::vector<double> const& qy, double delta, std::vector<double> const& scale,
    DataSet const& dataSet, int solvedCols, std::vector<double>& work1, std::vector<double>& work2,
    std::vector<double>& work3, std::vector<double>& direction, double lambda,
    std::vector<double>& triangle) const {
  std::vector<int> const& permutation = dataSet.permutation;
  gaussNewtonStep(dataSet, qy, direction);
  double dxNorm = getDxNorm(scale, solvedCols, work1, direction, permutation);
  double fp = dxNorm - delta;
  if (fp <= 0.1 * delta) {
    return 0.0;  // the Gauss-Newton step fits into the bound
  }
  double parl = 0.0;
  if (dataSet.rank == solvedCols) {
    parl = lowerBound(dataSet, solvedCols, scale, dxNorm, fp, delta, work1);
  }
  double const gNorm = gradientNorm(dataSet, solvedCols, qy, scale);
  double paru = gNorm / delta;
  if (paru == 0.0) {
    paru = kSafeMin / std::min(delta, 0.1);
  }
  lambda = std::min(paru, std::max(lambda, parl));
  if (lambda == 0.0) {
    lambda = gNorm / dxNorm;
  }
  for (int countdown = kMaxParameterPasses - 1; countdown >= 0; --countdown) {
    if (lambda == 0.0) {
      lambda = std::max(kSafeMin, 0.001 * paru);
    }
    double const sqrtLambda = std::sqrt(lambda);
    for (int j = 0; j < solvedCols; ++j) {
      work1[permutation[j]] = sqrtLambda * scale[permutation[j]];
    }
    getLevenbergMarquardtDirection(qy, work1, work2, dataSet, solvedCols, work3, direction,
                                   triangle);
    dxNorm = getDxNorm(scale, solvedCols, work3, direction, permutation);
    double const previousFp = fp;
    fp = dxNorm - delta;
    if (std::fabs(fp) <= 0.1 * delta || (parl == 0.0 && fp <= previousFp && previousFp < 0.0)) {
      return lambda;
    }
    double const correction =
        newtonCorrection(dataSet, solvedCols, scale, dxNorm, fp, delta, work2, work3, work1);
    if (fp > 0.0) {
      parl = std::max(parl, lambda);
    } else if (fp < 0.0) {
      paru = std::min(paru, lambda);
    }
    lambda = std::max(parl, lambda + correction);
  }
  return lambda;
}

void LMOptimizer::getLevenbergMarquardtDirection(
    std::vector<double> const& qy, std::vector<double> const& diag, std::vector<double>& lmDiag,
    DataSet const& dataSet, int solvedCols, std::vector<double>& work,
    std::vector<double>& direction, std::vector<double>& triangle) const {
  std::vector<int> const& permutation = dataSet.permutation;
  // The rotated triangle built here must not reach the data set: R's upper triangle is copied
  // and mirrored below the diagonal; direction keeps R's diagonal.
  triangle.resize(static_cast<std::size_t>(solvedCols) * static_cast<std::size_t>(solvedCols));
  for (int j = 0; j < solvedCols; ++j) {
    for (int i = 0; i <= j; ++i) {
      cell(triangle, solvedCols, i, j) = dataSet.factor(i, permutation[j]);
    }
  }
  for (int j = 0; j < solvedCols; ++j) {
    for (int i = j + 1; i < solvedCols; ++i) {
      cell(triangle, solvedCols, i, j) = cell(triangle, solvedCols, j, i);
    }
    direction[j] = dataSet.rDiagonal[permutation[j]];
    work[j] = qy[j];
  }
  for (int j = 0; j < solvedCols; ++j) {
    double const d = diag[permutation[j]];
    if (d != 0.0) {
      std::fill(lmDiag.begin() + j + 1, lmDiag.end(), 0.0);
    }
    lmDiag[j] = d;
    rotateDiagonalRow(triangle, solvedCols, j, lmDiag, work);
    lmDiag[j] = cell(triangle, solvedCols, j, j);
    cell(triangle, solvedCols, j, j) = direction[j];
  }
  solveRotatedTriangle(triangle, solvedCols, lmDiag, work);
  for (size_t j = 0; j < direction.size(); ++j) {
    direction[permutation[j]] = work[j];
  }
}

double LMOptimizer::getFirstXNorm(int n, std::vector<double>& scale,
                                  std::vector<double> const& point,
                                  std::vector<double> const& columnNorms) const {
  double sum = 0.0;
  for (int k = 0; k < n; ++k) {
    scale[k] = columnNorms[k] == 0.0 ? 1.0 : columnNorms[k];
    double const scaled = point[k] * scale[k];
    sum += scaled * scaled;
  }
  return std::sqrt(sum);
}

double LMOptimizer::getMaxCosine(int solvedCols, std::vector<double> const& qtf, double cost,
                                 DataSet const& dataSet) const {
  double maxCosine = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = dataSet.permutation[j];
    double const norm = dataSet.columnNorms[pj];
    if (norm != 0.0) {
      double sum = 0.0;
      for (int i = 0; i <= j; ++i) {
        sum += dataSet.factor(i, pj) * qtf[i];
      }
      maxCosine = std::max(maxCosine, std::fabs(sum) / (norm * cost));
    }
  }
  return maxCosine;
}

double LMOptimizer::getDxNorm(std::vector<double> const& scale, int solvedCols,
                              std::vector<double>& work, std::vector<double> const& direction,
                              std::vector<int> const& permutation) const {
  double sum = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work[pj] = scale[pj] * direction[pj];
    sum += work[pj] * work[pj];
  }
  return std::sqrt(sum);
}

}  // namespace Vantis::Location
