#include "geometry/distance_utils.h"

#include <cmath>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
constexpr double kMinWeightSum = 0.0001;

double squaredDistance(double ax, double ay, double bx, double by) {
  double dx = ax - bx;
  double dy = ay - by;
  return dx * dx + dy * dy;
}

double illegalPoint() {
  CorvexTagLogger::getInstance().error("distSquare(): point is null or illegal");
  return 0.0;
}
}  // namespace

double DistanceUtils::distSquare(std::vector<double> const& a, std::vector<double> const& b) {
  if (a.size() != 2 || b.size() != 2) {
    return illegalPoint();
  }
  return squaredDistance(a[0], a[1], b[0], b[1]);
}

double DistanceUtils::distSquare(BleScanInfoWithConfidence const& a,
                                 BleScanInfoWithConfidence const& b) {
  LastLocation const& la = a.getLastLocationConst();
  LastLocation const& lb = b.getLastLocationConst();
  return squaredDistance(la.getLon(), la.getLat(), lb.getLon(), lb.getLat());
}

double DistanceUtils::distSquare(BleScanInfoWithConfidence const& a, TagBestLocation const& t) {
  LastLocation const& la = a.getLastLocationConst();
  return squaredDistance(la.getLon(), la.getLat(), t.getLon(), t.getLat());
}

double DistanceUtils::distSquare(BleScanInfoWithConfidence const& a, std::vector<double> const& p) {
  if (p.size() != 2) {
    return illegalPoint();
  }
  LastLocation const& la = a.getLastLocationConst();
  return squaredDistance(la.getLon(), la.getLat(), p[0], p[1]);
}

double DistanceUtils::sumOfNewConfidence(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (!checkValid(infos)) {
    return 0.0;
  }
  double sum = 0.0;
  for (BleScanInfoWithConfidence const& info : infos) {
    sum += info.getNewConfidence();
  }
  return sum;
}

bool DistanceUtils::checkValid(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("DistanceUtils: points is null or empty");
    return false;
  }
  return true;
}

std::vector<double> DistanceUtils::meanPointWeight(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  if (!checkValid(infos)) {
    return {0.0, 0.0};
  }
  double weightSum = sumOfNewConfidence(infos);
  if (weightSum < kMinWeightSum) {
    return {0.0, 0.0};
  }
  double lonSum = 0.0;
  double latSum = 0.0;
  for (BleScanInfoWithConfidence const& info : infos) {
    LastLocation const& location = info.getLastLocationConst();
    lonSum += location.getLon() * info.getNewConfidence();
    latSum += location.getLat() * info.getNewConfidence();
  }
  return {lonSum / weightSum, latSum / weightSum};
}

std::vector<double> DistanceUtils::meanPoint(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (!checkValid(infos)) {
    return {0.0, 0.0};
  }
  double lonSum = 0.0;
  double latSum = 0.0;
  for (BleScanInfoWithConfidence const& info : infos) {
    lonSum += info.getLastLocationConst().getLon();
    latSum += info.getLastLocationConst().getLat();
  }
  double count = static_cast<double>(infos.size());
  return {lonSum / count, latSum / count};
}

double DistanceUtils::stdPointError(std::vector<BleScanInfoWithConfidence> const& infos) {
  if (!checkValid(infos)) {
    return 0.0;
  }
  std::vector<double> mean = meanPoint(infos);
  double sum = 0.0;
  for (BleScanInfoWithConfidence const& info : infos) {
    sum += distSquare(info, mean);
  }
  return std::sqrt(sum / static_cast<double>(infos.size()));
}

}  // namespace Vantis::Location
