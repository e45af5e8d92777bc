// Movement, outlier, run time stamp and indoor vote of CorvexTagPositionCalculator: the
// decisions that weigh a solved result against the raw records.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "calculator/corvex_tag_position_calculator.h"
#include "geometry/distance_utils.h"
#include "geometry/gnss_distance_measure.h"

namespace Vantis::Location {
namespace {

constexpr long long kOutlierMinAge = 1800000;  // 30 minutes (ms)
constexpr double kOutlierMinDistance = 100.0;  // metres
constexpr int kOutlierSourceType = 3;
constexpr double kOutlierMinConfidence = 0.8;  // exclusive
constexpr double kMaxStayDistance = 400.0;     // metres, inclusive
constexpr double kRunTimeStampRadius = 100.0;  // metres, exclusive
constexpr char const* kUnknownGeoId = "null";
constexpr int kUnknownFloor = -100;
constexpr int kMinIndoorFloorAcc = 10;
constexpr int kMinIndoorRssi = -85;  // dBm
constexpr double kMinIndoorConfidence = 0.8;
constexpr double kIndoorRadius = 100.0;       // metres, exclusive
constexpr long long kIndoorMaxAge = 7199999;  // just under two hours (ms), inclusive
// The winning floor 0 carries no indoor information.
constexpr int kNoIndoorFloor = 0;

// a - b with two's-complement wrap-around, as the hardware subtracts.
long long wrappingDifference(long long a, long long b) {
  return static_cast<long long>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

// |value| with two's-complement wrap-around: the most negative value stays itself.
long long wrappingAbs(long long value) {
  std::uint64_t const bits = static_cast<std::uint64_t>(value);
  return static_cast<long long>(value < 0 ? std::uint64_t{0} - bits : bits);
}

double distanceTo(BleScanInfoWithConfidence const& info, TagBestLocation const& result) {
  return std::sqrt(DistanceUtils::distSquare(info, result));
}

bool isIndoorCandidate(TagBestLocation const& result, BleScanInfoWithConfidence const& info) {
  LastLocation const& location = info.getLastLocationConst();
  BlueToothRecord const& record = info.getBlueToothRecordConst();
  return !location.getGeoId().empty() && location.getGeoId() != kUnknownGeoId &&
         location.getFloorId() != kUnknownFloor && location.getFloorAcc() >= kMinIndoorFloorAcc &&
         record.getRssi() >= kMinIndoorRssi && info.getConfidence() >= kMinIndoorConfidence &&
         GnssDistanceMeasure::compute(location.getLon(), location.getLat(), result.getLon(),
                                      result.getLat()) < kIndoorRadius &&
         wrappingAbs(wrappingDifference(result.getRunTimeStamp(), record.getTimeStamp())) <=
             kIndoorMaxAge;
}

// Truncated mean floor accuracy of the candidates in the building on the floor, summed as
// 32-bit integers (wrapping); false when there are none.
bool averageFloorAcc(std::vector<BleScanInfoWithConfidence const*> const& candidates,
                     SharedText const& building, int floor, int& average) {
  std::uint32_t sum = 0;
  std::size_t count = 0;
  for (BleScanInfoWithConfidence const* candidate : candidates) {
    LastLocation const& location = candidate->getLastLocationConst();
    if (location.getGeoIdText() == building && location.getFloorId() == floor) {
      sum += static_cast<std::uint32_t>(location.getFloorAcc());
      ++count;
    }
  }
  if (count == 0) {
    return false;
  }
  average = static_cast<int>(static_cast<double>(static_cast<std::int32_t>(sum)) /
                             static_cast<double>(count));
  return true;
}

// The records that may vote, by pointer: the vote reads them, it need not copy them.
std::vector<BleScanInfoWithConfidence const*> indoorCandidates(
    TagBestLocation const& result, std::vector<BleScanInfoWithConfidence> const& infos) {
  std::vector<BleScanInfoWithConfidence const*> candidates;
  for (BleScanInfoWithConfidence const& info : infos) {
    if (isIndoorCandidate(result, info)) {
      candidates.push_back(&info);
    }
  }
  return candidates;
}

template <typename T>
std::vector<std::pair<T, int>> tally(std::vector<T> const& values) {
  std::map<T, int> counts;
  for (T const& value : values) {
    ++counts[value];
  }
  return {counts.begin(), counts.end()};
}

}  // namespace

bool CorvexTagPositionCalculator::checkOutlier(TagBestLocation const& result,
                                               BleScanInfoWithConfidence const& info) {
  return wrappingDifference(info.getBlueToothRecordConst().getTimeStamp(), result.getTimeStamp()) >
             kOutlierMinAge &&
         distanceTo(info, result) > kOutlierMinDistance &&
         info.getLastLocationConst().getLocationSourceType() == kOutlierSourceType &&
         info.getConfidence() > kOutlierMinConfidence;
}

bool CorvexTagPositionCalculator::checkMoved(std::vector<BleScanInfoWithConfidence> const& infos,
                                             TagBestLocation const& result) {
  if (infos.empty()) {
    return true;
  }
  BleScanInfoWithConfidence const& newest = infos.back();
  if (checkOutlier(result, newest)) {
    return true;
  }
  if (distanceTo(newest, result) <= kMaxStayDistance) {
    return false;
  }
  if (infos.size() < 2) {
    return true;
  }
  // One far scan alone is tolerated when the one before it is near.
  return !(distanceTo(infos[infos.size() - 2], result) <= kMaxStayDistance);
}

long long CorvexTagPositionCalculator::getRunTimeStamp(
    std::vector<BleScanInfoWithConfidence> const& infos, TagBestLocation const& result) {
  long long runTimeStamp = result.getTimeStamp();
  for (BleScanInfoWithConfidence const& info : infos) {
    long long const timeStamp = info.getBlueToothRecordConst().getTimeStamp();
    if (distanceTo(info, result) < kRunTimeStampRadius && timeStamp >= runTimeStamp) {
      runTimeStamp = timeStamp;
    }
  }
  return runTimeStamp;
}

void CorvexTagPositionCalculator::filterIndoor(TagBestLocation const& result,
                                               std::vector<BleScanInfoWithConfidence> const& infos,
                                               std::vector<BleScanInfoWithConfidence>& out) {
  for (BleScanInfoWithConfidence const* candidate : indoorCandidates(result, infos)) {
    out.push_back(*candidate);
  }
}

void CorvexTagPositionCalculator::setResultIndoorInfo(
    TagBestLocation& result, std::vector<BleScanInfoWithConfidence> const& infos,
    LocateTrace::IndoorVote* vote) {
  if (vote != nullptr) {
    *vote = LocateTrace::IndoorVote();
  }
  std::vector<BleScanInfoWithConfidence const*> const candidates = indoorCandidates(result, infos);
  if (candidates.empty()) {
    return;
  }
  // Shared texts, not copies: building texts may be long.
  std::vector<SharedText> geoIds;
  geoIds.reserve(candidates.size());
  for (BleScanInfoWithConfidence const* candidate : candidates) {
    geoIds.push_back(candidate->getLastLocationConst().getGeoIdText());
  }
  SharedText const building = selectMostOccurrences(geoIds);
  if (vote != nullptr) {
    for (auto const& [geoId, count] : tally(geoIds)) {
      vote->buildingCounts.emplace_back(geoId.get(), count);
    }
    vote->building = building.get();
  }
  if (building.get().empty()) {
    return;
  }
  std::vector<int> floorIds;
  floorIds.reserve(candidates.size());
  for (BleScanInfoWithConfidence const* candidate : candidates) {
    if (candidate->getLastLocationConst().getGeoIdText() == building) {
      floorIds.push_back(candidate->getLastLocationConst().getFloorId());
    }
  }
  int const floor = selectMostOccurrences(floorIds);
  if (vote != nullptr) {
    vote->floorCounts = tally(floorIds);
    vote->floor = floor;
  }
  int floorAcc = 0;
  if (floor == kNoIndoorFloor || !averageFloorAcc(candidates, building, floor, floorAcc)) {
    return;
  }
  result.setIndoorFlag(1);
  result.setGeoId(building.get());
  result.setFloorId(floor);
  result.setFloorAcc(floorAcc);
  if (vote != nullptr) {
    vote->applied = true;
  }
}

template <typename T>
T CorvexTagPositionCalculator::selectMostOccurrences(std::vector<T> const& values) {
  std::map<T, int> counts;
  for (T const& value : values) {
    ++counts[value];
  }
  T best{};
  int bestCount = 0;
  for (auto const& [value, count] : counts) {
    if (count > bestCount) {
      best = value;
      bestCount = count;
    }
  }
  return best;
}

template SharedText CorvexTagPositionCalculator::selectMostOccurrences<SharedText>(
    std::vector<SharedText> const& values);
template int CorvexTagPositionCalculator::selectMostOccurrences<int>(
    std::vector<int> const& values);

}  // namespace Vantis::Location
