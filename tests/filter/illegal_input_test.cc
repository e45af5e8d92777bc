// Every filter stage answers illegal input (no records, too many, a minimum below 1) with a
// neutral value and one error line instead of failing; the pipeline never passes such input,
// so only these calls reach the guards.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filter/ble_scan_info_filters.h"
#include "filter/confidence_calculator.h"
#include "filter/confidence_filter.h"
#include "filter/db_scan_filter.h"
#include "filter/distance_offset_filter.h"
#include "filter/distance_offset_from_gnss_filter.h"
#include "filter/kind_trans_id_filter.h"
#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

TEST(FilterStages, AnswerIllegalInputWithANeutralValueAndOneErrorLine) {
  corvex_test::Records const one = {corvex_test::makeRecord(0, 0)};
  std::vector<int> infoCount;
  corvex_test::LogCapture capture;
  EXPECT_TRUE(BleScanInfoFilters::filter({}, infoCount).empty());
  EXPECT_TRUE(infoCount.empty());
  EXPECT_TRUE(ConfidenceFilter::filter({}, 1, 0.5).empty());
  EXPECT_TRUE(ConfidenceFilter::filter(one, 0, 0.5).empty());
  EXPECT_TRUE(DBScanFilter::filter({}, 1, 10).empty());
  EXPECT_TRUE(DBScanFilter::filter(one, 0, 400).empty());
  EXPECT_TRUE(DistanceOffsetFilter::filterByDistance({}, 1, 1).empty());
  EXPECT_TRUE(DistanceOffsetFilter::filterByTime(one, 0, 1).empty());
  EXPECT_TRUE(DistanceOffsetFromGnssFilter::filter({}).empty());
  EXPECT_TRUE(KindTransIDFilter::filter({}).empty());
  EXPECT_EQ(ConfidenceCalculator({}).getNewConfidence(0), 0);
  EXPECT_EQ(ConfidenceCalculator(corvex_test::Records(5001, one[0])).getNewConfidence(0), 0);
  EXPECT_EQ(capture.messages(corvex_test::kError),
            (std::vector<std::string>{
                "infos is null or empty", "infos == null or is empty", "minItems can't less than 1",
                "infos == null or is empty", "minPts can't less than 1", "infos is null or empty",
                "minItems can't less than 1", "infos is null or empty", "infos == null or empty",
                "infos is null or empty!", "infos size > 5000"}));
  EXPECT_EQ(capture.lines().size(), 11u);
}

}  // namespace
}  // namespace Vantis::Location
