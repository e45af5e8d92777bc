#include "solver/lm_optimizer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

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

// True when the weighted Jacobian and residuals have the sizes the problem announced; the
// kernels index by those sizes.
bool fitsProblem(std::vector<std::vector<double>> const& jacobian,
                 std::vector<double> const& residuals, int nR, int nC) {
  if (static_cast<int>(jacobian.size()) != nR || static_cast<int>(residuals.size()) != nR ||
      (nR == 0 && nC != 0)) {
    return false;
  }
  return std::all_of(jacobian.begin(), jacobian.end(), [nC](std::vector<double> const& row) {
    return static_cast<int>(row.size()) == nC;
  });
}

using Matrix = std::vector<std::vector<double>>;

// Gauss-Newton step: R x = qy by back substitution over the first rank columns.
void gaussNewtonStep(Matrix const& factors, std::vector<int> const& permutation,
                     std::vector<double> const& rDiagonal, int rank, std::vector<double> const& qy,
                     std::vector<double>& direction) {
  int const nC = static_cast<int>(permutation.size());
  for (int j = 0; j < rank; ++j) {
    direction[permutation[j]] = qy[j];
  }
  for (int j = rank; j < nC; ++j) {
    direction[permutation[j]] = 0.0;
  }
  for (int k = rank - 1; k >= 0; --k) {
    int const pk = permutation[k];
    double const y = direction[pk] / rDiagonal[pk];
    for (int i = 0; i < k; ++i) {
      direction[permutation[i]] -= y * factors[i][pk];
    }
    direction[pk] = y;
  }
}

// Lower bound of the LM parameter from the Newton step at parameter 0; work1 holds the
// scaled Gauss-Newton step on entry.
double lowerBound(Matrix const& factors, std::vector<int> const& permutation,
                  std::vector<double> const& rDiagonal, int solvedCols,
                  std::vector<double> const& scale, double dxNorm, double fp, double delta,
                  std::vector<double>& work1) {
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work1[pj] = (work1[pj] / dxNorm) * scale[pj];
  }
  double sum2 = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    double sum = 0.0;
    for (int i = 0; i < j; ++i) {
      sum += factors[i][pj] * work1[permutation[i]];
    }
    double const s = (work1[pj] - sum) / rDiagonal[pj];
    work1[pj] = s;
    sum2 += s * s;
  }
  return fp / (delta * sum2);
}

// Norm of the scaled gradient, which bounds the LM parameter from above.
double gradientNorm(Matrix const& factors, std::vector<int> const& permutation, int solvedCols,
                    std::vector<double> const& qy, std::vector<double> const& scale) {
  double sum2 = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    double sum = 0.0;
    for (int i = 0; i <= j; ++i) {
      sum += factors[i][pj] * qy[i];
    }
    sum /= scale[pj];
    sum2 += sum * sum;
  }
  return std::sqrt(sum2);
}

// Newton correction of the LM parameter. Uses the factor matrix as factorised (Householder
// entries below the diagonal), not the triangle rotated by the direction solve.
double newtonCorrection(Matrix const& factors, std::vector<int> const& permutation, int solvedCols,
                        std::vector<double> const& scale, double dxNorm, double fp, double delta,
                        std::vector<double> const& lmDiag,
                        std::vector<double> const& scaledDirection, std::vector<double>& work1) {
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work1[pj] = scaledDirection[pj] * scale[pj] / dxNorm;
  }
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    work1[pj] /= lmDiag[j];
    double const t = work1[pj];
    for (int i = j + 1; i < solvedCols; ++i) {
      work1[permutation[i]] -= factors[i][pj] * t;
    }
  }
  double sum2 = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    double const s = work1[permutation[j]];
    sum2 += s * s;
  }
  return fp / (delta * sum2);
}

// Eliminates the diagonal row diag[p_j] from the triangle by Givens rotations, carrying the
// right-hand side work along.
void rotateDiagonalRow(Matrix& factors, std::vector<int> const& permutation, int solvedCols, int j,
                       std::vector<double>& lmDiag, std::vector<double>& work) {
  double q = 0.0;
  for (int k = j; k < solvedCols; ++k) {
    if (lmDiag[k] == 0.0) {
      continue;
    }
    int const pk = permutation[k];
    double const r = factors[k][pk];
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
    factors[k][pk] = cos * r + sin * lmDiag[k];
    double const t = cos * work[k] + sin * q;
    q = -sin * work[k] + cos * q;
    work[k] = t;
    for (int i = k + 1; i < solvedCols; ++i) {
      double const u = factors[i][pk];
      factors[i][pk] = cos * u + sin * lmDiag[i];
      lmDiag[i] = -sin * u + cos * lmDiag[i];
    }
  }
}

// Solves the rotated triangle for work; a singular triangle gets a least-squares solution
// with the trailing components zeroed.
void solveRotatedTriangle(Matrix const& factors, std::vector<int> const& permutation,
                          int solvedCols, std::vector<double> const& lmDiag,
                          std::vector<double>& work) {
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
    int const pj = permutation[j];
    double sum = 0.0;
    for (int i = j + 1; i < nSing; ++i) {
      sum += factors[i][pj] * work[i];
    }
    work[j] = (work[j] - sum) / lmDiag[j];
  }
}

}  // namespace

// Working state of one optimize call.
struct LMOptimizer::Run {
  explicit Run(LSProblem& problem)
      : problem(problem),
        nR(problem.getObservationSize()),
        nC(problem.getParameterSize()),
        solvedCols(nR <= nC ? nR : nC),
        iterationCounter(problem.getMaxIterations()),
        evaluationCounter(problem.getMaxEvaluations()),
        current(start(problem, evaluationCounter)),
        residuals(current.getResiduals()),
        cost(current.getCost()),
        point(current.getPoint()),
        qtf(nR),
        scale(nC),
        oldPoint(nC),
        work1(nC),
        work2(nC),
        work3(nC),
        direction(nC) {}

  // Counts and performs the start evaluation.
  static Estimation start(LSProblem& problem, Counter& evaluationCounter) {
    evaluationCounter.countPlus();
    Estimation estimation = problem.evaluate(problem.getStart());
    problem.getConstrictionInspector();
    return estimation;
  }

  void take(Estimation const& estimation) {
    current = estimation;
    residuals = current.getResiduals();
    cost = current.getCost();
    point = current.getPoint();
  }

  OptimizerResult result() const {
    return OptimizerResult(current, evaluationCounter.getCount(), iterationCounter.getCount());
  }

  LSProblem& problem;
  int const nR;
  int const nC;
  int const solvedCols;
  Counter iterationCounter;
  Counter evaluationCounter;
  Estimation current;
  std::vector<double> residuals;  // current's weighted residuals
  double cost;                    // current's cost
  std::vector<double> point;      // current's point
  std::vector<double> qtf;        // residuals multiplied by the transpose of Q
  std::vector<double> scale;      // column scaling, the diagonal D of the method
  std::vector<double> oldPoint;
  std::vector<double> work1;
  std::vector<double> work2;
  std::vector<double> work3;
  std::vector<double> direction;
  double delta = 0.0;   // step bound
  double lambda = 0.0;  // LM parameter
  double xNorm = 0.0;   // norm of the scaled point
  double maxCosine = 0.0;
  double ratio = 0.0;  // actual over predicted reduction of the last trial
  bool firstIteration = true;
};

LMOptimizer::DataSet::DataSet(std::vector<std::vector<double>> const& factors,
                              std::vector<int> const& permutation, int rank,
                              std::vector<double> const& rDiagonal,
                              std::vector<double> const& columnNorms,
                              std::vector<double> const& householderScales)
    : factors(factors),
      permutation(permutation),
      rank(rank),
      rDiagonal(rDiagonal),
      columnNorms(columnNorms),
      householderScales(householderScales) {}

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
  while (true) {
    if (run.iterationCounter.countPlus()) {
      logError("Iteration counter exceeded the maximum value. return.");
      return run.result();
    }
    Estimation const previous = run.current;
    std::vector<std::vector<double>> const jacobian = run.current.getJacobian();
    if (!fitsProblem(jacobian, run.residuals, run.nR, run.nC)) {
      logError("optimize estimation size does not match the problem " + std::to_string(run.nR) +
               ", " + std::to_string(run.nC));
      return run.result();
    }
    DataSet dataSet = qrDecomposition(jacobian, run.solvedCols);
    run.qtf = run.residuals;
    qtMultiplyY(run.qtf, dataSet);
    // The factorisation left the reflection vectors on the diagonal; put R's diagonal back.
    for (int k = 0; k < run.solvedCols; ++k) {
      int const pk = dataSet.permutation[k];
      dataSet.factors[k][pk] = dataSet.rDiagonal[pk];
    }
    if (run.firstIteration) {
      run.xNorm = getFirstXNorm(run.nC, run.scale, run.point, dataSet.columnNorms);
      run.delta = run.xNorm == 0.0 ? initialStepBound_ : initialStepBound_ * run.xNorm;
    }
    run.maxCosine = 0.0;
    if (run.solvedCols > 0 && run.cost != 0.0) {
      run.maxCosine = getMaxCosine(run.solvedCols, run.qtf, run.cost, dataSet.factors,
                                   dataSet.permutation, dataSet.columnNorms);
    }
    if (run.maxCosine <= orthogonalityTolerance_) {
      return run.result();
    }
    for (int j = 0; j < run.nC; ++j) {
      run.scale[j] = std::max(run.scale[j], dataSet.columnNorms[j]);
    }
    run.ratio = 0.0;
    while (run.ratio < kMinAcceptedRatio) {
      if (runTrial(run, dataSet, previous)) {
        return run.result();
      }
    }
  }
}

// One trial step of the inner loop; true when the run ends with it.
bool LMOptimizer::runTrial(Run& run, DataSet const& dataSet, Estimation const& previous) const {
  std::vector<int> const& permutation = dataSet.permutation;
  for (int j = 0; j < run.solvedCols; ++j) {
    run.oldPoint[permutation[j]] = run.point[permutation[j]];
  }
  double const previousCost = run.cost;
  std::vector<double> const savedResiduals = run.residuals;

  run.lambda =
      getLevenbergMarquardtParameter(run.qtf, run.delta, run.scale, dataSet, run.solvedCols,
                                     run.work1, run.work2, run.work3, run.direction, run.lambda);
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

  run.take(run.problem.evaluate(run.point));
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
  double const coeff1 = squaredRStep(run, dataSet) / pc2;
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
    run.cost = previousCost;
    for (int j = 0; j < run.solvedCols; ++j) {
      run.point[permutation[j]] = run.oldPoint[permutation[j]];
    }
    run.residuals = savedResiduals;
    run.current = previous;
  }

  if ((std::fabs(actRed) <= costTolerance_ && preRed <= costTolerance_ && run.ratio <= 2.0) ||
      run.delta <= pointTolerance_ * run.xNorm) {
    return true;
  }
  return toleranceTooSmall(run, actRed, preRed);
}

// Squared norm of R times the step, left in work1: the Gauss-Newton part of the predicted
// reduction.
double LMOptimizer::squaredRStep(Run& run, DataSet const& dataSet) {
  for (int j = 0; j < run.solvedCols; ++j) {
    int const pj = dataSet.permutation[j];
    double const dirJ = run.direction[pj];
    run.work1[j] = 0.0;
    for (int i = 0; i <= j; ++i) {
      run.work1[i] += dataSet.factors[i][pj] * dirJ;
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

LMOptimizer::DataSet LMOptimizer::qrDecomposition(std::vector<std::vector<double>> const& jacobian,
                                                  int solvedCols) const {
  int const nR = static_cast<int>(jacobian.size());
  int const nC = nR > 0 ? static_cast<int>(jacobian[0].size()) : 0;
  // The residuals are target minus value; the method wants the Jacobian of their negative.
  Matrix factors(nR, std::vector<double>(nC, 0.0));
  for (int i = 0; i < nR; ++i) {
    int const columns = std::min(nC, static_cast<int>(jacobian[i].size()));
    for (int j = 0; j < columns; ++j) {
      factors[i][j] = -jacobian[i][j];
    }
  }
  std::vector<int> permutation(nC);
  for (int k = 0; k < nC; ++k) {
    permutation[k] = k;
  }
  std::vector<double> rDiagonal(nC, 0.0);
  std::vector<double> columnNorms(nC, 0.0);
  std::vector<double> householderScales(nC, 0.0);
  for (int k = 0; k < nC; ++k) {
    double norm2 = 0.0;
    for (int i = 0; i < nR; ++i) {
      double const a = factors[i][k];
      norm2 += a * a;
    }
    columnNorms[k] = std::sqrt(norm2);
  }

  auto const partial = [&](int rank) {
    return DataSet(factors, permutation, rank, rDiagonal, columnNorms, householderScales);
  };
  for (int k = 0; k < nC; ++k) {
    if (k >= nR) {
      // No rows left to reflect; only reachable with a non-positive ranking threshold.
      return partial(k);
    }
    int nextColumn = k;
    double best = -std::numeric_limits<double>::infinity();
    for (int i = k; i < nC; ++i) {
      double norm2 = 0.0;
      for (int j = k; j < nR; ++j) {
        double const a = factors[j][permutation[i]];
        norm2 += a * a;
      }
      if (std::isinf(norm2) || std::isnan(norm2)) {
        logError("optimize " + std::to_string(nR) + ", " + std::to_string(nC));
        return partial(k);
      }
      if (norm2 > best) {
        best = norm2;
        nextColumn = i;
      }
    }
    if (best <= rankingThreshold_) {
      return partial(k);
    }
    std::swap(permutation[nextColumn], permutation[k]);
    int const pk = permutation[k];
    double const akk = factors[k][pk];
    double const alpha = akk > 0.0 ? -std::sqrt(best) : std::sqrt(best);
    double const betak = 1.0 / (best - akk * alpha);
    householderScales[pk] = betak;
    rDiagonal[pk] = alpha;
    factors[k][pk] = akk - alpha;
    for (int i = k + 1; i < nC; ++i) {
      int const c = permutation[i];
      double sum = 0.0;
      for (int j = k; j < nR; ++j) {
        sum += factors[j][pk] * factors[j][c];
      }
      double const gamma = betak * sum;
      for (int j = k; j < nR; ++j) {
        factors[j][c] -= gamma * factors[j][pk];
      }
    }
  }
  return partial(solvedCols);
}

std::vector<double>& LMOptimizer::qtMultiplyY(std::vector<double>& y,
                                              DataSet const& dataSet) const {
  int const nR = static_cast<int>(dataSet.factors.size());
  int const nC = static_cast<int>(dataSet.permutation.size());
  for (int k = 0; k < nC && k < nR; ++k) {
    int const pk = dataSet.permutation[k];
    double sum = 0.0;
    for (int i = k; i < nR; ++i) {
      sum += dataSet.factors[i][pk] * y[i];
    }
    double const gamma = dataSet.householderScales[pk] * sum;
    for (int i = k; i < nR; ++i) {
      y[i] -= gamma * dataSet.factors[i][pk];
    }
  }
  return y;
}

double LMOptimizer::getLevenbergMarquardtParameter(
    std::vector<double> const& qy, double delta, std::vector<double> const& scale,
    DataSet const& dataSet, int solvedCols, std::vector<double>& work1, std::vector<double>& work2,
    std::vector<double>& work3, std::vector<double>& direction, double lambda) const {
  // The factor matrix is only read here (the direction solve rotates its own copy), so it is
  // not copied; the short vectors are, in case a caller hands one in as a work vector too.
  Matrix const& factors = dataSet.factors;
  std::vector<int> const permutation = dataSet.permutation;
  std::vector<double> const rDiagonal = dataSet.rDiagonal;
  int const rank = dataSet.rank;

  gaussNewtonStep(factors, permutation, rDiagonal, rank, qy, direction);
  double dxNorm = getDxNorm(scale, solvedCols, work1, direction, permutation);
  double fp = dxNorm - delta;
  if (fp <= 0.1 * delta) {
    return 0.0;  // the Gauss-Newton step fits into the bound
  }
  double parl = 0.0;
  if (rank == solvedCols) {
    parl = lowerBound(factors, permutation, rDiagonal, solvedCols, scale, dxNorm, fp, delta, work1);
  }
  double const gNorm = gradientNorm(factors, permutation, solvedCols, qy, scale);
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
    getLevenbergMarquardtDirection(qy, work1, work2, dataSet, solvedCols, work3, direction);
    dxNorm = getDxNorm(scale, solvedCols, work3, direction, permutation);
    double const previousFp = fp;
    fp = dxNorm - delta;
    if (std::fabs(fp) <= 0.1 * delta || (parl == 0.0 && fp <= previousFp && previousFp < 0.0)) {
      return lambda;
    }
    double const correction = newtonCorrection(factors, permutation, solvedCols, scale, dxNorm, fp,
                                               delta, work2, work3, work1);
    if (fp > 0.0) {
      parl = std::max(parl, lambda);
    } else if (fp < 0.0) {
      paru = std::min(paru, lambda);
    }
    lambda = std::max(parl, lambda + correction);
  }
  return lambda;
}

void LMOptimizer::getLevenbergMarquardtDirection(std::vector<double> const& qy,
                                                 std::vector<double> const& diag,
                                                 std::vector<double>& lmDiag,
                                                 DataSet const& dataSet, int solvedCols,
                                                 std::vector<double>& work,
                                                 std::vector<double>& direction) const {
  // Private copy: the rotated triangle built here must not reach the caller. Only the leading
  // solvedCols rows are ever read, so the rest of a tall matrix is not copied.
  auto const leadingRows = static_cast<Matrix::difference_type>(
      std::min(static_cast<std::size_t>(std::max(solvedCols, 0)), dataSet.factors.size()));
  Matrix factors(dataSet.factors.begin(), dataSet.factors.begin() + leadingRows);
  std::vector<int> const permutation = dataSet.permutation;
  std::vector<double> const rDiagonal = dataSet.rDiagonal;

  // Mirror R's strict upper triangle below the diagonal; direction keeps R's diagonal.
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    for (int i = j + 1; i < solvedCols; ++i) {
      factors[i][pj] = factors[j][permutation[i]];
    }
    direction[j] = rDiagonal[pj];
    work[j] = qy[j];
  }
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    double const d = diag[pj];
    if (d != 0.0) {
      std::fill(lmDiag.begin() + j + 1, lmDiag.end(), 0.0);
    }
    lmDiag[j] = d;
    rotateDiagonalRow(factors, permutation, solvedCols, j, lmDiag, work);
    lmDiag[j] = factors[j][pj];
    factors[j][pj] = direction[j];
  }
  solveRotatedTriangle(factors, permutation, solvedCols, lmDiag, work);
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
                                 std::vector<std::vector<double>> const& factors,
                                 std::vector<int> const& permutation,
                                 std::vector<double> const& columnNorms) const {
  double maxCosine = 0.0;
  for (int j = 0; j < solvedCols; ++j) {
    int const pj = permutation[j];
    double const norm = columnNorms[pj];
    if (norm != 0.0) {
      double sum = 0.0;
      for (int i = 0; i <= j; ++i) {
        sum += factors[i][pj] * qtf[i];
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
