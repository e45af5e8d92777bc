#ifndef CORVEX_MODEL_STRICT_WEAK_ORDER_CHECK_H_
#define CORVEX_MODEL_STRICT_WEAK_ORDER_CHECK_H_

#include <vector>

#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Decides whether operator< of scan records is a strict weak ordering of a set of them, as
// ordered containers keyed by it need. Only NaN fields can break it: operator< skips a field
// where either side is NaN, so records with NaN in different fields may compare in a cycle.
//
// The set is split field by field, in comparison order. A field that holds no NaN orders its
// groups of equal values like a strict weak ordering, so each group is checked on its own
// against the later fields; a field with NaN but at most one other value decides nothing and
// is passed over. Only a field with NaN beside two or more values needs the pairwise check,
// in practice on few records: a set whose first fields are NaN throughout costs a few sorts.
class StrictWeakOrderCheck {
 public:
  static bool holds(std::vector<BleScanInfoWithConfidence const*> records);

 private:
  using Records = std::vector<BleScanInfoWithConfidence const*>;
  using Slot = Records::iterator;

  // The set [first, last), tied on every field before `field`.
  static bool holdsFrom(Slot first, Slot last, std::size_t field);
  static bool holdsPairwise(Slot first, Slot last);
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_STRICT_WEAK_ORDER_CHECK_H_
