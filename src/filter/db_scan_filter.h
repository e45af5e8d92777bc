#ifndef CORVEX_FILTER_DB_SCAN_FILTER_H_
#define CORVEX_FILTER_DB_SCAN_FILTER_H_

#include <cstddef>
#include <vector>

#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Groups records by observing position with DbScan.
class DBScanFilter {
 public:
  // Clusters in founding order, noise dropped; eps (metres). Empty, with an error line, for an
  // empty list or minPts below 1.
  static std::vector<std::vector<BleScanInfoWithConfidence>> filter(
      std::vector<BleScanInfoWithConfidence> const& infos, int minPts, double eps);
  // The same clusters as indices into `infos`, with the same error lines.
  static std::vector<std::vector<size_t>> filterIndices(RecordSubset const& infos, int minPts,
                                                        double eps);

 private:
  // Logs why and answers false for an empty list or minPts below 1.
  static bool acceptsInput(bool empty, int minPts);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_DB_SCAN_FILTER_H_
