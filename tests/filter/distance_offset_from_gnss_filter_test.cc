#include "filter/distance_offset_from_gnss_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::idsOf;
using corvex_test::LogLine;
using corvex_test::makeRecord;
using corvex_test::tagged;
using Ids = std::vector<std::string>;

BleScanInfoWithConfidence proactiveGnss(double x, std::string const& id) {
  return tagged(makeRecord(x, 0, 1, 1, 0.98), id);
}

TEST(DistanceOffsetFromGnssFilter, KeepsRecordsCloserThan75MetresToCohesiveGnss) {
  std::vector<BleScanInfoWithConfidence> const infos = {
      tagged(makeRecord(-74, 0), "at-75"), proactiveGnss(0, "g1"),
      tagged(makeRecord(75.5, 0), "at-74.5"), tagged(makeRecord(1, 80, 1, 1, 0.5), "far-gnss"),
      proactiveGnss(2, "g2")};
  EXPECT_EQ(idsOf(DistanceOffsetFromGnssFilter::filter(infos)), (Ids{"g1", "at-74.5", "g2"}));
}

TEST(DistanceOffsetFromGnssFilter, ReturnsTheInputWithoutCohesiveGnss) {
  corvex_test::LogCapture capture;
  std::vector<BleScanInfoWithConfidence> const single = {proactiveGnss(0, "g"),
                                                         tagged(makeRecord(500, 0), "far")};
  EXPECT_EQ(idsOf(DistanceOffsetFromGnssFilter::filter(single)), (Ids{"g", "far"}));
  std::vector<BleScanInfoWithConfidence> const spread = {proactiveGnss(0, "g1"),
                                                         proactiveGnss(61, "g2")};
  EXPECT_EQ(idsOf(DistanceOffsetFromGnssFilter::filter(spread)), (Ids{"g1", "g2"}));
  EXPECT_TRUE(DistanceOffsetFromGnssFilter::filter({}).empty());
  EXPECT_EQ(capture.lines(),
            (std::vector<LogLine>{
                {corvex_test::kInfo, "checkCohesion infos.size() = 1, bypass"},
                {corvex_test::kInfo, "checkCohesion stdPointError(infos) = 30.500000, bypass"},
                {corvex_test::kError, "infos is null or empty"}}));
}

}  // namespace
}  // namespace Vantis::Location
