#ifndef CORVEX_CALCULATOR_POSITION_CALCULATOR_H_
#define CORVEX_CALCULATOR_POSITION_CALCULATOR_H_

#include <vector>

#include "model/ble_scan_info_with_confidence.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {

// A way of turning the scan records of one tag into one location estimate.
class PositionCalculator {
 public:
  // The estimate, with its outcome as the result's error code.
  virtual TagBestLocation getPosition(std::vector<BleScanInfoWithConfidence>& infos) = 0;
  virtual ~PositionCalculator() = default;

 protected:
  PositionCalculator() = default;
  PositionCalculator(PositionCalculator const&) = default;
  PositionCalculator& operator=(PositionCalculator const&) = default;
};

}  // namespace Vantis::Location

#endif  // CORVEX_CALCULATOR_POSITION_CALCULATOR_H_
