#include "calculator/kmeans_position_calculator.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <string>

#include "calculator/db_scan_old.h"
#include "calculator/kmeans_old.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {

constexpr std::size_t kMaxInfoCount = 5000;
constexpr std::size_t kKeptByConfidenceCut = 100;
constexpr std::size_t kSmallListSize = 20;
constexpr std::size_t kAlwaysKeptByConfidenceCut = 2;
constexpr std::size_t kNewestKept = 3;
constexpr double kMinConfidence = 0.8;
constexpr double kMaxPhoneAcc = 100.0;
constexpr double kClusterRadius = 100.0;
constexpr int kClusterMinPoints = 3;
constexpr float kMinSuccessRatio = 0.5f;
constexpr int kClusterCount = 1;
constexpr int kMaxIterations = 10;
constexpr float kResultAcc = 50.0f;

using Infos = std::vector<BleScanInfoWithConfidence>;
using Refs = std::vector<BleScanInfoWithConfidence const*>;

BleScanInfoWithConfidence const& recordOf(BleScanInfoWithConfidence const& info) { return info; }
BleScanInfoWithConfidence const& recordOf(BleScanInfoWithConfidence const* info) { return *info; }

template <typename Entry>
long long scanTime(Entry const& entry) {
  return recordOf(entry).getBlueToothRecordConst().getTimeStamp();
}

template <typename Entry>
double confidenceOf(Entry const& entry) {
  return recordOf(entry).getConfidence();
}

template <typename List>
void sortNewestFirst(List& infos) {
  using Entry = typename List::value_type;
  std::stable_sort(infos.begin(), infos.end(),
                   [](Entry const& a, Entry const& b) { return scanTime(a) > scanTime(b); });
}

// The `limit` newest records, newest first (equal times in input order): the part of the time
// order that the confidence cut can keep. Records in ascending time, as the main calculator
// passes them, need no sort: their runs of equal times are taken from the end.
Refs newestRecords(Infos const& infos, std::size_t limit) {
  Refs newest;
  newest.reserve(infos.size());
  auto const older = [](BleScanInfoWithConfidence const& a, BleScanInfoWithConfidence const& b) {
    return scanTime(a) < scanTime(b);
  };
  if (std::is_sorted(infos.begin(), infos.end(), older)) {
    for (std::size_t end = infos.size(); end > 0 && newest.size() < limit;) {
      std::size_t begin = end - 1;
      while (begin > 0 && scanTime(infos[begin - 1]) == scanTime(infos[end - 1])) {
        --begin;
      }
      for (std::size_t k = begin; k < end; ++k) {
        newest.push_back(&infos[k]);
      }
      end = begin;
    }
  } else {
    for (BleScanInfoWithConfidence const& info : infos) {
      newest.push_back(&info);
    }
    sortNewestFirst(newest);
  }
  newest.resize(std::min(limit, newest.size()));
  return newest;
}

// The best 20 by confidence, then further ones while they stay confident.
template <typename List>
void appendMostConfident(List& candidates, List& output) {
  using Entry = typename List::value_type;
  std::stable_sort(candidates.begin(), candidates.end(), [](Entry const& a, Entry const& b) {
    return confidenceOf(a) > confidenceOf(b);
  });
  auto const unconditionalEnd = candidates.begin() + kSmallListSize;
  auto const confidentEnd =
      std::find_if_not(unconditionalEnd, candidates.end(),
                       [](Entry const& entry) { return confidenceOf(entry) >= kMinConfidence; });
  output.insert(output.end(), std::make_move_iterator(candidates.begin()),
                std::make_move_iterator(confidentEnd));
}

bool isAmong(LastLocation const& location, std::vector<Point> const& points) {
  return std::any_of(points.begin(), points.end(), [&location](Point const& point) {
    return point.getLat() == location.getLat() && point.getLon() == location.getLon() &&
           point.getAcc() == location.getAcc();
  });
}

TagBestLocation newestPhonePosition(BleScanInfoWithConfidence const& latest) {
  LastLocation const& location = latest.getLastLocationConst();
  TagBestLocation result(location.getLon(), location.getLat());
  result.setRunTimeStamp(scanTime(latest));
  return result;
}

}  // namespace

TagBestLocation KmeansPositionCalculator::getPosition(Infos& infos) {
  CorvexTagLogger& logger = CorvexTagLogger::getInstance();
  if (infos.empty()) {
    logger.error(" infos is null or empty");
    return TagBestLocation(ErrorCode::INPUT_INFO_EMPTY);
  }
  if (infos.size() > kMaxInfoCount) {
    logger.error(" infos size exceed limit");
    return TagBestLocation(ErrorCode::INPUT_INFO_OVER_LIMIT);
  }
  Refs offlineLocationList = newestRecords(infos, kKeptByConfidenceCut);
  filterLowConfidence(offlineLocationList);
  long long const latestTime = scanTime(offlineLocationList.front());
  TagBestLocation fallback = newestPhonePosition(*offlineLocationList.front());
  logger.infoBuilt(
      [&] { return " offlineLocationList size: " + std::to_string(offlineLocationList.size()); });

  Refs preprocessed = preprocessOfflineLocation(offlineLocationList);
  if (preprocessed.empty()) {
    logger.infoBuilt([&] { return " preprocessedOfflineLocation is empty"; });
    return fallback.setErrorCodeAndGet(ErrorCode::FILTERED_ALL_INFOS);
  }
  std::vector<Point> points = convertToPoint(preprocessed);
  std::vector<Point> filteredPoints =
      DBScanOld::getFilteredPointList(points, kClusterRadius, kClusterMinPoints);
  logger.infoBuilt([&] { return " Old DBScan after: " + std::to_string(filteredPoints.size()); });
  if (filteredPoints.empty()) {
    logger.infoBuilt([&] { return " filteredPointList is empty"; });
    return fallback.setErrorCodeAndGet(ErrorCode::FILTERED_ALL_INFOS);
  }
  // A moving tag keeps the newest phone position as a success, not as TAG_IS_MOVED.
  if (checkMove(preprocessed, filteredPoints)) {
    logger.infoBuilt([&] { return " TAG is moving."; });
    return fallback;
  }
  float const successRatio =
      static_cast<float>(filteredPoints.size()) / static_cast<float>(points.size());
  if (successRatio < kMinSuccessRatio) {
    logger.infoBuilt([&] {
      return " successRatio too low: " + std::to_string(static_cast<double>(successRatio));
    });
    return fallback;
  }
  Point core = KmeansOld::getCorePoint(filteredPoints, kClusterCount, kMaxIterations);
  return convertResult(core, fallback, latestTime);
}

template <typename List>
void KmeansPositionCalculator::filterLowConfidence(List& infos) {
  if (infos.size() <= kSmallListSize) {
    return;
  }
  if (infos.size() > kKeptByConfidenceCut) {
    infos.erase(infos.begin() + kKeptByConfidenceCut, infos.end());
  }
  auto const firstDroppable = infos.begin() + kAlwaysKeptByConfidenceCut;
  infos.erase(std::remove_if(firstDroppable, infos.end(),
                             [](typename List::value_type const& entry) {
                               return confidenceOf(entry) < kMinConfidence;
                             }),
              infos.end());
}

template <typename List>
List KmeansPositionCalculator::preprocessOfflineLocation(List const& infos) {
  List usable;
  usable.reserve(infos.size());
  std::copy_if(infos.begin(), infos.end(), std::back_inserter(usable),
               [](typename List::value_type const& entry) {
                 return !(recordOf(entry).getLastLocationConst().getAcc() > kMaxPhoneAcc);
               });
  auto const newestEnd = usable.begin() + std::min(kNewestKept, usable.size());
  List output;
  output.reserve(usable.size());
  output.insert(output.end(), std::make_move_iterator(usable.begin()),
                std::make_move_iterator(newestEnd));
  List remaining(std::make_move_iterator(newestEnd), std::make_move_iterator(usable.end()));
  if (remaining.size() > kSmallListSize) {
    appendMostConfident(remaining, output);
  } else {
    output.insert(output.end(), std::make_move_iterator(remaining.begin()),
                  std::make_move_iterator(remaining.end()));
  }
  return output;
}

template <typename List>
std::vector<Point> KmeansPositionCalculator::convertToPoint(List const& infos) {
  std::vector<Point> points;
  points.reserve(infos.size());
  for (std::size_t i = 0; i < infos.size(); ++i) {
    LastLocation const& location = recordOf(infos[i]).getLastLocationConst();
    Point point(location.getLon(), location.getLat(), static_cast<int>(i));
    point.setAcc(location.getAcc());
    points.push_back(point);
  }
  return points;
}

template <typename List>
bool KmeansPositionCalculator::checkMove(List& infos, std::vector<Point> const& points) {
  sortNewestFirst(infos);
  std::size_t const newestCount = std::min(kNewestKept, infos.size());
  for (std::size_t i = 0; i < newestCount; ++i) {
    if (isAmong(recordOf(infos[i]).getLastLocationConst(), points)) {
      return false;
    }
  }
  return true;
}

TagBestLocation KmeansPositionCalculator::convertResult(Point& core, TagBestLocation& result,
                                                        long long timeStamp) {
  if (core == Point(0, 0)) {
    return result.setErrorCodeAndGet(ErrorCode::ALGORITHM_RUNNING_FAILED);
  }
  TagBestLocation located(core.getLon(), core.getLat());
  located.setTimeStamp(timeStamp);
  located.setRunTimeStamp(timeStamp);
  located.setAcc(kResultAcc);
  return located;
}

template void KmeansPositionCalculator::filterLowConfidence(Infos& infos);
template void KmeansPositionCalculator::filterLowConfidence(Refs& infos);
template Infos KmeansPositionCalculator::preprocessOfflineLocation(Infos const& infos);
template Refs KmeansPositionCalculator::preprocessOfflineLocation(Refs const& infos);
template std::vector<Point> KmeansPositionCalculator::convertToPoint(Infos const& infos);
template std::vector<Point> KmeansPositionCalculator::convertToPoint(Refs const& infos);
template bool KmeansPositionCalculator::checkMove(Infos& infos, std::vector<Point> const& points);
template bool KmeansPositionCalculator::checkMove(Refs& infos, std::vector<Point> const& points);

}  // namespace Vantis::Location
