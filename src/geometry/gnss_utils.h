#ifndef CORVEX_GEOMETRY_GNSS_UTILS_H_
#define CORVEX_GEOMETRY_GNSS_UTILS_H_

#include <vector>

#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Statistics over the satellite-positioned (locationType 1) records of a list.
class GnssUtils {
 public:
  // False, with an error line, for an empty list.
  static bool checkValid(std::vector<BleScanInfoWithConfidence> const& infos);
  static int getGnssCount(std::vector<BleScanInfoWithConfidence> const& infos);
  static double getGnssRatio(std::vector<BleScanInfoWithConfidence> const& infos);
  static double getGnssRatio(RecordSubset const& infos);
  // More than 15 % of the records are GNSS records.
  static bool isOutDoor(std::vector<BleScanInfoWithConfidence> const& infos);
  static bool isOutDoor(RecordSubset const& infos);
  // Copies of the GNSS records whose caller-supplied confidence is at least 0.98, in order.
  static std::vector<BleScanInfoWithConfidence> getGnssProactiveList(
      std::vector<BleScanInfoWithConfidence> const& infos);
  static std::vector<BleScanInfoWithConfidence> getGnssProactiveList(RecordSubset const& infos);
  // At least two records whose spread is at most 30 (metres in the local frame).
  static bool checkCohesion(std::vector<BleScanInfoWithConfidence> const& infos);

 private:
  static bool isGnss(BleScanInfoWithConfidence const& info);
  // The operations above, for a list or a subset of one.
  template <typename Records>
  static bool checkValidOf(Records const& infos);
  template <typename Records>
  static int gnssCountOf(Records const& infos);
  template <typename Records>
  static double gnssRatioOf(Records const& infos);
  template <typename Records>
  static std::vector<BleScanInfoWithConfidence> proactiveListOf(Records const& infos);
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_GNSS_UTILS_H_
