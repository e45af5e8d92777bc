#include "calculator/db_scan_old.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {

bool contains(std::vector<Point> const& list, Point const& point) {
  return std::find(list.begin(), list.end(), point) != list.end();
}

bool idsDistinct(std::vector<Point> const& points) {
  std::vector<int> ids;
  ids.reserve(points.size());
  for (Point const& point : points) {
    ids.push_back(point.getId());
  }
  std::sort(ids.begin(), ids.end());
  return std::adjacent_find(ids.begin(), ids.end()) == ids.end();
}

bool sharesPoint(std::vector<Point> const& a, std::vector<Point> const& b) {
  return std::any_of(b.begin(), b.end(), [&a](Point const& point) { return contains(a, point); });
}

// Each group absorbs every later group it shares a point with, in one pass.
void mergeGroups(std::vector<std::vector<Point>>& groups) {
  for (std::size_t i = 0; i < groups.size(); ++i) {
    for (std::size_t j = i + 1; j < groups.size(); ++j) {
      if (DBScanOld::mergeList(groups[i], groups[j])) {
        groups[j].clear();
      }
    }
    CorvexTagLogger::getInstance().infoBuilt(
        [&] { return "applyDbScanInner: " + std::to_string(groups[i].size()); });
  }
}

}  // namespace

std::vector<Point> DBScanOld::getFilteredPointList(std::vector<Point>& points, double eps,
                                                   int minPts) {
  CorvexTagLogger& logger = CorvexTagLogger::getInstance();
  logger.infoBuilt([&] { return "getFilteredPointList"; });
  if (points.empty()) {
    logger.error("points is empty!");
    return {};
  }
  std::vector<std::vector<Point>> groups = applyDbScanInner(points, eps, minPts);
  if (groups.empty()) {
    logger.error("dbscanResult is empty.");
    return {};
  }
  // The earliest of the largest groups, as a stable sort by size would put it first.
  auto largest = std::max_element(
      groups.begin(), groups.end(),
      [](std::vector<Point> const& a, std::vector<Point> const& b) { return a.size() < b.size(); });
  if (largest->empty()) {
    logger.error("filteredPointList is empty.");
    return {};
  }
  return std::move(*largest);
}

std::vector<std::vector<Point>> DBScanOld::applyDbScanInner(std::vector<Point>& points, double eps,
                                                            int minPts) {
  std::vector<std::vector<Point>> groups;
  bool const distinct = idsDistinct(points);
  for (Point& point : points) {
    if (point.isClassed()) {
      continue;
    }
    std::vector<Point> neighbourhood = neighbourhoodOf(points, point, eps, minPts, distinct);
    if (!neighbourhood.empty()) {
      groups.push_back(std::move(neighbourhood));
    }
  }
  mergeGroups(groups);
  CorvexTagLogger::getInstance().infoBuilt(
      [&] { return "applyDbScanInner: result size " + std::to_string(groups.size()); });
  return groups;
}

std::vector<Point> DBScanOld::getKeyPoint(std::vector<Point>& points, Point& p, double eps,
                                          int minPts) {
  return neighbourhoodOf(points, p, eps, minPts, false);
}

std::vector<Point> DBScanOld::neighbourhoodOf(std::vector<Point>& points, Point& p, double eps,
                                              int minPts, bool idsDistinct) {
  std::vector<Point> neighbourhood;
  int neighbours = 0;
  for (Point& candidate : points) {
    if (!(candidate.getDistanceGNSS(p) < eps)) {
      continue;
    }
    ++neighbours;
    if (idsDistinct || !contains(neighbourhood, candidate)) {
      candidate.setClassed(true);
      neighbourhood.push_back(candidate);
    }
  }
  if (neighbours >= minPts) {
    p.setKey(true);
  }
  return neighbourhood;
}

bool DBScanOld::mergeList(std::vector<Point>& a, std::vector<Point> const& b) {
  if (b.empty() || !sharesPoint(a, b)) {
    return false;
  }
  for (Point const& point : b) {
    if (!contains(a, point)) {
      a.push_back(point);
    }
  }
  return true;
}

void DBScanOld::setListClassed(std::vector<Point>& list) {
  for (Point& point : list) {
    if (!point.isClassed()) {
      point.setClassed(true);
    }
  }
}

}  // namespace Vantis::Location
