#ifndef CORVEX_FILTER_DB_SCAN_H_
#define CORVEX_FILTER_DB_SCAN_H_

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "filter/key_numbering.h"
#include "filter/neighbour_grid.h"
#include "filter/record_subset.h"
#include "geometry/distance_calculator.h"
#include "geometry/normal_distance.h"
#include "interface/corvex_tag_logger.h"
#include "model/db_scan_class.h"
#include "model/strict_weak_order_check.h"

namespace Vantis::Location {

// Density-based clustering (DBSCAN, Ester, Kriegel, Sander and Xu, KDD 1996) of records by the
// {x, y} position getPoint() gives. T is the scan record (StrictWeakOrderCheck knows its
// fields): it derives from DbScanClass, has operator<, operator== and precedesInTotalOrder,
// getPoint() is {lon, lat} of its getLastLocationConst(), it is ordered first by a
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
  // The same clusters as indices into `infos`, for callers that need not copy records.
  std::vector<std::vector<size_t>> clusterIndices(RecordSubset const& infos) const;
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
  Pass(DbScan const& scan, RecordSubset const& infos);

  std::vector<std::vector<size_t>> run();

 private:
  std::vector<size_t> recordsSharingTimes() const;
  template <typename Less>
  void groupEquivalents(std::vector<size_t> const& shared, Less less);
  long long timeStampOf(size_t record) const {
    return infos[record].getBlueToothRecordConst().getTimeStamp();
  }
  bool ordersStrictWeakly(std::vector<size_t> const& shared) const;
  bool isNeighbour(size_t centre, size_t candidate) const;
  bool isCore(size_t centre) const;
  // Appends the unclaimed neighbours of `centre` to `seeds` in input order (one list grows the
  // whole cluster) and claims their classes.
  void claimNeighbours(size_t centre);
  // Puts seeds[first..] in ascending order: a large batch by marking, a small one by sorting.
  void orderBatch(size_t first);
  void claimClass(size_t equivalenceClass);
  std::vector<size_t> addCluster(size_t founder);

  static NeighbourGrid makeGrid(RecordSubset const& infos, double eps);

  DbScan const& scan;
  RecordSubset const& infos;
  NeighbourGrid grid;
  std::vector<size_t> classOf;              // equivalence class of each record
  std::vector<size_t> byClass;              // records grouped by class
  std::vector<size_t> classBegin;           // members of class c: byClass[classBegin[c] .. [c + 1])
  std::vector<char> classClaimed;           // a labelled class is also claimed
  std::vector<std::optional<int>> labelOf;  // per class
  std::vector<char> inBatch;                // by record, while a batch is put in order
  std::vector<size_t> seeds;                // of the cluster being grown
  std::vector<size_t> members;              // of the cluster being grown
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
  for (std::vector<size_t>& members : clusterIndices(infos)) {
    clusters.push_back(RecordSubset(infos, std::move(members)).records());
  }
  return clusters;
}

template <typename T>
std::vector<std::vector<size_t>> DbScan<T>::clusterIndices(RecordSubset const& infos) const {
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
DbScan<T>::Pass::Pass(DbScan const& scan, RecordSubset const& infos)
    : scan(scan), infos(infos), grid(makeGrid(infos, scan.eps)) {
  seeds.reserve(infos.size());
  members.reserve(infos.size());
  std::vector<size_t> const shared = recordsSharingTimes();
  if (ordersStrictWeakly(shared)) {
    groupEquivalents(shared, [](T const& a, T const& b) { return a < b; });
  } else {
    groupEquivalents(shared, [](T const& a, T const& b) { return a.precedesInTotalOrder(b); });
  }
}

// Both orders decide by scan time first, so only records of one scan time can be equivalent.
// Those records, by time and then position; usually few.
template <typename T>
std::vector<size_t> DbScan<T>::Pass::recordsSharingTimes() const {
  KeyNumbering times(infos.size());
  std::vector<size_t> timeOf(infos.size());
  for (size_t i = 0; i < infos.size(); ++i) {
    timeOf[i] = times.number(static_cast<std::uint64_t>(timeStampOf(i)));
  }
  std::vector<size_t> records(times.size(), 0);
  for (size_t time : timeOf) {
    ++records[time];
  }
  std::vector<size_t> shared;
  for (size_t i = 0; i < infos.size(); ++i) {
    if (records[timeOf[i]] > 1) {
      shared.push_back(i);
    }
  }
  std::stable_sort(shared.begin(), shared.end(),
                   [this](size_t a, size_t b) { return timeStampOf(a) < timeStampOf(b); });
  return shared;
}

template <typename T>
NeighbourGrid DbScan<T>::Pass::makeGrid(RecordSubset const& infos, double eps) {
  std::vector<std::pair<double, double>> points;
  points.reserve(infos.size());
  for (T const& info : infos) {  // getPoint() without building a vector per record
    points.emplace_back(info.getLastLocationConst().getLon(), info.getLastLocationConst().getLat());
  }
  return NeighbourGrid(std::move(points), eps);
}

// A record with a scan time of its own is a class of its own; these come first in byClass.
// The records sharing a time follow, and sorting is stable and neighbours are compared both
// ways, so that an operator< that is no strict weak ordering (NaN fields) still gives
// well-formed, deterministic classes.
template <typename T>
template <typename Less>
void DbScan<T>::Pass::groupEquivalents(std::vector<size_t> const& shared, Less less) {
  std::vector<char> sharesTime(infos.size(), 0);
  for (size_t record : shared) {
    sharesTime[record] = 1;
  }
  byClass.clear();
  byClass.reserve(infos.size());
  classBegin.clear();
  classBegin.reserve(infos.size() + 1);
  classOf.resize(infos.size());
  for (size_t record = 0; record < infos.size(); ++record) {
    if (sharesTime[record] == 0) {
      classOf[record] = classBegin.size();
      classBegin.push_back(byClass.size());
      byClass.push_back(record);
    }
  }
  size_t const firstShared = byClass.size();
  byClass.insert(byClass.end(), shared.begin(), shared.end());
  auto const sameTime = [this](size_t a, size_t b) { return timeStampOf(a) == timeStampOf(b); };
  for (auto run = byClass.begin() + static_cast<std::ptrdiff_t>(firstShared);
       run != byClass.end();) {
    auto const runEnd =
        std::find_if_not(run, byClass.end(), [&](size_t r) { return sameTime(r, *run); });
    std::stable_sort(run, runEnd,
                     [this, less](size_t a, size_t b) { return less(infos[a], infos[b]); });
    run = runEnd;
  }
  for (size_t slot = firstShared; slot < byClass.size(); ++slot) {
    T const& info = infos[byClass[slot]];
    T const& previous = infos[byClass[slot == firstShared ? slot : slot - 1]];
    if (slot == firstShared || !sameTime(byClass[slot - 1], byClass[slot]) ||
        less(previous, info) || less(info, previous)) {
      classBegin.push_back(slot);
    }
    classOf[byClass[slot]] = classBegin.size() - 1;
  }
  classBegin.push_back(byClass.size());
  classClaimed.assign(classBegin.size() - 1, 0);
  labelOf.assign(classBegin.size() - 1, std::nullopt);
}

// Records of distinct scan times are ordered by them, so only the shared ones can break the
// ordering, and only through NaN fields, which every ordering field also takes to operator==.
template <typename T>
bool DbScan<T>::Pass::ordersStrictWeakly(std::vector<size_t> const& shared) const {
  std::vector<T const*> records;
  records.reserve(shared.size());
  for (size_t record : shared) {
    records.push_back(&infos[record]);
  }
  if (std::all_of(records.begin(), records.end(), [](T const* r) { return *r == *r; })) {
    return true;
  }
  return StrictWeakOrderCheck::holds(std::move(records));
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
void DbScan<T>::Pass::claimNeighbours(size_t centre) {
  size_t const first = seeds.size();
  grid.forEachUnclaimedNear(centre, [&](size_t candidate) {
    if (isNeighbour(centre, candidate)) {
      seeds.push_back(candidate);
    }
    return true;
  });
  orderBatch(first);
  for (size_t slot = first; slot < seeds.size(); ++slot) {
    claimClass(classOf[seeds[slot]]);
  }
}

// A batch holds each record once. Marking costs the span of its indices, sorting about
// log2(size) steps per record: a founder in a dense crowd claims nearly everyone at once.
template <typename T>
void DbScan<T>::Pass::orderBatch(size_t first) {
  auto const begin = seeds.begin() + static_cast<std::ptrdiff_t>(first);
  if (seeds.end() - begin < 2) {
    return;
  }
  auto const [low, high] = std::minmax_element(begin, seeds.end());
  size_t const span = *high - *low + 1;
  if (span > 16 * static_cast<size_t>(seeds.end() - begin)) {
    std::sort(begin, seeds.end());
    return;
  }
  size_t const from = *low;
  inBatch.resize(infos.size(), 0);
  for (auto seed = begin; seed != seeds.end(); ++seed) {
    inBatch[*seed] = 1;
  }
  auto out = begin;
  for (size_t record = from; record < from + span; ++record) {
    if (inBatch[record] != 0) {
      inBatch[record] = 0;
      *out++ = record;
    }
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

// seeds and members are working lists kept for the whole pass: a cluster costs one allocation.
template <typename T>
std::vector<size_t> DbScan<T>::Pass::addCluster(size_t founder) {
  members.assign(1, founder);
  labelOf[classOf[founder]] = scan.clusterLabel;
  claimClass(classOf[founder]);
  seeds.clear();
  claimNeighbours(founder);
  for (size_t next = 0; next < seeds.size(); ++next) {
    size_t const seed = seeds[next];
    std::optional<int>& label = labelOf[classOf[seed]];
    if (label) {
      continue;
    }
    // A seed is within eps of the record that found it and not == to it: a neighbour enough
    // when one is all a core record needs.
    if (scan.minPts <= 1 || isCore(seed)) {
      claimNeighbours(seed);
    }
    label = scan.clusterLabel;
    members.push_back(seed);
  }
  return std::vector<size_t>(members.begin(), members.end());
}

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_DB_SCAN_H_
