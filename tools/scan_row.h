#ifndef CORVEX_TOOLS_SCAN_ROW_H_
#define CORVEX_TOOLS_SCAN_ROW_H_

#include <string>

#include "corvex/aggregate_location.h"

namespace corvex_cli {

// One checked input record: the tag it belongs to and the values for the library.
struct ScanRow {
  std::string tag;
  AggregateScanInfo info{};  // geoId and floorInfo stay null here; see toScanInfo
  std::string geoId;         // empty: the record carries no indoor information
  std::string floorInfo;

  // The C record, pointing into this row's strings (valid while the row is alive).
  AggregateScanInfo toScanInfo() const {
    AggregateScanInfo scan = info;
    if (!geoId.empty()) {
      scan.geoId = geoId.c_str();
      scan.floorInfo = floorInfo.c_str();
    }
    return scan;
  }
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_ROW_H_
