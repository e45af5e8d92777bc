#include "filter/db_scan_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::idsOf;
using corvex_test::makeRecord;
using corvex_test::tagged;

TEST(DBScanFilter, ClustersWithTheGivenRadius) {
  std::vector<BleScanInfoWithConfidence> const infos = {
      tagged(makeRecord(0, 0, 1), "a"), tagged(makeRecord(0, 300, 2), "b"),
      tagged(makeRecord(0, 1000, 3), "c"), tagged(makeRecord(0, 1001, 4), "d")};
  EXPECT_EQ(idsOf(DBScanFilter::filter(infos, 1, 400.0)),
            (std::vector<std::vector<std::string>>{{"a", "b"}, {"c", "d"}}));
  EXPECT_EQ(idsOf(DBScanFilter::filter(infos, 1, 60.0)),
            (std::vector<std::vector<std::string>>{{"c", "d"}}));
}

TEST(DBScanFilter, RefusesEmptyInputAndMinPtsBelowOne) {
  corvex_test::LogCapture capture;
  EXPECT_TRUE(DBScanFilter::filter({}, 1, 10).empty());
  EXPECT_TRUE(DBScanFilter::filter({makeRecord(0, 0, 1), makeRecord(0, 0, 2)}, 0, 10).empty());
  EXPECT_EQ(capture.messages(corvex_test::kError),
            (std::vector<std::string>{"infos == null or is empty", "minPts can't less than 1"}));
}

}  // namespace
}  // namespace Vantis::Location
