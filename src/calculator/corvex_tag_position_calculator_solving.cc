// Position solving of CorvexTagPositionCalculator: the weighted mean, the least-squares range fit
// and their small numeric helpers.
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "calculator/corvex_tag_position_calculator.h"
#include "geometry/simple_rssi_to_distance_converter.h"
#include "interface/corvex_tag_logger.h"
#include "solver/constriction_inspector.h"
#include "solver/estimation.h"
#include "solver/lm_optimizer.h"
#include "solver/ls_problem.h"
#include "solver/optimizer_result.h"
#include "solver/tag_value_and_jacobian_function.h"

namespace Vantis::Location {
namespace {

// A range below this (metres) means the RSSI was out of the model's range.
constexpr double kMinRange = 0.0001;
// Fewer observers than this cannot pin down a range fit.
constexpr std::size_t kMinLeastSquaresRecords = 3;
// Observers closer together than this spread are averaged instead of fitted.
constexpr double kMinLeastSquaresSpread = 5.0;
constexpr double kMinWeightSum = 0.0001;
constexpr int kMaxSolverEvaluations = 1000;
constexpr int kMaxSolverIterations = 1000;

// A missing entry reads as NaN rather than out of bounds.
double entry(std::vector<double> const& row, std::size_t index) {
  return index < row.size() ? row[index] : std::numeric_limits<double>::quiet_NaN();
}

std::vector<double> const& rowOrEmpty(std::vector<std::vector<double>> const& matrix,
                                      std::size_t index) {
  static std::vector<double> const kEmpty;
  return index < matrix.size() ? matrix[index] : kEmpty;
}

// The spread of the points {xs[i], ys[i]}: the square root of their mean distance from their
// centroid (not an RMS); 0.0 for no points.
double spreadOf(std::vector<double> const& xs, std::vector<double> const& ys) {
  if (xs.empty()) {
    return 0.0;
  }
  double sumX = 0.0;
  double sumY = 0.0;
  for (std::size_t i = 0; i < xs.size(); ++i) {
    sumX += xs[i];
    sumY += ys[i];
  }
  double const count = static_cast<double>(xs.size());
  double const meanX = sumX / count;
  double const meanY = sumY / count;
  double distanceSum = 0.0;
  for (std::size_t i = 0; i < xs.size(); ++i) {
    double const dx = xs[i] - meanX;
    double const dy = ys[i] - meanY;
    distanceSum += std::sqrt(dx * dx + dy * dy);
  }
  return std::sqrt(distanceSum / count);
}

// The weighted mean of the points given by their columns xs and ys.
TagBestLocation averageResult(std::vector<double> const& xs, std::vector<double> const& ys,
                              std::vector<double> const& accs, std::vector<double> const& weights,
                              std::vector<long long> const& timeStamps) {
  using Calculator = CorvexTagPositionCalculator;
  double const lon = Calculator::getWeightedAvg(xs, weights);
  double const lat = Calculator::getWeightedAvg(ys, weights);
  double const acc = Calculator::getWeightedAvg(accs, weights);
  double const confidence = Calculator::getWeightedAvg(weights, weights);
  long long const timeStamp = Calculator::getLatestTimeStamp(timeStamps);
  return TagBestLocation(lon, lat, timeStamp, confidence, static_cast<float>(acc));
}

}  // namespace

TagBestLocation CorvexTagPositionCalculator::getTagResult(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  // The observers' east and north (metres) as two columns: the anchors of the range model.
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<double> accs;
  std::vector<double> dists;
  std::vector<double> weights;
  std::vector<long long> timeStamps;
  xs.reserve(infos.size());
  ys.reserve(infos.size());
  accs.reserve(infos.size());
  dists.reserve(infos.size());
  weights.reserve(infos.size());
  timeStamps.reserve(infos.size());
  bool rssiOverLimit = false;
  for (BleScanInfoWithConfidence const& info : infos) {
    LastLocation const& location = info.getLastLocationConst();
    BlueToothRecord const& record = info.getBlueToothRecordConst();
    xs.push_back(location.getLon());
    ys.push_back(location.getLat());
    accs.push_back(static_cast<double>(location.getAcc()));
    double const dist =
        SimpleRssiToDistanceConverter::convert(static_cast<double>(record.getRssi()));
    rssiOverLimit = rssiOverLimit || dist < kMinRange;
    dists.push_back(dist);
    weights.push_back(info.getNewConfidence() * info.getNewConfidence());
    timeStamps.push_back(record.getTimeStamp());
  }
  confidenceWeights_ = weights;

  TagBestLocation result;
  if (infos.size() < kMinLeastSquaresRecords || spreadOf(xs, ys) < kMinLeastSquaresSpread) {
    // No points: getAvgResult says so, as it does when it transposes an empty list.
    result = infos.empty() ? getAvgResult({}, accs, weights, timeStamps)
                           : averageResult(xs, ys, accs, weights, timeStamps);
    if (trace_ != nullptr) {
      trace_->solver = LocateTrace::Solver::kWeightedMean;
    }
  } else {
    std::shared_ptr<ValueAndJacobianFunction> const function =
        std::make_shared<TagValueAndJacobianFunction>(std::move(xs), std::move(ys));
    result = getOptimumResult(dists, accs, weights, timeStamps, function, trace_);
  }
  if (result.getErrorCode() == ErrorCode::SUCCESS && rssiOverLimit) {
    result.setErrorCode(ErrorCode::RSSI_OVER_LIMIT);
  }
  return result;
}

TagBestLocation CorvexTagPositionCalculator::getAvgResult(
    std::vector<std::vector<double>> const& points, std::vector<double> const& accs,
    std::vector<double> const& weights, std::vector<long long> const& timeStamps) {
  std::vector<std::vector<double>> const columns = transpose(points);
  return averageResult(rowOrEmpty(columns, 0), rowOrEmpty(columns, 1), accs, weights, timeStamps);
}

TagBestLocation CorvexTagPositionCalculator::getOptimumResult(
    std::vector<double> const& dists, std::vector<double> const& accs,
    std::vector<double> const& weights, std::vector<long long> const& timeStamps,
    std::shared_ptr<ValueAndJacobianFunction> const& function, LocateTrace* trace) {
  // The local plane's origin is the oldest record's position.
  std::vector<double> const start = {0.0, 0.0};
  LSProblem problem(function, dists, start, weights, ConstrictionInspector<Estimation>());
  problem.setMaxEvaluations(kMaxSolverEvaluations);
  problem.setMaxIterations(kMaxSolverIterations);
  std::shared_ptr<LMOptimizer> const optimizer = std::make_shared<LMOptimizer>();
  OptimizerResult const optimum = optimizer->optimize(problem);
  std::vector<double> point = optimum.getPoint();
  if (point.size() < start.size()) {
    point = start;  // a problem without a model yields no point
  }
  double const rms = optimum.getRMS();
  if (trace != nullptr) {
    trace->solver = LocateTrace::Solver::kLeastSquares;
    trace->solverIterations = optimum.getIterations();
    trace->solverEvaluations = optimum.getEvaluations();
    trace->solverRms = rms;
  }

  float const acc = static_cast<float>(getWeightedAvg(accs, weights) + rms);
  double const confidence = getWeightedAvg(weights, weights);
  long long const timeStamp = getLatestTimeStamp(timeStamps);
  return TagBestLocation(point[0], point[1], timeStamp, confidence, acc);
}

double CorvexTagPositionCalculator::getWeightedAvg(std::vector<double> const& values,
                                                   std::vector<double> const& weights) {
  if (values.empty() || values.size() != weights.size()) {
    CorvexTagLogger::getInstance().error("getWeightedAvg input illegal");
    return 0.0;
  }
  double weightSum = 0.0;
  double weightedSum = 0.0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    weightSum += weights[i];
    weightedSum += values[i] * weights[i];
  }
  if (weightSum < kMinWeightSum) {
    CorvexTagLogger::getInstance().error("sum of weight less than 0.0001");
    return 0.0;
  }
  return weightedSum / weightSum;
}

std::vector<std::vector<double>> CorvexTagPositionCalculator::transpose(
    std::vector<std::vector<double>> const& matrix) {
  if (matrix.empty()) {
    CorvexTagLogger::getInstance().error("transpose input row = 0");
    return {};
  }
  if (matrix[0].empty()) {
    CorvexTagLogger::getInstance().error("transpose input col = 0");
    return {};
  }
  std::size_t const columns = matrix[0].size();
  std::vector<std::vector<double>> transposed(columns, std::vector<double>(matrix.size()));
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    for (std::size_t j = 0; j < columns; ++j) {
      transposed[j][i] = entry(matrix[i], j);
    }
  }
  return transposed;
}

double CorvexTagPositionCalculator::stdPointError(std::vector<std::vector<double>> const& points) {
  std::vector<double> xs;
  std::vector<double> ys;
  for (std::vector<double> const& point : points) {
    xs.push_back(entry(point, 0));
    ys.push_back(entry(point, 1));
  }
  return spreadOf(xs, ys);
}

std::vector<double> CorvexTagPositionCalculator::meanPoint(
    std::vector<std::vector<double>> const& points) {
  if (points.empty()) {
    return {0.0, 0.0};
  }
  double sumX = 0.0;
  double sumY = 0.0;
  for (std::vector<double> const& point : points) {
    sumX += entry(point, 0);
    sumY += entry(point, 1);
  }
  double const count = static_cast<double>(points.size());
  return {sumX / count, sumY / count};
}

long long CorvexTagPositionCalculator::getLatestTimeStamp(
    std::vector<long long> const& timeStamps) {
  if (timeStamps.empty()) {
    CorvexTagLogger::getInstance().error("timeStamp has no data");
    return 0;
  }
  long long latest = timeStamps[0];
  for (long long const timeStamp : timeStamps) {
    if (timeStamp > latest) {
      latest = timeStamp;
    }
  }
  return latest;
}

std::vector<double> CorvexTagPositionCalculator::getRefPos(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  if (infos.empty()) {
    return {0.0, 0.0};
  }
  LastLocation const& oldest = infos.front().getLastLocationConst();
  return {oldest.getLon(), oldest.getLat()};
}

}  // namespace Vantis::Location
