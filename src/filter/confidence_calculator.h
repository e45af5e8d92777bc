#ifndef CORVEX_FILTER_CONFIDENCE_CALCULATOR_H_
#define CORVEX_FILTER_CONFIDENCE_CALCULATOR_H_

#include <vector>

#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Scores how far each scan record of one request is to be trusted (its newConfidence, 0 to 1):
// signal strength mixed with the observer's own confidence, boosted for cohesive proactive GNSS
// fixes and near-certain fixes, normalised so that the best record scores 1. Sets that do not
// count as outdoor score 1 throughout.
class ConfidenceCalculator {
 public:
  // Scores every record; refuses (empty scores, error line) an empty list or more than 5000.
  explicit ConfidenceCalculator(std::vector<BleScanInfoWithConfidence> const& infos);

  // Score of record `index`; 0.0 outside the scored range.
  double getNewConfidence(int index) const;

  // Signal score (0 to 100) of the record's rssi (dBm).
  static double getRssiScore(BleScanInfoWithConfidence const& info);
  static double getConfidenceScore(BleScanInfoWithConfidence const& info);
  // Arithmetic mean; 0.0 when empty.
  static double calculateAvg(std::vector<double> const& values);
  // Population variance; 0.0 when empty.
  static double calculateVar(std::vector<double> const& values);

  // Divides every score by the greatest one when that exceeds 0.0001.
  ConfidenceCalculator& normalizedNewConfidence();

 private:
  void score(std::vector<BleScanInfoWithConfidence> const& infos);

  std::vector<double> newConfidences;  // one per input record, in input order; empty if refused
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_CONFIDENCE_CALCULATOR_H_
