#ifndef CORVEX_FILTER_CONFIDENCE_FILTER_H_
#define CORVEX_FILTER_CONFIDENCE_FILTER_H_

#include <cstddef>
#include <vector>

#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Trims the least trusted records (by caller-supplied confidence) while enough records remain.
class ConfidenceFilter {
 public:
  // Copies sorted by confidence, descending, with the tail below `threshold` dropped as long as
  // more than `minItems` records remain. Empty, with an error line, on bad input.
  static std::vector<BleScanInfoWithConfidence> filter(
      std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double threshold);
  // The same selection as indices into `infos`, in the order filter() returns the records.
  static std::vector<size_t> keep(RecordSubset const& infos, int minItems, double threshold);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_CONFIDENCE_FILTER_H_
