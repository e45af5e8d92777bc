#ifndef CORVEX_FILTER_DISTANCE_OFFSET_FROM_GNSS_FILTER_H_
#define CORVEX_FILTER_DISTANCE_OFFSET_FROM_GNSS_FILTER_H_

#include <cstddef>
#include <vector>

#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Keeps the records near a cohesive group of proactive satellite fixes, which anchor the
// position better than any other record.
class DistanceOffsetFromGnssFilter {
 public:
  // False, with an error line, for an empty list.
  static bool checkValid(RecordSubset const& infos);
  // Records closer than 75 metres to the centroid of the proactive GNSS records, in input
  // order; the whole input when those records are not cohesive.
  static std::vector<BleScanInfoWithConfidence> filter(
      std::vector<BleScanInfoWithConfidence> const& infos);
  // The same selection as indices into `infos`, ascending.
  static std::vector<size_t> keep(RecordSubset const& infos);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_DISTANCE_OFFSET_FROM_GNSS_FILTER_H_
