#include "model/ble_scan_info_with_confidence.h"

#include <sstream>
#include <tuple>

#include "model/nan_last.h"

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
  kindTransId_ = SharedText(kindTransId);
}

std::vector<double> BleScanInfoWithConfidence::getPoint() const {
  return {lastLocation_.getLon(), lastLocation_.getLat()};
}

std::string BleScanInfoWithConfidence::toString() const {
  std::ostringstream out;
  out << "BleScanInfo{blueToothRecord=" << blueToothRecord_.toString()
      << ", lastLocation=" << lastLocation_.toString() << ", arStatus=" << arStatus_
      << ", stepCount=" << stepCount_ << ", confidence=" << confidence_
      << ", newConfidence=" << newConfidence_ << ", kindTransID=" << kindTransId_.get() << "}";
  return out.str();
}

// Each nested record is tested with its own `<` both ways before the next field decides.
bool BleScanInfoWithConfidence::operator<(BleScanInfoWithConfidence const& other) const {
  return orderKey() < other.orderKey();
}

bool BleScanInfoWithConfidence::operator==(BleScanInfoWithConfidence const& other) const {
  return orderKey() == other.orderKey();
}

bool BleScanInfoWithConfidence::precedesInTotalOrder(BleScanInfoWithConfidence const& other) const {
  if (blueToothRecord_ < other.blueToothRecord_) {
    return true;
  }
  if (other.blueToothRecord_ < blueToothRecord_) {
    return false;
  }
  if (lastLocation_.precedesInTotalOrder(other.lastLocation_)) {
    return true;
  }
  if (other.lastLocation_.precedesInTotalOrder(lastLocation_)) {
    return false;
  }
  using Rest = std::tuple<NanLast<double>, NanLast<double>, SharedText const&, int, int>;
  return Rest({confidence_}, {newConfidence_}, kindTransId_, arStatus_, stepCount_) <
         Rest({other.confidence_}, {other.newConfidence_}, other.kindTransId_, other.arStatus_,
              other.stepCount_);
}

}  // namespace Vantis::Location
