#ifndef CORVEX_FILTER_DISTANCE_OFFSET_FILTER_H_
#define CORVEX_FILTER_DISTANCE_OFFSET_FILTER_H_

#include <cstddef>
#include <vector>

#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Strips records until the spread of the rest (root-mean-square distance from their centroid)
// is small enough, keeping at least a minimum number of records.
class DistanceOffsetFilter {
 public:
  // False, with an error line, for an empty list or minItems below 1.
  static bool checkValid(RecordSubset const& infos, int minItems);
  // Index of the record farthest from `point` (first of equals); -1 when all are at distance 0.
  static int getMaxOffsetIndex(std::vector<BleScanInfoWithConfidence> const& infos,
                               std::vector<double> const& point);
  // Index of the record with the smallest scan time (first of equals); -1 when empty.
  static int getOldestIndex(std::vector<BleScanInfoWithConfidence> const& infos);

  // Each filter keeps more than minItems records only while the spread exceeds maxStd (metres).
  // Removes the record farthest from the centroid; keeps input order.
  static std::vector<BleScanInfoWithConfidence> filterByDistance(
      std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd);
  // The records filterByDistance keeps, as ascending indices into `infos`.
  static std::vector<size_t> keepByDistance(RecordSubset const& infos, int minItems, double maxStd);
  // Removes the oldest record; keeps input order.
  static std::vector<BleScanInfoWithConfidence> filterByTime(
      std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd);
  // Removes the record of lowest newConfidence; the result is in descending newConfidence.
  static std::vector<BleScanInfoWithConfidence> filterByNewConfidence(
      std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double maxStd);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_DISTANCE_OFFSET_FILTER_H_
