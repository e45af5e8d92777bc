#include "filter/confidence_calculator.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::makeRecord;
using corvex_test::Records;

std::vector<double> scoresOf(Records const& infos) {
  ConfidenceCalculator const calculator(infos);
  std::vector<double> scores;
  for (int i = -1; i <= static_cast<int>(infos.size()); ++i) {
    scores.push_back(calculator.getNewConfidence(i));
  }
  return scores;  // with the out-of-range indices -1 and n at both ends
}

BleScanInfoWithConfidence scan(int locationType, double confidence, int rssi, double x = 0) {
  return makeRecord(x, 0, 0, locationType, confidence, "", rssi);
}

TEST(ConfidenceCalculator, RssiScoreIsLinearWithAStepBelowMinus120) {
  for (auto [rssi, score] : std::vector<std::pair<int, double>>{
           {0, 100}, {-40, 100}, {-41, 99}, {-61, 79}, {-120, 20}, {-121, 0}, {-200, 0}}) {
    EXPECT_EQ(ConfidenceCalculator::getRssiScore(scan(0, 0.5, rssi)), score) << rssi;
  }
}

TEST(ConfidenceCalculator, ScoresIndoorAsOneAndOutdoorBySignalSpreadAndBoosts) {
  corvex_test::LogCapture quiet;
  EXPECT_EQ(scoresOf({scan(0, 0.1, -30), scan(2, 0.9, -121)}), (std::vector<double>{0, 1, 1, 0}));
  // Equal confidences: no spread term; 0.98 doubles, cohesive proactive GNSS fixes again x4.
  EXPECT_EQ(
      scoresOf({scan(1, 0.98, -40), scan(1, 0.98, -40, 1), scan(0, 0.98, -40), scan(0, 0.98, -90)}),
      (std::vector<double>{0, 1, 1, 0.25, 0.125, 0}));
  // Scores that all stay below 0.0001 are not normalised.
  EXPECT_EQ(scoresOf({scan(1, 0.5, -121), scan(1, 0.5, -127)}), (std::vector<double>(4, 0.0)));
  EXPECT_EQ(ConfidenceCalculator::calculateVar({1, 2, 3, 4}), 1.25);
  EXPECT_EQ(ConfidenceCalculator::calculateVar({}), 0.0);
}

TEST(ConfidenceCalculator, ScoresUpTo5000Records) {
  EXPECT_EQ(ConfidenceCalculator(Records(5000, makeRecord(0, 0))).getNewConfidence(4999), 1.0);
}

}  // namespace
}  // namespace Vantis::Location
