#include "filter/confidence_filter.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

TEST(ConfidenceFilter, SortsDescendingAndTrimsTheLowTailDownToMinItems) {
  struct Case {
    std::vector<double> confidences;
    int minItems;
    double threshold;
    std::vector<double> kept;
  } const cases[] = {
      {{0.9, 0.4, 0.8, 0.2, 0.3}, 3, 0.5, {0.9, 0.8, 0.4}},
      {{0.9, 0.4, 0.8, 0.2, 0.3}, 1, 0.5, {0.9, 0.8}},
      {{0.1, 0.3, 0.2}, 1, 0.5, {0.3}},
      {{0.1, 0.3}, 5, 0.5, {0.3, 0.1}},
      {{0.6, 0.7, 0.59}, 1, 0.6, {0.7, 0.6}},
  };
  for (Case const& c : cases) {
    corvex_test::Records infos;
    for (double confidence : c.confidences)
      infos.push_back(corvex_test::makeRecord(0, 0, 0, 0, confidence));
    std::vector<double> kept;
    for (auto const& info : ConfidenceFilter::filter(infos, c.minItems, c.threshold)) {
      kept.push_back(info.getConfidence());
    }
    EXPECT_EQ(kept, c.kept);
  }
  corvex_test::LogCapture capture;
  EXPECT_TRUE(ConfidenceFilter::filter({}, 1, 0.5).empty());
  EXPECT_TRUE(ConfidenceFilter::filter({corvex_test::makeRecord(0, 0)}, 0, 0.5).empty());
  EXPECT_EQ(corvex_test::tagged(capture),
            (corvex_test::Ids{"E:infos == null or is empty", "E:minItems can't less than 1"}));
}

}  // namespace
}  // namespace Vantis::Location
