#ifndef CORVEX_TOOLS_TAG_SCANS_H_
#define CORVEX_TOOLS_TAG_SCANS_H_

#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "tools/scan_row.h"

namespace corvex_cli {

// All input records of one tag, in input order.
struct TagScans {
  std::string tag;
  std::vector<ScanRow> rows;

  // The C records, pointing into the rows' strings (valid while this object is unchanged).
  std::vector<AggregateScanInfo> toScanInfos() const {
    std::vector<AggregateScanInfo> infos;
    infos.reserve(rows.size());
    for (ScanRow const& row : rows) {
      infos.push_back(row.toScanInfo());
    }
    return infos;
  }
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_TAG_SCANS_H_
