#include "filter/confidence_calculator.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"
#include "support/tagged_lines.h"

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
  std::vector<double> const mixed = scoresOf({scan(1, 0.98, -40), scan(0, 0.979, -40)});
  EXPECT_EQ(mixed[1], 1.0);
  EXPECT_NEAR(mixed[2], 0.5 * (0.2 + 4 * 2.5e-7 * 0.979 * 0.8) / (0.2 + 4 * 2.5e-7 * 0.98 * 0.8),
              1e-12);
  // Scores that all stay below 0.0001 are not normalised.
  EXPECT_EQ(scoresOf({scan(1, 0.5, -121), scan(1, 0.5, -127)}), (std::vector<double>(4, 0.0)));
  EXPECT_EQ(ConfidenceCalculator::calculateVar({1, 2, 3, 4}), 1.25);
  EXPECT_EQ(ConfidenceCalculator::calculateVar({}), 0.0);
}

TEST(ConfidenceCalculator, RefusesEmptyAndOversizedInput) {
  corvex_test::LogCapture capture;
  EXPECT_EQ(ConfidenceCalculator({}).getNewConfidence(0), 0.0);
  Records infos(5000, makeRecord(0, 0));
  EXPECT_EQ(ConfidenceCalculator(infos).getNewConfidence(4999), 1.0);
  infos.push_back(makeRecord(0, 0));
  EXPECT_EQ(ConfidenceCalculator(infos).getNewConfidence(0), 0.0);
  EXPECT_EQ(corvex_test::tagged(capture),
            (corvex_test::Ids{"E:infos is null or empty!", "E:infos size > 5000"}));
}

}  // namespace
}  // namespace Vantis::Location
