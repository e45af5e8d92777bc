#include "filter/distance_offset_filter.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "geometry/distance_utils.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
// Positions of the records still kept, in list order, with running sums in list order so that
// a removal only redoes the sums behind it.
struct Remaining {
  explicit Remaining(std::vector<BleScanInfoWithConfidence> const& infos) {
    for (size_t i = 0; i < infos.size(); ++i) {
      indices.push_back(i);
      xs.push_back(infos[i].getLastLocationConst().getLon());
      ys.push_back(infos[i].getLastLocationConst().getLat());
    }
    sumX.resize(xs.size());
    sumY.resize(ys.size());
    resum(0);
  }

  size_t size() const { return indices.size(); }

  void erase(size_t position) {
    auto const at = static_cast<std::ptrdiff_t>(position);
    indices.erase(indices.begin() + at);
    xs.erase(xs.begin() + at);
    ys.erase(ys.begin() + at);
    sumX.pop_back();
    sumY.pop_back();
    resum(position);
  }

  std::vector<size_t> indices;
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<double> sumX;  // sumX[i]: 0.0 + xs[0] + ... + xs[i], added left to right
  std::vector<double> sumY;

 private:
  void resum(size_t from) {
    for (size_t i = from; i < xs.size(); ++i) {
      sumX[i] = (i == 0 ? 0.0 : sumX[i - 1]) + xs[i];
      sumY[i] = (i == 0 ? 0.0 : sumY[i - 1]) + ys[i];
    }
  }
};

// The first index whose distance, the square root of values[i], equals the root of `largest`
// (the greatest value); -1 when that root is 0. Roots are taken only near the top: any value
// whose root rounds to the greatest root is within a few ulps of `largest`.
int firstWithRootOf(std::vector<double> const& values, double largest) {
  double const root = std::sqrt(largest);
  if (!(root > 0.0)) {
    return -1;
  }
  double const nearTop = largest * 0.999;
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] >= nearTop && std::sqrt(values[i]) == root) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

bool spreadExceeds(std::vector<BleScanInfoWithConfidence> const& infos, int minItems,
                   double maxStd) {
  return infos.size() > static_cast<size_t>(minItems) &&
         DistanceUtils::stdPointError(infos) > maxStd;
}
}  // namespace

bool DistanceOffsetFilter::checkValid(std::vector<BleScanInfoWithConfidence> const& infos,
                                      int minItems) {
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

// Same arithmetic, in the same order, as stdPointError, meanPoint and getMaxOffsetIndex on the
// remaining records, but on plain coordinate arrays: the loop runs once per removed record.
std::vector<BleScanInfoWithConfidence> DistanceOffsetFilter::filterByDistance(
    std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd) {
  if (!checkValid(infos, minItems)) {
    return {};
  }
  Remaining rest(infos);
  std::vector<double> offsets;  // squared distances from the centroid
  while (rest.size() > static_cast<size_t>(minItems)) {
    double const count = static_cast<double>(rest.size());
    double const meanX = rest.sumX.back() / count;
    double const meanY = rest.sumY.back() / count;
    double sum = 0.0;
    double largest = 0.0;
    offsets.resize(rest.size());
    for (size_t i = 0; i < rest.size(); ++i) {
      double const dx = rest.xs[i] - meanX;
      double const dy = rest.ys[i] - meanY;
      offsets[i] = dx * dx + dy * dy;
      sum += offsets[i];
      largest = offsets[i] > largest ? offsets[i] : largest;
    }
    if (!(std::sqrt(sum / count) > maxStd)) {
      break;
    }
    int const farthest = firstWithRootOf(offsets, largest);
    if (farthest < 0) {
      break;  // every record sits on the centroid: nothing to strip
    }
    rest.erase(static_cast<size_t>(farthest));
  }
  std::vector<BleScanInfoWithConfidence> result;
  for (size_t index : rest.indices) {
    result.push_back(infos[index]);
  }
  return result;
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
