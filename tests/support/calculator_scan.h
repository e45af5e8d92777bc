// Scan records and results for the calculator tests, each written or compared in one line.
#ifndef CORVEX_TESTS_SUPPORT_CALCULATOR_SCAN_H_
#define CORVEX_TESTS_SUPPORT_CALCULATOR_SCAN_H_

#include <string>

#include "model/ble_scan_info_with_confidence.h"
#include "model/tag_best_location.h"

namespace corvex_test {

// One scan record; fields in aggregate-initialisation order, the most varied first.
struct Scan {
  double x = 0.0;      // east (metres) in the local plane, else longitude (degrees)
  double y = 0.0;      // north (metres) in the local plane, else latitude (degrees)
  long long time = 0;  // (ms)
  int rssi = -70;      // (dBm)
  double confidence = 0.9;
  double newConfidence = 0.0;
  float acc = 10.0f;  // (metres)
  int sourceType = 0;
  int locationType = 0;  // 1: satellite fix

  Vantis::Location::BleScanInfoWithConfidence inPlane() const { return build(true); }
  Vantis::Location::BleScanInfoWithConfidence inDegrees() const { return build(false); }

 private:
  Vantis::Location::BleScanInfoWithConfidence build(bool enu) const {
    Vantis::Location::LastLocation location(x, y, acc, locationType, sourceType);
    location.setEnu(enu);
    Vantis::Location::BleScanInfoWithConfidence info(Vantis::Location::BlueToothRecord(time, rssi),
                                                     location, 0, 0, confidence);
    info.setNewConfidence(newConfidence);
    return info;
  }
};

// Every value of a result, doubles to six decimals, so that whole results compare at once.
inline std::string describe(Vantis::Location::TagBestLocation const& r) {
  return std::to_string(r.getLon()) + ", " + std::to_string(r.getLat()) + " acc " +
         std::to_string(r.getAcc()) + " confidence " + std::to_string(r.getConfidence()) +
         " time " + std::to_string(r.getTimeStamp()) + " run " +
         std::to_string(r.getRunTimeStamp()) + " indoor " + std::to_string(r.getIndoorFlag()) +
         " " + r.getGeoId() + " floor " + std::to_string(r.getFloorId()) + " " +
         std::to_string(r.getFloorAcc()) + " " + r.getFloorInfo() + " " + r.getTraceLog();
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_CALCULATOR_SCAN_H_
