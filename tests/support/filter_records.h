// Scan records for the filter tests, placed in local metres and told apart by an id.
#ifndef CORVEX_TESTS_SUPPORT_FILTER_RECORDS_H_
#define CORVEX_TESTS_SUPPORT_FILTER_RECORDS_H_

#include <string>
#include <vector>

#include "model/ble_scan_info_with_confidence.h"

namespace corvex_test {

using Record = Vantis::Location::BleScanInfoWithConfidence;
using Records = std::vector<Record>;
using Ids = std::vector<std::string>;

// x, y (metres), time (ms); locationType 1 makes a GNSS record. The id goes to floorInfo,
// which takes part in neither comparison.
inline Record makeRecord(double x, double y, long long time = 0, int locationType = 0,
                         double confidence = 0.5, std::string const& id = "", int rssi = -60) {
  Vantis::Location::LastLocation location(x, y, 10.0f, locationType, 0);
  location.setEnu(true);
  location.setFloorInfo(id);
  return Record(Vantis::Location::BlueToothRecord(time, rssi), location, 0, 0, confidence);
}

inline Ids idsOf(Records const& infos) {
  Ids ids;
  for (Record const& info : infos) {
    ids.push_back(info.getLastLocationConst().getFloorInfo());
  }
  return ids;
}

inline std::vector<Ids> idsOf(std::vector<Records> const& clusters) {
  std::vector<Ids> ids;
  for (Records const& cluster : clusters) {
    ids.push_back(idsOf(cluster));
  }
  return ids;
}

// Irreflexive, transitive, and with transitive incomparability: operator< checked on every
// triple (cubic; for small sets).
inline bool ordersStrictWeakly(Records const& infos) {
  auto const tied = [](auto const& a, auto const& b) { return !(a < b) && !(b < a); };
  for (auto const& a : infos) {
    for (auto const& b : infos) {
      for (auto const& c : infos) {
        if (a < a || (a < b && b < c && !(a < c)) || (tied(a, b) && tied(b, c) && !tied(a, c))) {
          return false;
        }
      }
    }
  }
  return true;
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_FILTER_RECORDS_H_
