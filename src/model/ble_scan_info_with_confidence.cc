#include "model/ble_scan_info_with_confidence.h"

#include <sstream>

namespace Vantis::Location {

BleScanInfoWithConfidence::BleScanInfoWithConfidence(BlueToothRecord const& blueToothRecord,
                                                     LastLocation const& lastLocation, int arStatus,
                                                     int stepCount, double confidence)
    : blueToothRecord_(blueToothRecord),
      lastLocation_(lastLocation),
      arStatus_(arStatus),
      stepCount_(stepCount),
      confidence_(confidence) {}

BleScanInfoWithConfidence::BleScanInfoWithConfidence(BlueToothRecord const& blueToothRecord,
                                                     LastLocation const& lastLocation,
                                                     double confidence,
                                                     std::string const& kindTransId)
    : BleScanInfoWithConfidence(blueToothRecord, lastLocation, -1, 0, confidence) {
  kindTransId_ = kindTransId;
}

std::vector<double> BleScanInfoWithConfidence::getPoint() const {
  return {lastLocation_.getLon(), lastLocation_.getLat()};
}

std::string BleScanInfoWithConfidence::toString() const {
  std::ostringstream out;
  out << "BleScanInfo{blueToothRecord=" << blueToothRecord_.toString()
      << ", lastLocation=" << lastLocation_.toString() << ", arStatus=" << arStatus_
      << ", stepCount=" << stepCount_ << ", confidence=" << confidence_
      << ", newConfidence=" << newConfidence_ << ", kindTransID=" << kindTransId_ << "}";
  return out.str();
}

// Each nested record is tested with its own `<` both ways before the next field decides.
bool BleScanInfoWithConfidence::operator<(BleScanInfoWithConfidence const& other) const {
  return orderKey() < other.orderKey();
}

bool BleScanInfoWithConfidence::operator==(BleScanInfoWithConfidence const& other) const {
  return orderKey() == other.orderKey();
}

}  // namespace Vantis::Location
