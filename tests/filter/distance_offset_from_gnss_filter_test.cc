#include "filter/distance_offset_from_gnss_filter.h"

#include <gtest/gtest.h>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::Ids;
using corvex_test::idsOf;
using corvex_test::makeRecord;

BleScanInfoWithConfidence proactive(double x, char const* id) {
  return makeRecord(x, 0, 1, 1, 0.98, id);
}

TEST(DistanceOffsetFromGnssFilter, KeepsRecordsCloserThan75MetresToCohesiveGnss) {
  EXPECT_EQ(idsOf(DistanceOffsetFromGnssFilter::filter(
                {makeRecord(-74, 0, 0, 0, 0.5, "at-75"), proactive(0, "g1"),
                 makeRecord(75.5, 0, 0, 0, 0.5, "at-74.5"), makeRecord(1, 80, 1, 1, 0.5, "far"),
                 proactive(2, "g2")})),
            (Ids{"g1", "at-74.5", "g2"}));
  corvex_test::LogCapture quiet;  // without cohesive GNSS the input comes back whole
  EXPECT_EQ(idsOf(DistanceOffsetFromGnssFilter::filter(
                {proactive(0, "g"), makeRecord(500, 0, 0, 0, 0.5, "far")})),
            (Ids{"g", "far"}));
}

}  // namespace
}  // namespace Vantis::Location
