#include "calculator/kmeans_old.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {

bool fewerPointsThan(std::vector<Point> const& points, int k) {
  return static_cast<long long>(points.size()) < k;
}

void copyPosition(Point const& from, Point& to) {
  to.setLat(from.getLat());
  to.setLon(from.getLon());
}

// Centre 0 starts at the first point with the smallest accuracy; points[0] follows it.
void startAtMostAccuratePoint(std::vector<Point>& points, Point& center) {
  center = points[0];
  float smallestAcc = points[0].getAcc();
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (points[i].getAcc() < smallestAcc) {
      copyPosition(points[i], center);
      copyPosition(points[i], points[0]);
      smallestAcc = points[i].getAcc();
    }
  }
}

// One assignment and update round. The old centre stays in its own mean as an extra sample.
// assign and counts are the round's working lists, sized for points and centres.
void runRound(std::vector<Point>& points, std::vector<Point>& centers, std::vector<int>& assign,
              std::vector<int>& counts) {
  std::fill(assign.begin(), assign.end(), 0);
  std::fill(counts.begin(), counts.end(), 0);
  // A lone centre takes every point (findCenter's answer): the calculator's case, k = 1.
  if (centers.size() == 1) {
    counts[0] = static_cast<int>(points.size());
  }
  for (std::size_t i = 0; centers.size() > 1 && i < points.size(); ++i) {
    KmeansOld::findCenter(points, centers, assign, static_cast<int>(i));
    ++counts[assign[i]];
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    Point& center = centers[assign[i]];
    center.setLat(center.getLat() + points[i].getLat());
    center.setLon(center.getLon() + points[i].getLon());
    copyPosition(centers[0], points[0]);
  }
  for (std::size_t j = 0; j < centers.size(); ++j) {
    if (counts[j] > 0) {
      centers[j].setLat(centers[j].getLat() / (counts[j] + 1));
      centers[j].setLon(centers[j].getLon() / (counts[j] + 1));
      copyPosition(centers[0], points[0]);
    }
  }
}

}  // namespace

Point KmeansOld::getCorePoint(std::vector<Point>& points, int k, int maxIter) {
  CorvexTagLogger::getInstance().infoBuilt([&] { return "getCorePoint"; });
  if (points.empty()) {
    CorvexTagLogger::getInstance().error("points list is empty!");
    return Point(0, 0);
  }
  return applyKmeansInner(points, k, maxIter);
}

Point KmeansOld::applyKmeansInner(std::vector<Point>& points, int k, int maxIter) {
  CorvexTagLogger::getInstance().infoBuilt([&] { return "applyKmeansInner"; });
  // Without a centre (k < 1) there is nothing to start from.
  if (k < 1 || fewerPointsThan(points, k)) {
    return Point(0, 0);
  }
  std::vector<Point> centers(static_cast<std::size_t>(k));
  startAtMostAccuratePoint(points, centers[0]);
  return kmeans(points, centers, k, maxIter)[0];
}

std::vector<Point> KmeansOld::kmeans(std::vector<Point>& points, std::vector<Point>& centers, int k,
                                     int maxIter) {
  CorvexTagLogger::getInstance().infoBuilt([&] { return "kmeans"; });
  if (!fewerPointsThan(points, k)) {
    CorvexTagLogger::getInstance().infoBuilt(
        [&] { return "points size " + std::to_string(points.size()); });
    // Rounds need a centre to update and a points[0] to mirror it into.
    bool const canRun = !centers.empty() && !points.empty();
    std::vector<int> assign(canRun ? points.size() : 0);
    std::vector<int> counts(canRun ? centers.size() : 0);
    for (int round = 0; canRun && round < maxIter; ++round) {
      runRound(points, centers, assign, counts);
    }
  }
  return centers;
}

void KmeansOld::findCenter(std::vector<Point> const& points, std::vector<Point> const& centers,
                           std::vector<int>& assign, int i) {
  if (i < 0 || static_cast<std::size_t>(i) >= points.size() ||
      static_cast<std::size_t>(i) >= assign.size() || centers.empty()) {
    return;
  }
  // A lone centre is the nearest whatever the distance, NaN included: no need to measure.
  if (centers.size() == 1) {
    assign[i] = 0;
    return;
  }
  int nearest = 0;
  double nearestDistance = std::numeric_limits<double>::infinity();
  for (std::size_t j = 0; j < centers.size(); ++j) {
    double const distance = points[i].getDistanceGNSS(centers[j]);
    if (distance < nearestDistance) {
      nearestDistance = distance;
      nearest = static_cast<int>(j);
    }
  }
  assign[i] = nearest;
}

}  // namespace Vantis::Location
