// Scan records for the filter tests: position in local metres, scan time and the fields the
// filters look at.
#ifndef CORVEX_TESTS_SUPPORT_FILTER_RECORDS_H_
#define CORVEX_TESTS_SUPPORT_FILTER_RECORDS_H_

#include <string>
#include <vector>

#include "model/ble_scan_info_with_confidence.h"

namespace corvex_test {

using Vantis::Location::BleScanInfoWithConfidence;
using Vantis::Location::BlueToothRecord;
using Vantis::Location::LastLocation;

// x, y (metres), time (ms); locationType 1 makes a GNSS record.
inline BleScanInfoWithConfidence makeRecord(double x, double y, long long time = 0,
                                            int locationType = 0, double confidence = 0.5,
                                            int rssi = -60) {
  BleScanInfoWithConfidence info(BlueToothRecord(time, rssi),
                                 LastLocation(x, y, 10.0f, locationType, 0), 0, 0, confidence);
  info.getLastLocation().setEnu(true);
  return info;
}

// Records are told apart by floorInfo, which takes part in neither comparison.
inline BleScanInfoWithConfidence tagged(BleScanInfoWithConfidence info, std::string const& id) {
  info.getLastLocation().setFloorInfo(id);
  return info;
}

inline std::string idOf(BleScanInfoWithConfidence const& info) {
  return info.getLastLocationConst().getFloorInfo();
}

inline std::vector<std::string> idsOf(std::vector<BleScanInfoWithConfidence> const& infos) {
  std::vector<std::string> ids;
  for (BleScanInfoWithConfidence const& info : infos) {
    ids.push_back(idOf(info));
  }
  return ids;
}

inline std::vector<std::vector<std::string>> idsOf(
    std::vector<std::vector<BleScanInfoWithConfidence>> const& clusters) {
  std::vector<std::vector<std::string>> ids;
  for (std::vector<BleScanInfoWithConfidence> const& cluster : clusters) {
    ids.push_back(idsOf(cluster));
  }
  return ids;
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_FILTER_RECORDS_H_
