#ifndef CORVEX_MODEL_BLE_SCAN_INFO_WITH_CONFIDENCE_H_
#define CORVEX_MODEL_BLE_SCAN_INFO_WITH_CONFIDENCE_H_

#include <string>
#include <tuple>
#include <vector>

#include "model/blue_tooth_record.h"
#include "model/db_scan_class.h"
#include "model/last_location.h"
#include "model/shared_text.h"

namespace Vantis::Location {

// One scan record: what was heard, where the phone was, and how far the hearing is trusted.
// Used as a key of ordered containers, so its order is part of its contract.
class BleScanInfoWithConfidence : public DbScanClass {
 public:
  BleScanInfoWithConfidence(BlueToothRecord const& blueToothRecord,
                            LastLocation const& lastLocation, int arStatus, int stepCount,
                            double confidence);
  // arStatus -1 marks a record that came without one.
  BleScanInfoWithConfidence(BlueToothRecord const& blueToothRecord,
                            LastLocation const& lastLocation, double confidence,
                            std::string const& kindTransId);
  BleScanInfoWithConfidence(BleScanInfoWithConfidence const&) = default;
  BleScanInfoWithConfidence(BleScanInfoWithConfidence&&) = default;
  BleScanInfoWithConfidence& operator=(BleScanInfoWithConfidence const&) = default;
  BleScanInfoWithConfidence& operator=(BleScanInfoWithConfidence&&) = default;
  ~BleScanInfoWithConfidence() override = default;

  // {lon, lat} of the phone's location, in whichever frame it currently holds.
  std::vector<double> getPoint() const override;

  BlueToothRecord& getBlueToothRecord() { return blueToothRecord_; }
  BlueToothRecord const& getBlueToothRecordConst() const { return blueToothRecord_; }
  void setBlueToothRecord(BlueToothRecord const& record) { blueToothRecord_ = record; }
  LastLocation& getLastLocation() { return lastLocation_; }
  LastLocation const& getLastLocationConst() const { return lastLocation_; }
  void setLastLocation(LastLocation const& location) { lastLocation_ = location; }
  int getArStatus() const { return arStatus_; }
  void setArStatus(int arStatus) { arStatus_ = arStatus; }
  int getStepCount() const { return stepCount_; }
  void setStepCount(int stepCount) { stepCount_ = stepCount; }
  // Confidence supplied by the caller.
  double getConfidence() const { return confidence_; }
  void setConfidence(double confidence) { confidence_ = confidence; }
  // Confidence computed by the scoring stage.
  double getNewConfidence() const { return newConfidence_; }
  void setNewConfidence(double newConfidence) { newConfidence_ = newConfidence; }
  std::string const& getKindTransId() const { return kindTransId_.get(); }
  void setKindTransId(std::string const& kindTransId) { kindTransId_ = SharedText(kindTransId); }
  // Position of the record in the caller's array (0 to count - 1), -1 for a record made
  // elsewhere. Travels with every copy so that an observer can tell which records a stage
  // kept; takes part in neither comparison and is not printed.
  int getInputIndex() const { return inputIndex_; }
  void setInputIndex(int inputIndex) { inputIndex_ = inputIndex; }

  std::string toString() const;

  bool operator<(BleScanInfoWithConfidence const& other) const;
  bool operator==(BleScanInfoWithConfidence const& other) const;
  // operator< with every NaN field sorted after the numbers and equivalent to every NaN: a
  // strict weak ordering for any field values.
  bool precedesInTotalOrder(BleScanInfoWithConfidence const& other) const;

 private:
  auto orderKey() const {
    return std::tie(blueToothRecord_, lastLocation_, confidence_, newConfidence_, kindTransId_,
                    arStatus_, stepCount_);
  }

  BlueToothRecord blueToothRecord_;
  LastLocation lastLocation_;
  int arStatus_;
  int stepCount_;
  double confidence_;
  double newConfidence_ = 0;  // 0 until scored
  SharedText kindTransId_;    // shared, so that copying a record copies no text
  int inputIndex_ = -1;
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_BLE_SCAN_INFO_WITH_CONFIDENCE_H_
