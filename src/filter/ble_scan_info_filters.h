#ifndef CORVEX_FILTER_BLE_SCAN_INFO_FILTERS_H_
#define CORVEX_FILTER_BLE_SCAN_INFO_FILTERS_H_

#include <string>
#include <vector>

#include "calculator/locate_trace.h"
#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// The filter pipeline that turns all scan records of one tag into those the position solver
// may use, and the choice of one cluster of observing positions among several.
// Positions are local east/north metres; time stamps are milliseconds.
class BleScanInfoFilters {
 public:
  // Printed as its integer; any non-zero value behaves as STATIC_STAGE.
  enum DbscanStage : int { DYNAMIC_STAGE = 0, STATIC_STAGE = 1 };

  using Cluster = std::vector<BleScanInfoWithConfidence>;
  using ClusterList = std::vector<Cluster>;

  // Survivors of all stages in ascending time order; `infos` must be in ascending time order.
  // Appends the record count after each stage to `infoCount`. When `fates` is given (one entry
  // per record of the caller's array), marks each record by the stage that removed it, or kept.
  static std::vector<BleScanInfoWithConfidence> filter(
      std::vector<BleScanInfoWithConfidence> const& infos, std::vector<int>& infoCount,
      std::vector<LocateTrace::Fate>* fates = nullptr);

  // Orders records by scan time, oldest first; stable, so equal times keep their order. The
  // pipeline and the main calculator share this one order.
  static void sortByTimeStamp(std::vector<BleScanInfoWithConfidence>& infos);
  // Replaces `infos` by one cluster of its records (see the stage for radius and chooser).
  static void dbscanClustering(std::vector<BleScanInfoWithConfidence>& infos, DbscanStage stage);
  static void dbscanClustering(RecordSubset& infos, DbscanStage stage);
  static void printClusterResult(ClusterList const& clusters);
  // "[a, b]", or "[]" when empty.
  static std::string printVec(std::vector<int> const& values);

  // Cluster choosers: an index into `clusters`, or -1 when undecided.
  // The cluster of the newest record, if the tag did not hop between clusters recently.
  static int getClusterByTimeSwitchCheck(ClusterList const& clusters);
  // May erase clusters more than two hours older than the newest one.
  static int selectStaticCluster(ClusterList& clusters);
  static int selectDynamicCluster(ClusterList const& clusters);
  // The only cluster seen within two hours of the newest; otherwise erases the older ones.
  static int getLatestCluster(ClusterList& clusters);
  // Cluster index per record, newest first, up to the first jump of more than 400 metres;
  // -1 after it.
  static std::vector<int> getLatestPointsCluster(ClusterList const& clusters);
  // The only cluster with enough GNSS records.
  static int getHaveGnssCluster(ClusterList const& clusters);
  // The only cluster with at least two near-certain, accurate fixes.
  static int getActiveCluster(ClusterList const& clusters);
  static int getActiveCount(Cluster const& cluster);
  static int getGnssCount(Cluster const& cluster);
  // First of the largest clusters.
  static int findBiggestClusterIndex(ClusterList const& clusters);
  // Newest scan time (ms) of the cluster, at least 0.
  static long long getClusterTimeStamp(Cluster const& cluster);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_BLE_SCAN_INFO_FILTERS_H_
