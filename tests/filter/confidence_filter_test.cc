#include "filter/confidence_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::makeRecord;

std::vector<BleScanInfoWithConfidence> withConfidences(std::vector<double> const& confidences) {
  std::vector<BleScanInfoWithConfidence> infos;
  for (double confidence : confidences) {
    infos.push_back(makeRecord(0, 0, 0, 0, confidence));
  }
  return infos;
}

std::vector<double> confidencesOf(std::vector<BleScanInfoWithConfidence> const& infos) {
  std::vector<double> confidences;
  for (BleScanInfoWithConfidence const& info : infos) {
    confidences.push_back(info.getConfidence());
  }
  return confidences;
}

TEST(ConfidenceFilter, SortsDescendingAndTrimsTheLowTailDownToMinItems) {
  struct Case {
    std::vector<double> confidences;
    int minItems;
    double threshold;
    std::vector<double> kept;
  };
  std::vector<Case> const cases = {
      {{0.9, 0.4, 0.8, 0.2, 0.3}, 3, 0.5, {0.9, 0.8, 0.4}},
      {{0.9, 0.4, 0.8, 0.2, 0.3}, 1, 0.5, {0.9, 0.8}},
      {{0.1, 0.3, 0.2}, 1, 0.5, {0.3}},
      {{0.1, 0.3}, 5, 0.5, {0.3, 0.1}},
      {{0.6, 0.7, 0.59}, 1, 0.6, {0.7, 0.6}},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(confidencesOf(ConfidenceFilter::filter(withConfidences(c.confidences), c.minItems,
                                                     c.threshold)),
              c.kept);
  }
}

TEST(ConfidenceFilter, RefusesEmptyInputAndMinItemsBelowOne) {
  corvex_test::LogCapture capture;
  EXPECT_TRUE(ConfidenceFilter::filter({}, 1, 0.5).empty());
  EXPECT_TRUE(ConfidenceFilter::filter(withConfidences({0.9}), 0, 0.5).empty());
  EXPECT_EQ(capture.messages(corvex_test::kError),
            (std::vector<std::string>{"infos == null or is empty", "minItems can't less than 1"}));
}

}  // namespace
}  // namespace Vantis::Location
