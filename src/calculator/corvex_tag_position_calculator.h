#ifndef CORVEX_CALCULATOR_CORVEX_TAG_POSITION_CALCULATOR_H_
#define CORVEX_CALCULATOR_CORVEX_TAG_POSITION_CALCULATOR_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "calculator/locate_trace.h"
#include "calculator/position_calculator.h"
#include "model/ble_scan_info_with_confidence.h"
#include "model/shared_text.h"
#include "model/tag_best_location.h"
#include "solver/value_and_jacobian_function.h"

namespace Vantis::Location {

// The main tag locator: scores and filters the records, solves a position from the survivors,
// either as a confidence-weighted mean of the observers or as a least-squares range fit,
// refuses it when the tag has evidently moved, and returns it or the k-means result, whichever
// rests on more recent scans, with building and floor by majority vote. Positions are local
// east/north metres around the oldest record while solving and degrees otherwise.
class CorvexTagPositionCalculator : public PositionCalculator {
 public:
  static constexpr std::size_t kMaxInfos = 5000;

  // trace: when not null, filled with what the next getPosition call does (see LocateTrace);
  // it must outlive the calculator's calls. Results and log lines are the same either way.
  explicit CorvexTagPositionCalculator(LocateTrace* trace = nullptr) : trace_(trace) {}

  // Sorts infos by scan time and scores them in place; they leave in degrees (lon/lat) again.
  // Every failure is an error code on the result.
  TagBestLocation getPosition(std::vector<BleScanInfoWithConfidence>& infos) override;
  // The answer to more than kMaxInfos records, from the newest one alone (newest: the last
  // record of the greatest scan time): the result and log line getPosition gives for them,
  // without sorting or copying them all.
  TagBestLocation refuseOverLimit(BleScanInfoWithConfidence const& newest);
  // The stages on records in the local plane; early exits return defaultResult with the code.
  TagBestLocation getPositionInner(std::vector<BleScanInfoWithConfidence>& infos,
                                   TagBestLocation& defaultResult);
  // A missing RSSI (0) reads as -100 dBm.
  static void setDefaultRssi(std::vector<BleScanInfoWithConfidence>& infos);
  // Scores every record; false when the scores sum below 0.0001.
  static bool getNewConfidence(std::vector<BleScanInfoWithConfidence>& infos);
  // The records the last solve used, in degrees.
  std::vector<BleScanInfoWithConfidence> getFilteredInfos() const;

  // Position solving. Records and points are in the local plane (metres).

  // Weighted mean for few or close observers, least-squares range fit otherwise; records its
  // weights in confidenceWeights. RSSI_OVER_LIMIT when a range comes out below 0.0001 m.
  TagBestLocation getTagResult(std::vector<BleScanInfoWithConfidence> const& infos);
  // Confidence-weighted mean of the observers' positions; timeStamps (ms).
  static TagBestLocation getAvgResult(std::vector<std::vector<double>> const& points,
                                      std::vector<double> const& accs,
                                      std::vector<double> const& weights,
                                      std::vector<long long> const& timeStamps);
  // Least-squares fit of the ranges dists (metres) to the model's anchors, from the origin.
  // trace, when given, receives the optimizer's iterations, evaluations and RMS.
  static TagBestLocation getOptimumResult(std::vector<double> const& dists,
                                          std::vector<double> const& accs,
                                          std::vector<double> const& weights,
                                          std::vector<long long> const& timeStamps,
                                          std::shared_ptr<ValueAndJacobianFunction> const& function,
                                          LocateTrace* trace = nullptr);
  // Sum of value x weight over the sum of weights; 0.0 when illegal or the weights sum < 0.0001.
  static double getWeightedAvg(std::vector<double> const& values,
                               std::vector<double> const& weights);
  // Columns become rows; every row is read as long as the first.
  static std::vector<std::vector<double>> transpose(std::vector<std::vector<double>> const& matrix);
  // Square root of the mean distance of the points from their centroid (not an RMS).
  static double stdPointError(std::vector<std::vector<double>> const& points);
  static std::vector<double> meanPoint(std::vector<std::vector<double>> const& points);
  // Newest time stamp (ms); 0 when there is none.
  static long long getLatestTimeStamp(std::vector<long long> const& timeStamps);
  // {lon, lat} (degrees) of the first record, the origin of the local plane.
  static std::vector<double> getRefPos(std::vector<BleScanInfoWithConfidence> const& infos);

  // Movement, outlier and indoor result.

  // True when the newest record is an outlier, or the two newest both lie over 400 m away.
  static bool checkMoved(std::vector<BleScanInfoWithConfidence> const& infos,
                         TagBestLocation const& result);
  // A trusted source-3 fix over 30 min newer and over 100 m away from the result.
  static bool checkOutlier(TagBestLocation const& result, BleScanInfoWithConfidence const& info);
  // Newest time stamp (ms) among the result and the records within 100 m of it.
  static long long getRunTimeStamp(std::vector<BleScanInfoWithConfidence> const& infos,
                                   TagBestLocation const& result);
  // Building and floor by majority vote of the trusted indoor records near the result
  // (records and result in degrees); leaves the result alone when no vote is possible.
  // vote, when given, is overwritten with the counts and the outcome.
  static void setResultIndoorInfo(TagBestLocation& result,
                                  std::vector<BleScanInfoWithConfidence> const& infos,
                                  LocateTrace::IndoorVote* vote = nullptr);
  // Appends the records that may vote on the result's building and floor.
  static void filterIndoor(TagBestLocation const& result,
                           std::vector<BleScanInfoWithConfidence> const& infos,
                           std::vector<BleScanInfoWithConfidence>& out);
  // The most frequent value; the smallest among equally frequent ones (texts bytewise);
  // empty/0 for no values. For SharedText and int.
  template <typename T>
  static T selectMostOccurrences(std::vector<T> const& values);

 private:
  LocateTrace::IndoorVote* indoorVote() const { return trace_ ? &trace_->indoorVote : nullptr; }

  LocateTrace* trace_;
  std::vector<double> confidenceWeights_;  // newConfidence squared per record of the last solve
  // Survivors of the last filtering, left in the local plane: converted back to degrees
  // (around filteredReference_) only when asked for, not on every call.
  std::vector<BleScanInfoWithConfidence> filteredInfos_;
  std::vector<double> filteredReference_;
  std::vector<double> reference_;  // {lon, lat} of the plane's origin while getPosition runs
};

extern template SharedText CorvexTagPositionCalculator::selectMostOccurrences<SharedText>(
    std::vector<SharedText> const& values);
extern template int CorvexTagPositionCalculator::selectMostOccurrences<int>(
    std::vector<int> const& values);

}  // namespace Vantis::Location

#endif  // CORVEX_CALCULATOR_CORVEX_TAG_POSITION_CALCULATOR_H_
