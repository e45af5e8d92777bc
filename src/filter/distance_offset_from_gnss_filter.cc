#include "filter/distance_offset_from_gnss_filter.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "geometry/distance_utils.h"
#include "geometry/gnss_utils.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
constexpr double kMaxGnssOffset = 75.0;  // metres
}  // namespace

bool DistanceOffsetFromGnssFilter::checkValid(RecordSubset const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos is null or empty");
    return false;
  }
  return true;
}

std::vector<BleScanInfoWithConfidence> DistanceOffsetFromGnssFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  return RecordSubset(infos, keep(infos)).records();
}

std::vector<size_t> DistanceOffsetFromGnssFilter::keep(RecordSubset const& infos) {
  std::vector<size_t> kept(infos.size());
  std::iota(kept.begin(), kept.end(), size_t{0});
  if (!checkValid(infos)) {
    return kept;
  }
  std::vector<BleScanInfoWithConfidence> const proactive = GnssUtils::getGnssProactiveList(infos);
  if (!GnssUtils::checkCohesion(proactive)) {
    return kept;
  }
  std::vector<double> const centre = DistanceUtils::meanPoint(proactive);
  kept.erase(std::remove_if(kept.begin(), kept.end(),
                            [&](size_t index) {
                              return !(std::sqrt(DistanceUtils::distSquare(infos[index], centre)) <
                                       kMaxGnssOffset);
                            }),
             kept.end());
  return kept;
}

}  // namespace Vantis::Location
