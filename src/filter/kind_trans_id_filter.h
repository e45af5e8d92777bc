#ifndef CORVEX_FILTER_KIND_TRANS_ID_FILTER_H_
#define CORVEX_FILTER_KIND_TRANS_ID_FILTER_H_

#include <cstddef>
#include <vector>

#include "filter/record_subset.h"
#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Keeps one record per transmission kind: repeated hearings of one transmission count once.
class KindTransIDFilter {
 public:
  // Records without a kind ("" or "0") in input order, then per kind in ascending key order the
  // one with the highest newConfidence. Empty, with an error line, for an empty list.
  static std::vector<BleScanInfoWithConfidence> filter(
      std::vector<BleScanInfoWithConfidence> const& infos);
  // The same selection as indices into `infos`, in the order filter() returns the records.
  static std::vector<size_t> keep(RecordSubset const& infos);
  // Whether the record names a transmission kind (neither "" nor "0").
  static bool hasKind(BleScanInfoWithConfidence const& info);
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_KIND_TRANS_ID_FILTER_H_
