#ifndef CORVEX_FILTER_KIND_TRANS_ID_FILTER_H_
#define CORVEX_FILTER_KIND_TRANS_ID_FILTER_H_

#include <vector>

#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Keeps one record per transmission kind: repeated hearings of one transmission count once.
class KindTransIDFilter {
 public:
  // Records without a kind ("" or "0") in input order, then per kind in ascending key order the
  // one with the highest newConfidence. Empty, with an error line, for an empty list.
  static std::vector<BleScanInfoWithConfidence> filter(
      std::vector<BleScanInfoWithConfidence> const& infos);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_KIND_TRANS_ID_FILTER_H_
