#include "filter/distance_offset_filter.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "filter/spread_trimmer.h"
#include "geometry/distance_utils.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
bool spreadExceeds(std::vector<BleScanInfoWithConfidence> const& infos, int minItems,
                   double maxStd) {
  return infos.size() > static_cast<size_t>(minItems) &&
         DistanceUtils::stdPointError(infos) > maxStd;
}
}  // namespace

bool DistanceOffsetFilter::checkValid(RecordSubset const& infos, int minItems) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos is null or empty");
    return false;
  }
  if (minItems <= 0) {
    CorvexTagLogger::getInstance().error("minItems can't less than 1");
    return false;
  }
  return true;
}

int DistanceOffsetFilter::getMaxOffsetIndex(std::vector<BleScanInfoWithConfidence> const& infos,
                                            std::vector<double> const& point) {
  double maxOffset = 0.0;
  int index = -1;
  for (size_t i = 0; i < infos.size(); ++i) {
    double offset = std::sqrt(DistanceUtils::distSquare(infos[i], point));
    if (offset > maxOffset) {
      maxOffset = offset;
      index = static_cast<int>(i);
    }
  }
  return index;
}

int DistanceOffsetFilter::getOldestIndex(std::vector<BleScanInfoWithConfidence> const& infos) {
  long long oldest = LLONG_MAX;
  int index = -1;
  for (size_t i = 0; i < infos.size(); ++i) {
    long long timeStamp = infos[i].getBlueToothRecordConst().getTimeStamp();
    if (timeStamp < oldest) {
      oldest = timeStamp;
      index = static_cast<int>(i);
    }
  }
  return index;
}

std::vector<BleScanInfoWithConfidence> DistanceOffsetFilter::filterByDistance(
    std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd) {
  return RecordSubset(infos, keepByDistance(infos, minItems, maxStd)).records();
}

std::vector<size_t> DistanceOffsetFilter::keepByDistance(RecordSubset const& infos, int minItems,
                                                         double maxStd) {
  if (!checkValid(infos, minItems)) {
    return {};
  }
  std::vector<double> xs;
  std::vector<double> ys;
  xs.reserve(infos.size());
  ys.reserve(infos.size());
  for (BleScanInfoWithConfidence const& info : infos) {
    xs.push_back(info.getLastLocationConst().getLon());
    ys.push_back(info.getLastLocationConst().getLat());
  }
  return SpreadTrimmer::keep(xs, ys, minItems, maxStd);
}

std::vector<BleScanInfoWithConfidence> DistanceOffsetFilter::filterByTime(
    std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd) {
  if (!checkValid(infos, minItems)) {
    return {};
  }
  std::vector<BleScanInfoWithConfidence> result = infos;
  while (spreadExceeds(result, minItems, maxStd)) {
    int oldest = getOldestIndex(result);
    if (oldest < 0) {
      break;  // every scan time is the largest representable one
    }
    result.erase(result.begin() + oldest);
  }
  return result;
}

std::vector<BleScanInfoWithConfidence> DistanceOffsetFilter::filterByNewConfidence(
    std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd) {
  if (!checkValid(infos, minItems)) {
    return {};
  }
  std::vector<BleScanInfoWithConfidence> result = infos;
  std::stable_sort(result.begin(), result.end(),
                   [](BleScanInfoWithConfidence const& a, BleScanInfoWithConfidence const& b) {
                     return a.getNewConfidence() > b.getNewConfidence();
                   });
  while (spreadExceeds(result, minItems, maxStd)) {
    result.pop_back();
  }
  return result;
}

}  // namespace Vantis::Location
