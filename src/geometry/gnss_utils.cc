#include "geometry/gnss_utils.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "geometry/distance_utils.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
constexpr int kGnssLocationType = 1;
constexpr double kOutDoorRatio = 0.15;
constexpr double kProactiveConfidence = 0.98;
constexpr double kMaxCohesionSpread = 30.0;
}  // namespace

bool GnssUtils::isGnss(BleScanInfoWithConfidence const& info) {
  return info.getLastLocationConst().getLocationType() == kGnssLocationType;
}

template <typename Records>
bool GnssUtils::checkValidOf(Records const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos == null or is empty");
    return false;
  }
  return true;
}

template <typename Records>
int GnssUtils::gnssCountOf(Records const& infos) {
  if (!checkValidOf(infos)) {
    return 0;
  }
  int count = 0;
  for (BleScanInfoWithConfidence const& info : infos) {
    if (isGnss(info)) {
      ++count;
    }
  }
  return count;
}

template <typename Records>
double GnssUtils::gnssRatioOf(Records const& infos) {
  if (!checkValidOf(infos)) {
    return 0.0;
  }
  return static_cast<double>(gnssCountOf(infos)) / static_cast<double>(infos.size());
}

template <typename Records>
std::vector<BleScanInfoWithConfidence> GnssUtils::proactiveListOf(Records const& infos) {
  std::vector<BleScanInfoWithConfidence> proactive;
  if (!checkValidOf(infos)) {
    return proactive;
  }
  auto const isProactive = [](BleScanInfoWithConfidence const& info) {
    return isGnss(info) && info.getConfidence() >= kProactiveConfidence;
  };
  proactive.reserve(static_cast<size_t>(std::count_if(infos.begin(), infos.end(), isProactive)));
  std::copy_if(infos.begin(), infos.end(), std::back_inserter(proactive), isProactive);
  return proactive;
}

bool GnssUtils::checkValid(std::vector<BleScanInfoWithConfidence> const& infos) {
  return checkValidOf(infos);
}

int GnssUtils::getGnssCount(std::vector<BleScanInfoWithConfidence> const& infos) {
  return gnssCountOf(infos);
}

double GnssUtils::getGnssRatio(std::vector<BleScanInfoWithConfidence> const& infos) {
  return gnssRatioOf(infos);
}

double GnssUtils::getGnssRatio(RecordSubset const& infos) { return gnssRatioOf(infos); }

bool GnssUtils::isOutDoor(std::vector<BleScanInfoWithConfidence> const& infos) {
  return gnssRatioOf(infos) > kOutDoorRatio;
}

bool GnssUtils::isOutDoor(RecordSubset const& infos) { return gnssRatioOf(infos) > kOutDoorRatio; }

std::vector<BleScanInfoWithConfidence> GnssUtils::getGnssProactiveList(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  return proactiveListOf(infos);
}

std::vector<BleScanInfoWithConfidence> GnssUtils::getGnssProactiveList(RecordSubset const& infos) {
  return proactiveListOf(infos);
}

bool GnssUtils::checkCohesion(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (!checkValid(infos)) {
    return false;
  }
  // A lone record is never cohesive, so a single scan cannot vouch for itself.
  if (infos.size() == 1) {
    CorvexTagLogger::getInstance().infoBuilt([&] {
      return "checkCohesion infos.size() = " + std::to_string(infos.size()) + ", bypass";
    });
    return false;
  }
  double spread = DistanceUtils::stdPointError(infos);
  if (spread > kMaxCohesionSpread) {
    CorvexTagLogger::getInstance().infoBuilt([&] {
      return "checkCohesion stdPointError(infos) = " + std::to_string(spread) + ", bypass";
    });
    return false;
  }
  return true;
}

}  // namespace Vantis::Location
