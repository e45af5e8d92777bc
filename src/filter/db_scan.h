#ifndef CORVEX_FILTER_DB_SCAN_H_
#define CORVEX_FILTER_DB_SCAN_H_

#include <climits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "geometry/distance_calculator.h"
#include "geometry/normal_distance.h"
#include "interface/corvex_tag_logger.h"
#include "model/db_scan_class.h"

namespace Vantis::Location {

// Density-based clustering (DBSCAN, Ester, Kriegel, Sander and Xu, KDD 1996) of records by the
// position getPoint() gives. T derives from DbScanClass and has operator< and operator==.
// Departures from the textbook: a record reached once is never touched again, so a record
// found to be noise never becomes a border record of a later cluster, and a record
// operator== to a centre is never its neighbour.
template <typename T>
class DbScan {
 public:
  // eps: neighbourhood radius (units of getPoint()); minPts: neighbours a core record needs.
  DbScan(double eps, int minPts);

  // Clusters in the order of their founding records; noise is dropped. Members are copies.
  std::vector<std::vector<T>> cluster(std::vector<T> const& infos);
  // Copies of the records of `infos`, in order, within eps of `centre` and not == to it.
  std::vector<T> getNeighbours(T const& centre, std::vector<T> const& infos);
  // Appends the records of `others` not equivalent to any record `seeds` held at entry.
  static void merge(std::vector<T>& seeds, std::vector<T> const& others);
  double distance(DbScanClass const* a, DbScanClass const* b);

 private:
  std::vector<T> addCluster(std::vector<T> const& infos, std::map<T, int>& labels,
                            std::vector<T> cluster, T const& founder,
                            std::vector<T> const& neighbours);

  // Both labels are 0, so the label map is simply the set of records already handled.
  int noiseLabel = 0;
  int clusterLabel = 0;
  double eps;  // >= 0
  int minPts;  // >= 0
  std::shared_ptr<DistanceCalculator> distanceCalculator;
};

template <typename T>
DbScan<T>::DbScan(double eps, int minPts)
    : eps(eps), minPts(minPts), distanceCalculator(std::make_shared<NormalDistance>()) {
  if (this->eps < 0.0) {
    CorvexTagLogger::getInstance().info("DBSCAN eps error. eps = " + std::to_string(this->eps));
    this->eps = 0.0;
  }
  if (this->minPts < 0) {
    CorvexTagLogger::getInstance().info("DBSCAN minPts error. minPts = " +
                                        std::to_string(this->minPts));
    this->minPts = INT_MAX;  // every record becomes noise
  }
}

template <typename T>
std::vector<std::vector<T>> DbScan<T>::cluster(std::vector<T> const& infos) {
  std::vector<std::vector<T>> clusters;
  std::map<T, int> labels;
  for (T const& info : infos) {
    if (labels.find(info) != labels.end()) {
      continue;
    }
    std::vector<T> neighbours = getNeighbours(info, infos);
    if (neighbours.size() < static_cast<size_t>(minPts)) {
      labels.insert({info, noiseLabel});
      continue;
    }
    clusters.push_back(addCluster(infos, labels, {}, info, neighbours));
  }
  return clusters;
}

template <typename T>
std::vector<T> DbScan<T>::addCluster(std::vector<T> const& infos, std::map<T, int>& labels,
                                     std::vector<T> cluster, T const& founder,
                                     std::vector<T> const& neighbours) {
  cluster.push_back(founder);
  labels.insert({founder, clusterLabel});
  std::vector<T> seeds = neighbours;
  for (size_t i = 0; i < seeds.size(); ++i) {
    T const seed = seeds[i];  // merge may reallocate the seed list
    auto found = labels.find(seed);
    if (found == labels.end()) {
      std::vector<T> seedNeighbours = getNeighbours(seed, infos);
      if (seedNeighbours.size() >= static_cast<size_t>(minPts)) {
        merge(seeds, seedNeighbours);
      }
    } else if (found->second == clusterLabel) {
      continue;
    }
    labels.insert({seed, clusterLabel});
    cluster.push_back(seed);
  }
  return cluster;
}

template <typename T>
std::vector<T> DbScan<T>::getNeighbours(T const& centre, std::vector<T> const& infos) {
  std::vector<T> neighbours;
  for (T const& info : infos) {
    if (!(info == centre) && distance(&centre, &info) <= eps) {
      neighbours.push_back(info);
    }
  }
  return neighbours;
}

template <typename T>
void DbScan<T>::merge(std::vector<T>& seeds, std::vector<T> const& others) {
  std::set<T> const present(seeds.begin(), seeds.end());
  for (T const& other : others) {
    if (present.find(other) == present.end()) {
      seeds.push_back(other);
    }
  }
}

template <typename T>
double DbScan<T>::distance(DbScanClass const* a, DbScanClass const* b) {
  return distanceCalculator->compute(a->getPoint(), b->getPoint());
}

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_DB_SCAN_H_
