#include "calculator/corvex_tag_position_calculator.h"

#include <cstddef>
#include <utility>

#include "calculator/kmeans_position_calculator.h"
#include "filter/ble_scan_info_filters.h"
#include "filter/confidence_calculator.h"
#include "geometry/coordinate_converter.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {
namespace {

constexpr int kMissingRssi = 0;
constexpr int kDefaultRssi = -100;  // dBm
constexpr double kMinConfidenceSum = 0.0001;

// What the caller gets when no position can be solved: the newest scan as reported.
TagBestLocation newestScanResult(BleScanInfoWithConfidence const& newest) {
  LastLocation const& location = newest.getLastLocationConst();
  long long const timeStamp = newest.getBlueToothRecordConst().getTimeStamp();
  TagBestLocation result(location.getLon(), location.getLat(), timeStamp, newest.getConfidence(),
                         location.getAcc());
  result.setRunTimeStamp(timeStamp);
  result.setErrorCode(ErrorCode::UNKNOWN_ERROR);
  return result;
}

// A solved result (success or RSSI_OVER_LIMIT) is still in the local plane; every other code
// comes from the default result, which is in degrees.
void recordOutcome(LocateTrace::Outcome& outcome, TagBestLocation result,
                   std::vector<double> const& refPos, bool inLocalPlane) {
  if (inLocalPlane) {
    CoordinateConverter::enuConvertToGnss(result, refPos);
  }
  outcome.ran = true;
  outcome.lon = result.getLon();
  outcome.lat = result.getLat();
  outcome.acc = result.getAcc();
  outcome.runTimeStamp = result.getRunTimeStamp();
  outcome.code = result.getErrorCode().getErrorCode();
}

TagBestLocation refuseWithOverLimit(TagBestLocation& defaultResult) {
  CorvexTagLogger::getInstance().error("infos size exceed limit");
  return defaultResult.setErrorCodeAndGet(ErrorCode::INPUT_INFO_OVER_LIMIT);
}

bool isSolved(TagBestLocation const& result) {
  return result.getErrorCode() == ErrorCode::SUCCESS ||
         result.getErrorCode() == ErrorCode::RSSI_OVER_LIMIT;
}

}  // namespace

TagBestLocation CorvexTagPositionCalculator::getPosition(
    std::vector<BleScanInfoWithConfidence>& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos is null or empty");
    return TagBestLocation(ErrorCode::INPUT_INFO_EMPTY);
  }
  BleScanInfoFilters::sortByTimeStamp(infos);
  BleScanInfoWithConfidence const latest = infos.back();
  TagBestLocation defaultResult = newestScanResult(latest);
  setResultIndoorInfo(defaultResult, {latest}, indoorVote());

  std::vector<double> const refPos = getRefPos(infos);
  if (trace_ != nullptr) {
    trace_->hasReference = true;
    trace_->referenceLon = refPos[0];
    trace_->referenceLat = refPos[1];
  }
  CoordinateConverter::gnssConvertToEnu(infos, refPos);
  reference_ = refPos;
  TagBestLocation innerResult = getPositionInner(infos, defaultResult);
  reference_.clear();
  CoordinateConverter::enuConvertToGnss(infos, refPos);
  if (trace_ != nullptr) {
    recordOutcome(trace_->main, innerResult, refPos, isSolved(innerResult));
  }
  // Failures return as they are: RSSI_OVER_LIMIT deliberately keeps its local-plane position.
  if (innerResult.getErrorCode() != ErrorCode::SUCCESS) {
    return innerResult;
  }

  KmeansPositionCalculator kmeansCalculator;
  TagBestLocation kmeansResult = kmeansCalculator.getPosition(infos);
  if (trace_ != nullptr) {
    recordOutcome(trace_->kmeans, kmeansResult, refPos, false);
  }
  bool const mainWins = innerResult.getRunTimeStamp() >= kmeansResult.getRunTimeStamp();
  if (trace_ != nullptr) {
    trace_->winner = mainWins ? 1 : 2;
  }
  TagBestLocation chosen;
  if (mainWins) {
    CorvexTagLogger::getInstance().infoBuilt([&] { return "using algorithm 1"; });
    CoordinateConverter::enuConvertToGnss(innerResult, refPos);
    chosen = std::move(innerResult);
  } else {
    CorvexTagLogger::getInstance().infoBuilt([&] { return "using algorithm 2"; });
    chosen = std::move(kmeansResult);
  }
  setResultIndoorInfo(chosen, infos, indoorVote());
  return chosen;
}

TagBestLocation CorvexTagPositionCalculator::refuseOverLimit(
    BleScanInfoWithConfidence const& newest) {
  TagBestLocation defaultResult = newestScanResult(newest);
  setResultIndoorInfo(defaultResult, {newest}, indoorVote());
  TagBestLocation result = refuseWithOverLimit(defaultResult);
  if (trace_ != nullptr) {
    recordOutcome(trace_->main, result, {}, false);
  }
  return result;
}

TagBestLocation CorvexTagPositionCalculator::getPositionInner(
    std::vector<BleScanInfoWithConfidence>& infos, TagBestLocation& defaultResult) {
  if (infos.size() > kMaxInfos) {
    return refuseWithOverLimit(defaultResult);
  }
  setDefaultRssi(infos);
  if (!getNewConfidence(infos)) {
    return defaultResult.setErrorCodeAndGet(ErrorCode::CONFIDENCE_ERROR);
  }
  std::vector<int> infoCount;
  filteredInfos_ = BleScanInfoFilters::filter(infos, infoCount, trace_ ? &trace_->fates : nullptr);
  filteredReference_ = reference_;
  if (filteredInfos_.empty()) {
    CorvexTagLogger::getInstance().error("filteredInfos is empty");
    return defaultResult.setErrorCodeAndGet(ErrorCode::FILTERED_ALL_INFOS);
  }
  TagBestLocation tagResult = getTagResult(filteredInfos_);
  // All records count here, not only the filtered ones.
  if (checkMoved(infos, tagResult)) {
    CorvexTagLogger::getInstance().infoBuilt([&] { return "Tag is moved"; });
    return defaultResult.setErrorCodeAndGet(ErrorCode::TAG_IS_MOVED);
  }
  tagResult.setRunTimeStamp(getRunTimeStamp(infos, tagResult));
  tagResult.getTagStat().setInfoCount(infoCount);
  return tagResult;
}

std::vector<BleScanInfoWithConfidence> CorvexTagPositionCalculator::getFilteredInfos() const {
  std::vector<BleScanInfoWithConfidence> infos = filteredInfos_;
  CoordinateConverter::enuConvertToGnss(infos, filteredReference_);
  return infos;
}

void CorvexTagPositionCalculator::setDefaultRssi(std::vector<BleScanInfoWithConfidence>& infos) {
  for (BleScanInfoWithConfidence& info : infos) {
    if (info.getBlueToothRecordConst().getRssi() == kMissingRssi) {
      info.getBlueToothRecord().setRssi(kDefaultRssi);
    }
  }
}

bool CorvexTagPositionCalculator::getNewConfidence(std::vector<BleScanInfoWithConfidence>& infos) {
  ConfidenceCalculator const calculator(infos);
  double sum = 0.0;
  for (std::size_t i = 0; i < infos.size(); ++i) {
    double const newConfidence = calculator.getNewConfidence(static_cast<int>(i));
    infos[i].setNewConfidence(newConfidence);
    sum += newConfidence;
  }
  if (!(sum < kMinConfidenceSum)) {
    return true;
  }
  CorvexTagLogger::getInstance().error("All of new confidences are 0");
  return false;
}

}  // namespace Vantis::Location
