#include "filter/confidence_calculator.h"

#include <string>

#include "geometry/gnss_utils.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
constexpr size_t kMaxInfos = 5000;
constexpr double kMinMaxScore = 0.0001;
constexpr double kRssiWeight = 0.2;
constexpr double kConfidenceWeight = 0.8;
// The spread factor is this multiple of the confidence variance (not of its square root).
constexpr double kSpreadFactor = 4.0;
constexpr double kCohesiveGnssBoost = 4.0;
constexpr double kSureFixConfidence = 0.98;
constexpr double kSureFixBoost = 2.0;
constexpr int kGnssLocationType = 1;

// Signal strength (dBm) against score; linear in between, 0 below the last point.
constexpr int kRssiPoints[] = {-40, -60, -80, -100, -120};
constexpr double kRssiScores[] = {100, 80, 60, 40, 20};
constexpr size_t kRssiPointCount = sizeof(kRssiPoints) / sizeof(kRssiPoints[0]);
}  // namespace

ConfidenceCalculator::ConfidenceCalculator(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos is null or empty!");
    return;
  }
  if (infos.size() > kMaxInfos) {
    CorvexTagLogger::getInstance().error("infos size > " + std::to_string(kMaxInfos));
    return;
  }
  newConfidences.assign(infos.size(), 0.0);
  if (!GnssUtils::isOutDoor(infos)) {
    newConfidences.assign(infos.size(), 1.0);
    return;
  }
  score(infos);
  normalizedNewConfidence();
}

void ConfidenceCalculator::score(std::vector<BleScanInfoWithConfidence> const& infos) {
  std::vector<double> rssiScores;
  std::vector<double> confidences;
  rssiScores.reserve(infos.size());
  confidences.reserve(infos.size());
  for (BleScanInfoWithConfidence const& info : infos) {
    rssiScores.push_back(getRssiScore(info) / 100.0);
    confidences.push_back(getConfidenceScore(info));
  }
  double factor = kSpreadFactor * calculateVar(confidences);
  bool cohesive = GnssUtils::checkCohesion(GnssUtils::getGnssProactiveList(infos));
  for (size_t i = 0; i < infos.size(); ++i) {
    double score = rssiScores[i] * kRssiWeight + (factor * confidences[i]) * kConfidenceWeight;
    if (infos[i].getLastLocationConst().getLocationType() == kGnssLocationType && cohesive) {
      score *= kCohesiveGnssBoost;
    }
    if (infos[i].getConfidence() >= kSureFixConfidence) {
      score *= kSureFixBoost;
    }
    newConfidences[i] = score;
  }
}

double ConfidenceCalculator::getNewConfidence(int index) const {
  if (index < 0 || static_cast<size_t>(index) >= newConfidences.size()) {
    return 0.0;
  }
  return newConfidences[static_cast<size_t>(index)];
}

double ConfidenceCalculator::getRssiScore(BleScanInfoWithConfidence const& info) {
  int rssi = info.getBlueToothRecordConst().getRssi();
  if (rssi >= kRssiPoints[0]) {
    return kRssiScores[0];
  }
  for (size_t i = 1; i < kRssiPointCount; ++i) {
    if (rssi >= kRssiPoints[i]) {
      double upperPoint = kRssiPoints[i - 1];
      double lowerPoint = kRssiPoints[i];
      return kRssiScores[i - 1] + (rssi - upperPoint) * (kRssiScores[i] - kRssiScores[i - 1]) /
                                      (lowerPoint - upperPoint);
    }
  }
  return 0.0;
}

double ConfidenceCalculator::getConfidenceScore(BleScanInfoWithConfidence const& info) {
  return info.getConfidence();
}

double ConfidenceCalculator::calculateAvg(std::vector<double> const& values) {
  if (values.empty()) {
    return 0.0;
  }
  double sum = 0.0;
  for (double value : values) {
    sum += value;
  }
  return sum / static_cast<double>(values.size());
}

double ConfidenceCalculator::calculateVar(std::vector<double> const& values) {
  if (values.empty()) {
    return 0.0;
  }
  double mean = calculateAvg(values);
  double sum = 0.0;
  for (double value : values) {
    double deviation = value - mean;
    sum += deviation * deviation;
  }
  return sum / static_cast<double>(values.size());
}

ConfidenceCalculator& ConfidenceCalculator::normalizedNewConfidence() {
  double maxScore = 0.0;
  for (double score : newConfidences) {
    if (score > maxScore) {
      maxScore = score;
    }
  }
  if (maxScore > kMinMaxScore) {
    for (double& score : newConfidences) {
      score /= maxScore;
    }
  }
  return *this;
}

}  // namespace Vantis::Location
