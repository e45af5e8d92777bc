#include "filter/confidence_calculator.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;
using corvex_test::LogLine;
using corvex_test::makeRecord;

std::vector<double> scoresOf(std::vector<BleScanInfoWithConfidence> const& infos) {
  ConfidenceCalculator calculator(infos);
  std::vector<double> scores;
  for (size_t i = 0; i < infos.size(); ++i) {
    scores.push_back(calculator.getNewConfidence(static_cast<int>(i)));
  }
  return scores;
}

TEST(ConfidenceCalculator, RssiScoreIsLinearWithAStepBelowMinus120) {
  struct Case {
    int rssi;
    double score;
  };
  for (Case const& c : {Case{0, 100}, Case{-40, 100}, Case{-41, 99}, Case{-60, 80}, Case{-61, 79},
                        Case{-99, 41}, Case{-120, 20}, Case{-121, 0}, Case{-200, 0}}) {
    EXPECT_EQ(ConfidenceCalculator::getRssiScore(makeRecord(0, 0, 0, 0, 0.5, c.rssi)), c.score)
        << c.rssi;
  }
}

TEST(ConfidenceCalculator, MeanAndPopulationVariance) {
  EXPECT_EQ(ConfidenceCalculator::calculateAvg({}), 0.0);
  EXPECT_EQ(ConfidenceCalculator::calculateVar({}), 0.0);
  EXPECT_EQ(ConfidenceCalculator::calculateAvg({1, 2, 3, 4}), 2.5);
  EXPECT_EQ(ConfidenceCalculator::calculateVar({1, 2, 3, 4}), 1.25);
  EXPECT_EQ(ConfidenceCalculator::getConfidenceScore(makeRecord(0, 0, 0, 0, 0.3)), 0.3);
}

TEST(ConfidenceCalculator, IndoorRecordsAllScoreOne) {
  EXPECT_EQ(scoresOf({makeRecord(0, 0, 0, 0, 0.1, -30), makeRecord(0, 0, 0, 2, 0.9, -121)}),
            (std::vector<double>{1.0, 1.0}));
}

TEST(ConfidenceCalculator, EqualConfidencesLeaveTheSignalTermAndBoostsStack) {
  // All confidences 0.98: no spread term, every record doubled, cohesive GNSS records again x4.
  std::vector<BleScanInfoWithConfidence> const infos = {
      makeRecord(0, 0, 0, 1, 0.98, -40), makeRecord(1, 0, 0, 1, 0.98, -40),
      makeRecord(0, 0, 0, 0, 0.98, -40), makeRecord(0, 0, 0, 0, 0.98, -90)};
  EXPECT_EQ(scoresOf(infos), (std::vector<double>{1.0, 1.0, 0.25, 0.125}));
}

TEST(ConfidenceCalculator, OnlyConfidenceFromPoint98IsDoubled) {
  LogCapture capture;
  std::vector<double> const scores =
      scoresOf({makeRecord(0, 0, 0, 1, 0.98, -40), makeRecord(0, 0, 0, 0, 0.979, -40)});
  EXPECT_EQ(scores[0], 1.0);
  EXPECT_NEAR(scores[1], 0.5, 1e-5);
  EXPECT_EQ(capture.lines(),
            (std::vector<LogLine>{{corvex_test::kInfo, "checkCohesion infos.size() = 1, bypass"}}));
}

TEST(ConfidenceCalculator, TinyScoresAreNotNormalised) {
  LogCapture capture;  // no proactive GNSS records: the cohesion check complains
  std::vector<BleScanInfoWithConfidence> const infos = {makeRecord(0, 0, 0, 1, 0.5, -121),
                                                        makeRecord(0, 0, 0, 1, 0.5, -127)};
  EXPECT_EQ(scoresOf(infos), (std::vector<double>{0.0, 0.0}));
}

TEST(ConfidenceCalculator, RefusesEmptyAndOversizedInputAndGuardsTheIndex) {
  LogCapture capture;
  EXPECT_EQ(ConfidenceCalculator({}).getNewConfidence(0), 0.0);
  std::vector<BleScanInfoWithConfidence> infos(5000, makeRecord(0, 0));
  ConfidenceCalculator const accepted(infos);
  EXPECT_EQ(accepted.getNewConfidence(4999), 1.0);
  EXPECT_EQ(accepted.getNewConfidence(5000), 0.0);
  EXPECT_EQ(accepted.getNewConfidence(-1), 0.0);
  infos.push_back(makeRecord(0, 0));
  EXPECT_EQ(ConfidenceCalculator(infos).getNewConfidence(0), 0.0);
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{corvex_test::kError, "infos is null or empty!"},
                                                   {corvex_test::kError, "infos size > 5000"}}));
}

}  // namespace
}  // namespace Vantis::Location
