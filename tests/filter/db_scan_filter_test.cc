#include "filter/db_scan_filter.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::Ids;
using corvex_test::idsOf;
using corvex_test::makeRecord;

TEST(DBScanFilter, ClustersWithTheGivenRadiusAndRefusesBadInput) {
  corvex_test::Records const infos = {makeRecord(0, 0, 1, 0, 0.5, "a"),
                                      makeRecord(0, 300, 2, 0, 0.5, "b"),
                                      makeRecord(0, 1000, 3, 0, 0.5, "c")};
  EXPECT_EQ(idsOf(DBScanFilter::filter(infos, 1, 400.0)), (std::vector<Ids>{{"a", "b"}}));
  corvex_test::LogCapture capture;
  EXPECT_TRUE(DBScanFilter::filter({}, 1, 10).empty());
  EXPECT_TRUE(DBScanFilter::filter(infos, 0, 400.0).empty());
  EXPECT_EQ(corvex_test::tagged(capture),
            (Ids{"E:infos == null or is empty", "E:minPts can't less than 1"}));
}

}  // namespace
}  // namespace Vantis::Location
