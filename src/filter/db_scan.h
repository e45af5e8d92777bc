#ifndef CORVEX_FILTER_DB_SCAN_H_
#define CORVEX_FILTER_DB_SCAN_H_

#include <algorithm>
#include <climits>
#include <cstddef>
#include <memory>
#include <numeric>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "filter/neighbour_grid.h"
#include "geometry/distance_calculator.h"
#include "geometry/normal_distance.h"
#include "interface/corvex_tag_logger.h"
#include "model/db_scan_class.h"

namespace Vantis::Location {

// Density-based clustering (DBSCAN, Ester, Kriegel, Sander and Xu, KDD 1996) of records by the
// {x, y} position getPoint() gives. T derives from DbScanClass and has operator<, operator==,
// precedesInTotalOrder and nanFieldMask, and getPoint() is {lon, lat} of its
// getLastLocationConst(); like a scan record, it is ordered first by a
// getBlueToothRecordConst() free of NaN, and every field of its operator< also takes part in its
// operator==. Departures from the textbook: a record reached once is never touched again, so a
// record found to be noise never becomes a border record of a later cluster; a record operator== to
// a centre is never its neighbour; and records equivalent under operator< count as one record
// wherever the algorithm asks whether a record was seen.
template <typename T>
class DbScan {
 public:
  // eps: neighbourhood radius (units of getPoint()); minPts: neighbours a core record needs.
  DbScan(double eps, int minPts);

  // Clusters in the order of their founding records; noise is dropped. Members are copies.
  std::vector<std::vector<T>> cluster(std::vector<T> const& infos) const;
  // The same clusters as positions in `infos`, for callers that need not copy records.
  std::vector<std::vector<size_t>> clusterIndices(std::vector<T> const& infos) const;
  // The single steps of the algorithm, for callers that need them; cluster() works on indices.
  // Copies of the records of `infos`, in order, within eps of `centre` and not == to it.
  std::vector<T> getNeighbours(T const& centre, std::vector<T> const& infos) const;
  // Appends the records of `others` not equivalent to any record `seeds` held at entry.
  static void merge(std::vector<T>& seeds, std::vector<T> const& others);
  double distance(DbScanClass const* a, DbScanClass const* b) const;

 private:
  class Pass;

  // Both labels are 0, so a label only says that a record was handled; the grid's claims
  // rely on that.
  int noiseLabel = 0;
  int clusterLabel = 0;
  double eps;  // >= 0, or NaN
  int minPts;  // >= 0
  std::shared_ptr<DistanceCalculator> distanceCalculator;
};

// The working state of one cluster() call. Records are handled by index; each record's
// equivalence class under operator< is computed once, and a class is labelled (handled) or
// claimed (in the current seed list) as a whole, which is what lookups in an ordered label
// map and an ordered seed set amount to. Unclaimed records are found through a NeighbourGrid.
// That holds only while operator< is a strict weak ordering of the records. When NaN fields
// break it, ordered containers keyed by it have no defined behaviour (a replay of them could
// loop and grow without end); the classes are then those of precedesInTotalOrder, operator<
// with NaN after every number and equivalent to every NaN: deterministic, and the pass ends
// as it always does, each record claimed once.
template <typename T>
class DbScan<T>::Pass {
 public:
  Pass(DbScan const& scan, std::vector<T> const& infos);

  std::vector<std::vector<size_t>> run();

 private:
  template <typename Less>
  void groupEquivalents(Less less);
  bool ordersStrictWeakly() const;
  bool slotsFollowClasses(std::vector<size_t>::const_iterator first,
                          std::vector<size_t>::const_iterator last) const;
  bool isNeighbour(size_t centre, size_t candidate) const;
  bool isCore(size_t centre) const;
  // Appends the unclaimed neighbours of `centre` to `seeds` in input order (one list grows the
  // whole cluster) and claims their classes.
  void claimNeighbours(size_t centre, std::vector<size_t>& seeds);
  void claimClass(size_t equivalenceClass);
  std::vector<size_t> addCluster(size_t founder);

  static NeighbourGrid makeGrid(std::vector<T> const& infos, double eps);

  DbScan const& scan;
  std::vector<T> const& infos;
  NeighbourGrid grid;
  std::vector<size_t> classOf;              // equivalence class of each record
  std::vector<size_t> byClass;              // records grouped by class
  std::vector<size_t> classBegin;           // members of class c: byClass[classBegin[c] .. [c + 1])
  std::vector<char> classClaimed;           // a labelled class is also claimed
  std::vector<std::optional<int>> labelOf;  // per class
};

template <typename T>
DbScan<T>::DbScan(double eps, int minPts)
    : eps(eps), minPts(minPts), distanceCalculator(std::make_shared<NormalDistance>()) {
  if (this->eps < 0.0) {
    CorvexTagLogger::getInstance().infoBuilt(
        [&] { return "DBSCAN eps error. eps = " + std::to_string(this->eps); });
    this->eps = 0.0;
  }
  if (this->minPts < 0) {
    CorvexTagLogger::getInstance().infoBuilt(
        [&] { return "DBSCAN minPts error. minPts = " + std::to_string(this->minPts); });
    this->minPts = INT_MAX;  // every record becomes noise
  }
}

template <typename T>
std::vector<std::vector<T>> DbScan<T>::cluster(std::vector<T> const& infos) const {
  std::vector<std::vector<T>> clusters;
  for (std::vector<size_t> const& members : clusterIndices(infos)) {
    clusters.emplace_back();
    clusters.back().reserve(members.size());
    for (size_t member : members) {
      clusters.back().push_back(infos[member]);
    }
  }
  return clusters;
}

template <typename T>
std::vector<std::vector<size_t>> DbScan<T>::clusterIndices(std::vector<T> const& infos) const {
  if (infos.empty()) {
    return {};
  }
  return Pass(*this, infos).run();
}

template <typename T>
std::vector<T> DbScan<T>::getNeighbours(T const& centre, std::vector<T> const& infos) const {
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
double DbScan<T>::distance(DbScanClass const* a, DbScanClass const* b) const {
  return distanceCalculator->compute(a->getPoint(), b->getPoint());
}

template <typename T>
DbScan<T>::Pass::Pass(DbScan const& scan, std::vector<T> const& infos)
    : scan(scan), infos(infos), grid(makeGrid(infos, scan.eps)) {
  groupEquivalents([](T const& a, T const& b) { return a < b; });
  if (!ordersStrictWeakly()) {
    groupEquivalents([](T const& a, T const& b) { return a.precedesInTotalOrder(b); });
  }
}

template <typename T>
NeighbourGrid DbScan<T>::Pass::makeGrid(std::vector<T> const& infos, double eps) {
  std::vector<double> xs;
  std::vector<double> ys;
  xs.reserve(infos.size());
  ys.reserve(infos.size());
  for (T const& info : infos) {  // getPoint() without building a vector per record
    xs.push_back(info.getLastLocationConst().getLon());
    ys.push_back(info.getLastLocationConst().getLat());
  }
  return NeighbourGrid(std::move(xs), std::move(ys), eps);
}

// Sorting is stable and neighbours are compared both ways, so that an operator< that is no
// strict weak ordering (NaN fields) still gives well-formed, deterministic classes.
template <typename T>
template <typename Less>
void DbScan<T>::Pass::groupEquivalents(Less less) {
  byClass.resize(infos.size());
  std::iota(byClass.begin(), byClass.end(), size_t{0});
  // Both orders decide by scan time first: the cached time settles most comparisons.
  std::vector<long long> times(infos.size());
  for (size_t i = 0; i < infos.size(); ++i) {
    times[i] = infos[i].getBlueToothRecordConst().getTimeStamp();
  }
  std::stable_sort(byClass.begin(), byClass.end(), [this, less, &times](size_t a, size_t b) {
    return times[a] != times[b] ? times[a] < times[b] : less(infos[a], infos[b]);
  });
  classOf.resize(infos.size());
  classBegin.clear();
  for (size_t slot = 0; slot < byClass.size(); ++slot) {
    T const& info = infos[byClass[slot]];
    T const& previous = infos[byClass[slot == 0 ? 0 : slot - 1]];
    if (slot == 0 || less(previous, info) || less(info, previous)) {
      classBegin.push_back(slot);
    }
    classOf[byClass[slot]] = classBegin.size() - 1;
  }
  classBegin.push_back(byClass.size());
  classClaimed.assign(classBegin.size() - 1, 0);
  labelOf.assign(classBegin.size() - 1, std::nullopt);
}

// A scan record's operator< decides by its BlueToothRecord first, whose fields cannot be NaN,
// and every ordering field also takes part in operator==. So the ordering can only break among
// at least three records with equivalent BlueToothRecords and different NaN fields; such
// groups are checked against the sorted classes.
template <typename T>
bool DbScan<T>::Pass::ordersStrictWeakly() const {
  if (std::all_of(infos.begin(), infos.end(), [](T const& info) { return info == info; })) {
    return true;
  }
  auto const scanOf = [this](size_t slot) -> auto const& {
    return infos[byClass[slot]].getBlueToothRecordConst();
  };
  std::vector<size_t> slots(byClass.size());  // by scan, each group in ascending slot order
  std::iota(slots.begin(), slots.end(), size_t{0});
  std::stable_sort(slots.begin(), slots.end(),
                   [&scanOf](size_t a, size_t b) { return scanOf(a) < scanOf(b); });
  for (size_t begin = 0, end = 1; begin < slots.size(); begin = end++) {
    while (end < slots.size() && !(scanOf(slots[end - 1]) < scanOf(slots[end]))) {
      ++end;
    }
    if (!slotsFollowClasses(slots.begin() + begin, slots.begin() + end)) {
      return false;
    }
  }
  return true;
}

// Whether the records in these slots (ascending) are ordered exactly as their classes say.
// Records of one scan with the same NaN fields order strictly weakly, and stable_sort put them
// in order. Otherwise records equivalent under precedesInTotalOrder compare alike with every record
// (they differ at most in NaN payloads and zero signs), so one representative of each is checked
// pairwise once all of them are found in one class: a run of identical records costs a sort, not a
// square.
template <typename T>
bool DbScan<T>::Pass::slotsFollowClasses(std::vector<size_t>::const_iterator first,
                                         std::vector<size_t>::const_iterator last) const {
  auto const record = [this](size_t slot) -> T const& { return infos[byClass[slot]]; };
  unsigned const mask = record(*first).nanFieldMask();
  if (last - first < 3 || std::all_of(first, last, [&record, mask](size_t slot) {
        return record(slot).nanFieldMask() == mask;
      })) {
    return true;
  }
  std::vector<size_t> alike(first, last);
  std::stable_sort(alike.begin(), alike.end(), [&record](size_t a, size_t b) {
    return record(a).precedesInTotalOrder(record(b));
  });
  std::vector<size_t> representatives = {alike.front()};
  for (size_t i = 1; i < alike.size(); ++i) {
    if (record(alike[i - 1]).precedesInTotalOrder(record(alike[i]))) {
      representatives.push_back(alike[i]);
    } else if (classOf[byClass[alike[i]]] != classOf[byClass[representatives.back()]]) {
      return false;
    }
  }
  std::sort(representatives.begin(), representatives.end());
  for (auto lower = representatives.begin(); lower != representatives.end(); ++lower) {
    for (auto upper = lower + 1; upper != representatives.end(); ++upper) {
      bool const equivalent = classOf[byClass[*lower]] == classOf[byClass[*upper]];
      if (record(*upper) < record(*lower) || (record(*lower) < record(*upper)) == equivalent) {
        return false;
      }
    }
  }
  return true;
}

template <typename T>
std::vector<std::vector<size_t>> DbScan<T>::Pass::run() {
  std::vector<std::vector<size_t>> clusters;
  for (size_t record = 0; record < infos.size(); ++record) {
    std::optional<int>& label = labelOf[classOf[record]];
    if (label) {
      continue;
    }
    if (!isCore(record)) {
      label = scan.noiseLabel;
      claimClass(classOf[record]);
      continue;
    }
    clusters.push_back(addCluster(record));
  }
  return clusters;
}

template <typename T>
bool DbScan<T>::Pass::isNeighbour(size_t centre, size_t candidate) const {
  return grid.withinEps(centre, candidate) && !(infos[candidate] == infos[centre]);
}

// Counts neighbours only as far as minPts.
template <typename T>
bool DbScan<T>::Pass::isCore(size_t centre) const {
  size_t const needed = static_cast<size_t>(scan.minPts);
  size_t found = 0;
  if (needed > 0) {
    grid.forEachNear(centre, [&](size_t candidate) {
      if (isNeighbour(centre, candidate)) {
        ++found;
      }
      return found < needed;
    });
  }
  return found >= needed;
}

// Records of classes claimed before are left out: either they are labelled, and would be
// skipped, or their class is already in the seed list, and a merge would not take them.
template <typename T>
void DbScan<T>::Pass::claimNeighbours(size_t centre, std::vector<size_t>& seeds) {
  size_t const first = seeds.size();
  grid.forEachUnclaimedNear(centre, [&](size_t candidate) {
    if (isNeighbour(centre, candidate)) {
      seeds.push_back(candidate);
    }
    return true;
  });
  std::sort(seeds.begin() + static_cast<std::ptrdiff_t>(first), seeds.end());
  for (size_t slot = first; slot < seeds.size(); ++slot) {
    claimClass(classOf[seeds[slot]]);
  }
}

template <typename T>
void DbScan<T>::Pass::claimClass(size_t equivalenceClass) {
  if (classClaimed[equivalenceClass]) {
    return;
  }
  classClaimed[equivalenceClass] = 1;
  for (size_t slot = classBegin[equivalenceClass]; slot < classBegin[equivalenceClass + 1];
       ++slot) {
    grid.claim(byClass[slot]);
  }
}

template <typename T>
std::vector<size_t> DbScan<T>::Pass::addCluster(size_t founder) {
  std::vector<size_t> members = {founder};
  labelOf[classOf[founder]] = scan.clusterLabel;
  claimClass(classOf[founder]);
  std::vector<size_t> seeds;
  claimNeighbours(founder, seeds);
  for (size_t next = 0; next < seeds.size(); ++next) {
    size_t const seed = seeds[next];
    std::optional<int>& label = labelOf[classOf[seed]];
    if (label) {
      continue;
    }
    if (isCore(seed)) {
      claimNeighbours(seed, seeds);
    }
    label = scan.clusterLabel;
    members.push_back(seed);
  }
  return members;
}

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_DB_SCAN_H_
