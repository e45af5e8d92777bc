#include "filter/distance_offset_from_gnss_filter.h"

#include <cmath>

#include "geometry/distance_utils.h"
#include "geometry/gnss_utils.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
constexpr double kMaxGnssOffset = 75.0;  // metres
}  // namespace

bool DistanceOffsetFromGnssFilter::checkValid(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos is null or empty");
    return false;
  }
  return true;
}

std::vector<BleScanInfoWithConfidence> DistanceOffsetFromGnssFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  if (!checkValid(infos)) {
    return infos;
  }
  std::vector<BleScanInfoWithConfidence> const proactive = GnssUtils::getGnssProactiveList(infos);
  if (!GnssUtils::checkCohesion(proactive)) {
    return infos;
  }
  std::vector<double> const centre = DistanceUtils::meanPoint(proactive);
  std::vector<BleScanInfoWithConfidence> result;
  result.reserve(infos.size());
  for (BleScanInfoWithConfidence const& info : infos) {
    if (std::sqrt(DistanceUtils::distSquare(info, centre)) < kMaxGnssOffset) {
      result.push_back(info);
    }
  }
  return result;
}

}  // namespace Vantis::Location
