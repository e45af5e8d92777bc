#include "filter/ble_scan_info_filters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "filter/confidence_filter.h"
#include "filter/db_scan_filter.h"
#include "filter/distance_offset_filter.h"
#include "filter/distance_offset_from_gnss_filter.h"
#include "filter/kind_trans_id_filter.h"
#include "geometry/distance_utils.h"
#include "geometry/gnss_utils.h"
#include "interface/corvex_tag_logger.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {

namespace {
constexpr long long kMaxAge = 21600001;           // ms; more than six hours is too old
constexpr long long kMaxClusterAgeGap = 7200001;  // ms; more than two hours
constexpr int kMinConfidenceItems = 15;
constexpr double kMinConfidence = 0.6;
constexpr int kMinDistanceItems = 10;
constexpr double kMaxDistanceStd = 15.0;  // metres
constexpr int kClusterMinPts = 1;
constexpr double kDynamicEps = 400.0;           // metres
constexpr double kStaticEps = 60.0;             // metres
constexpr double kMaxLatestPointsJump = 400.0;  // metres
constexpr int kGnssLocationType = 1;
constexpr size_t kMinOneGnssClusterSize = 4;
constexpr double kActiveConfidence = 0.98;
constexpr float kMaxActiveAcc = 50.0f;  // metres

// `build` returns the message; it runs only when an info line would be kept.
template <typename Build>
void logInfo(Build const& build) {
  CorvexTagLogger::getInstance().infoBuilt(build);
}

// later - earlier (ms), wrapping like the hardware instead of overflowing.
long long elapsed(long long later, long long earlier) {
  return static_cast<long long>(static_cast<uint64_t>(later) - static_cast<uint64_t>(earlier));
}

long long timeStampOf(BleScanInfoWithConfidence const& info) {
  return info.getBlueToothRecordConst().getTimeStamp();
}

// Half the count, truncated, but at least `floor`.
int halfAtLeast(size_t count, int floor) {
  int half = static_cast<int>(static_cast<double>(count) * 0.5);
  return half > floor ? half : floor;
}

// The records at most six hours older than the last (newest) one, in order.
RecordSubset withinSixHours(std::vector<BleScanInfoWithConfidence> const& infos) {
  long long const newest = timeStampOf(infos.back());
  std::vector<size_t> recent;
  recent.reserve(infos.size());
  for (size_t i = 0; i < infos.size(); ++i) {
    if (elapsed(newest, timeStampOf(infos[i])) < kMaxAge) {
      recent.push_back(i);
    }
  }
  return RecordSubset(infos, std::move(recent));
}

// The order that sorts the records by scan time, oldest first; stable. (time, index) pairs
// sort without touching the records.
template <typename Records>
std::vector<size_t> timeOrder(Records const& infos) {
  std::vector<std::pair<long long, size_t>> keys;
  keys.reserve(infos.size());
  for (size_t i = 0; i < infos.size(); ++i) {
    keys.emplace_back(timeStampOf(infos[i]), i);
  }
  std::stable_sort(keys.begin(), keys.end(),
                   [](auto const& a, auto const& b) { return a.first < b.first; });
  std::vector<size_t> order;
  order.reserve(keys.size());
  for (auto const& key : keys) {
    order.push_back(key.second);
  }
  return order;
}

using Fate = LocateTrace::Fate;

bool isTracked(std::vector<Fate> const& fates, BleScanInfoWithConfidence const& info) {
  return info.getInputIndex() >= 0 && static_cast<size_t>(info.getInputIndex()) < fates.size();
}

// infos[k] becomes the record that stood at order[k], for every k: a permutation applied in
// place, one cycle at a time, so that no second array of records is needed.
void permute(std::vector<BleScanInfoWithConfidence>& infos, std::vector<size_t> const& order) {
  std::vector<char> placed(infos.size(), 0);
  for (size_t start = 0; start < infos.size(); ++start) {
    if (placed[start] != 0 || order[start] == start) {
      continue;
    }
    BleScanInfoWithConfidence carried = std::move(infos[start]);
    size_t slot = start;
    while (order[slot] != start) {
      infos[slot] = std::move(infos[order[slot]]);
      placed[slot] = 1;
      slot = order[slot];
    }
    infos[slot] = std::move(carried);
    placed[slot] = 1;
  }
}

BleScanInfoFilters::ClusterList copyClusters(RecordSubset const& infos,
                                             std::vector<std::vector<size_t>> const& memberLists) {
  BleScanInfoFilters::ClusterList clusters(memberLists.size());
  for (size_t c = 0; c < memberLists.size(); ++c) {
    clusters[c].reserve(memberLists[c].size());
    for (size_t member : memberLists[c]) {
      clusters[c].push_back(infos[member]);
    }
  }
  return clusters;
}

void markEntered(std::vector<Fate>* fates, std::vector<BleScanInfoWithConfidence> const& infos) {
  if (fates == nullptr) {
    return;
  }
  for (BleScanInfoWithConfidence const& info : infos) {
    if (isTracked(*fates, info)) {
      (*fates)[static_cast<size_t>(info.getInputIndex())] = Fate::kKept;
    }
  }
}

// Records still marked kept that are missing from `survivors` were removed by `stage`.
void markRemoved(std::vector<Fate>* fates, RecordSubset const& survivors, Fate stage) {
  if (fates == nullptr) {
    return;
  }
  std::vector<char> survived(fates->size(), 0);
  for (BleScanInfoWithConfidence const& info : survivors) {
    if (isTracked(*fates, info)) {
      survived[static_cast<size_t>(info.getInputIndex())] = 1;
    }
  }
  for (size_t i = 0; i < fates->size(); ++i) {
    if ((*fates)[i] == Fate::kKept && survived[i] == 0) {
      (*fates)[i] = stage;
    }
  }
}

}  // namespace

// The stages select positions in `infos`; only the survivors are copied, once, at the end.
std::vector<BleScanInfoWithConfidence> BleScanInfoFilters::filter(
    std::vector<BleScanInfoWithConfidence> const& infos, std::vector<int>& infoCount,
    std::vector<Fate>* fates) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos is null or empty");
    return {};
  }
  markEntered(fates, infos);
  infoCount.reserve(infoCount.size() + 8);  // a count per stage
  infoCount.push_back(static_cast<int>(infos.size()));
  RecordSubset result = withinSixHours(infos);
  markRemoved(fates, result, Fate::kAgeCut);
  infoCount.push_back(static_cast<int>(result.size()));
  // Without kinds the filter would keep every record in order, so it need not run.
  if (std::any_of(result.begin(), result.end(), KindTransIDFilter::hasKind)) {
    result.keep(KindTransIDFilter::keep(result));
  }
  markRemoved(fates, result, Fate::kKindTransId);
  infoCount.push_back(static_cast<int>(result.size()));
  result.keep(ConfidenceFilter::keep(result, halfAtLeast(result.size(), kMinConfidenceItems),
                                     kMinConfidence));
  markRemoved(fates, result, Fate::kConfidenceCut);
  infoCount.push_back(static_cast<int>(result.size()));
  logInfo([&] {
    return "Infos size(Before filter, Filtered by timeStamp, by kindTransID, by confidence): " +
           printVec(infoCount);
  });
  dbscanClustering(result, DYNAMIC_STAGE);
  markRemoved(fates, result, Fate::kDynamicCluster);
  infoCount.push_back(static_cast<int>(result.size()));
  dbscanClustering(result, STATIC_STAGE);
  markRemoved(fates, result, Fate::kStaticCluster);
  infoCount.push_back(static_cast<int>(result.size()));
  if (GnssUtils::isOutDoor(result)) {
    logInfo([&] { return "GnssRatio: " + std::to_string(GnssUtils::getGnssRatio(result)); });
    result.keep(DistanceOffsetFromGnssFilter::keep(result));
    markRemoved(fates, result, Fate::kGnssOffset);
    infoCount.push_back(static_cast<int>(result.size()));
    logInfo([&] { return "Infos size(Filtered by GNSS std): " + std::to_string(result.size()); });
    result.keep(DistanceOffsetFilter::keepByDistance(
        result, halfAtLeast(result.size(), kMinDistanceItems), kMaxDistanceStd));
    markRemoved(fates, result, Fate::kSpreadTrim);
    infoCount.push_back(static_cast<int>(result.size()));
    logInfo(
        [&] { return "Infos size(Filtered by distance std): " + std::to_string(result.size()); });
  }
  result.keep(timeOrder(result));
  return result.records();
}

void BleScanInfoFilters::sortByTimeStamp(std::vector<BleScanInfoWithConfidence>& infos) {
  auto const earlier = [](BleScanInfoWithConfidence const& a, BleScanInfoWithConfidence const& b) {
    return timeStampOf(a) < timeStampOf(b);
  };
  if (!std::is_sorted(infos.begin(), infos.end(), earlier)) {
    permute(infos, timeOrder(infos));
  }
}

void BleScanInfoFilters::dbscanClustering(std::vector<BleScanInfoWithConfidence>& infos,
                                          DbscanStage stage) {
  RecordSubset subset(infos);
  dbscanClustering(subset, stage);
  infos = subset.records();
}

void BleScanInfoFilters::dbscanClustering(RecordSubset& infos, DbscanStage stage) {
  std::string const stageText = std::to_string(static_cast<int>(stage));
  std::vector<std::vector<size_t>> const memberLists = DBScanFilter::filterIndices(
      infos, kClusterMinPts, stage == DYNAMIC_STAGE ? kDynamicEps : kStaticEps);
  size_t clusterCount = memberLists.size();
  if (clusterCount == 1) {
    infos.keep(memberLists.front());
  } else if (clusterCount == 0) {
    // Keeps the last record as the list stands, which need not be the newest one.
    if (!infos.empty()) {
      infos.keep({infos.size() - 1});
    }
    logInfo([&] { return "Cluster failed, return latest info in stage " + stageText; });
  } else {
    // Only a choice among several clusters needs them as record lists.
    ClusterList clusters = copyClusters(infos, memberLists);
    // The static chooser may erase clusters; the others keep their storage, by which the
    // chosen one is found among the member lists.
    std::vector<BleScanInfoWithConfidence const*> storage;
    for (Cluster const& cluster : clusters) {
      storage.push_back(cluster.data());
    }
    printClusterResult(clusters);
    int index =
        stage == DYNAMIC_STAGE ? selectDynamicCluster(clusters) : selectStaticCluster(clusters);
    if (index >= 0) {
      auto const chosen =
          std::find(storage.begin(), storage.end(), clusters[static_cast<size_t>(index)].data());
      infos.keep(memberLists[static_cast<size_t>(chosen - storage.begin())]);
    }
    clusterCount = clusters.size();  // the static chooser may have erased some
  }
  logInfo([&] {
    return "Filtered by DBScan stage " + stageText +
           ", Infos size: " + std::to_string(infos.size()) +
           ", cluster size: " + std::to_string(clusterCount);
  });
}

void BleScanInfoFilters::printClusterResult(ClusterList const& clusters) {
  std::vector<int> sizes;
  for (Cluster const& cluster : clusters) {
    sizes.push_back(static_cast<int>(cluster.size()));
  }
  logInfo([&] { return "Cluster size: " + printVec(sizes); });
}

std::string BleScanInfoFilters::printVec(std::vector<int> const& values) {
  return TagBestLocation::printVec(values);
}

std::vector<int> BleScanInfoFilters::getLatestPointsCluster(ClusterList const& clusters) {
  struct Labelled {
    int cluster;
    BleScanInfoWithConfidence const* info;
  };
  std::vector<Labelled> newestFirst;
  for (size_t i = 0; i < clusters.size(); ++i) {
    for (BleScanInfoWithConfidence const& info : clusters[i]) {
      newestFirst.push_back({static_cast<int>(i), &info});
    }
  }
  std::stable_sort(newestFirst.begin(), newestFirst.end(),
                   [](Labelled const& a, Labelled const& b) {
                     return timeStampOf(*a.info) > timeStampOf(*b.info);
                   });
  std::vector<int> labels(newestFirst.size(), -1);
  for (size_t i = 0; i < newestFirst.size(); ++i) {
    labels[i] = newestFirst[i].cluster;
    if (i + 1 < newestFirst.size() &&
        std::sqrt(DistanceUtils::distSquare(*newestFirst[i].info, *newestFirst[i + 1].info)) >
            kMaxLatestPointsJump) {
      logInfo([&] { return "isValid set to false, valid len = " + std::to_string(i + 1); });
      break;
    }
  }
  return labels;
}

int BleScanInfoFilters::getClusterByTimeSwitchCheck(ClusterList const& clusters) {
  std::vector<int> const labels = getLatestPointsCluster(clusters);
  logInfo([&] { return "Latest points belong to: " + printVec(labels); });
  // Each unbroken stretch of one label counts as one visit of that cluster.
  std::vector<int> visits(clusters.size(), 0);
  for (size_t i = labels.size(); i-- > 0;) {
    int label = labels[i];
    if (label != -1 && (i + 1 == labels.size() || labels[i + 1] != label)) {
      ++visits[static_cast<size_t>(label)];
    }
  }
  if (labels.size() < 2 || labels[0] < 0) {
    return -1;
  }
  bool oneVisit = visits[static_cast<size_t>(labels[0])] == 1;
  return oneVisit && labels[1] == labels[0] ? labels[0] : -1;
}

int BleScanInfoFilters::selectStaticCluster(ClusterList& clusters) {
  int index = getLatestCluster(clusters);
  if (index >= 0) {
    logInfo([&] { return "getLatestCluster"; });
    return index;
  }
  index = getHaveGnssCluster(clusters);
  if (index >= 0) {
    logInfo([&] { return "haveGnssCluster"; });
    return index;
  }
  index = getActiveCluster(clusters);
  if (index >= 0) {
    logInfo([&] { return "haveActiveCluster"; });
    return index;
  }
  index = getClusterByTimeSwitchCheck(clusters);
  return index >= 0 ? index : findBiggestClusterIndex(clusters);
}

int BleScanInfoFilters::selectDynamicCluster(ClusterList const& clusters) {
  int index = getClusterByTimeSwitchCheck(clusters);
  return index >= 0 ? index : findBiggestClusterIndex(clusters);
}

int BleScanInfoFilters::getLatestCluster(ClusterList& clusters) {
  struct Latest {
    int cluster;
    long long timeStamp;
  };
  std::vector<Latest> newestFirst;
  for (size_t i = 0; i < clusters.size(); ++i) {
    newestFirst.push_back({static_cast<int>(i), getClusterTimeStamp(clusters[i])});
  }
  std::stable_sort(newestFirst.begin(), newestFirst.end(),
                   [](Latest const& a, Latest const& b) { return a.timeStamp > b.timeStamp; });
  std::vector<int> stale;
  if (newestFirst.size() >= 2) {
    long long newest = newestFirst.front().timeStamp;
    for (size_t i = newestFirst.size() - 1; i >= 1; --i) {
      if (elapsed(newest, newestFirst[i].timeStamp) >= kMaxClusterAgeGap) {
        stale.push_back(newestFirst[i].cluster);
        newestFirst.erase(newestFirst.begin() + static_cast<std::ptrdiff_t>(i));
      }
    }
  }
  if (newestFirst.size() == 1) {
    logInfo([&] { return "saved cluster: " + std::to_string(newestFirst.front().cluster); });
    return newestFirst.front().cluster;
  }
  std::sort(stale.begin(), stale.end(), std::greater<int>());
  logInfo([&] { return "delete cluster: " + printVec(stale); });
  for (int index : stale) {
    clusters.erase(clusters.begin() + index);
  }
  return -1;
}

int BleScanInfoFilters::getHaveGnssCluster(ClusterList const& clusters) {
  int candidate = -1;
  int candidates = 0;
  for (size_t i = 0; i < clusters.size(); ++i) {
    int gnssCount = getGnssCount(clusters[i]);
    bool qualifies = gnssCount >= 2;
    if (gnssCount == 1 && clusters[i].size() >= kMinOneGnssClusterSize) {
      logInfo([&] { return "only one GNSS, needs careful consideration"; });
      qualifies = true;
    }
    if (qualifies) {
      candidate = static_cast<int>(i);
      ++candidates;
    }
  }
  return candidates == 1 ? candidate : -1;
}

int BleScanInfoFilters::getActiveCluster(ClusterList const& clusters) {
  int candidate = -1;
  int candidates = 0;
  for (size_t i = 0; i < clusters.size(); ++i) {
    if (getActiveCount(clusters[i]) >= 2) {
      candidate = static_cast<int>(i);
      ++candidates;
    }
  }
  return candidates == 1 ? candidate : -1;
}

int BleScanInfoFilters::getActiveCount(Cluster const& cluster) {
  int count = 0;
  for (BleScanInfoWithConfidence const& info : cluster) {
    if (info.getConfidence() >= kActiveConfidence &&
        info.getLastLocationConst().getAcc() < kMaxActiveAcc) {
      ++count;
    }
  }
  logInfo([&] { return "getActiveCount: " + std::to_string(count); });
  return count;
}

int BleScanInfoFilters::getGnssCount(Cluster const& cluster) {
  int count = 0;
  for (BleScanInfoWithConfidence const& info : cluster) {
    if (info.getLastLocationConst().getLocationType() == kGnssLocationType) {
      ++count;
    }
  }
  logInfo([&] { return "getGnssCount: " + std::to_string(count); });
  return count;
}

int BleScanInfoFilters::findBiggestClusterIndex(ClusterList const& clusters) {
  size_t biggestSize = 0;
  int biggest = -1;
  for (size_t i = 0; i < clusters.size(); ++i) {
    if (clusters[i].size() > biggestSize) {
      biggestSize = clusters[i].size();
      biggest = static_cast<int>(i);
    }
  }
  return biggest;
}

long long BleScanInfoFilters::getClusterTimeStamp(Cluster const& cluster) {
  long long newest = 0;
  for (BleScanInfoWithConfidence const& info : cluster) {
    newest = std::max(newest, timeStampOf(info));
  }
  return newest;
}

}  // namespace Vantis::Location
