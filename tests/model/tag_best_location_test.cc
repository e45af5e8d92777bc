#include "model/tag_best_location.h"

#include <gtest/gtest.h>

namespace Vantis::Location {
namespace {

TEST(TagBestLocation, ConstructorsSetDefaults) {
  TagBestLocation unknown;
  EXPECT_EQ(unknown.getErrorCode().getErrorCode(), -1);
  EXPECT_EQ(unknown.getErrorCode().getErrorMsg(), "Unknown error");
  EXPECT_EQ(unknown.getConfidence(), 1.0);
  EXPECT_EQ(unknown.getFloorId(), -100);
  EXPECT_EQ(TagBestLocation(1.5, 2.5).getErrorCode(), ErrorCode::SUCCESS);

  TagBestLocation result(1.5, 2.5, 99, 0.4, 3.5f);
  TagBestLocation& returned = result.setErrorCodeAndGet(ErrorCode::TAG_IS_MOVED);
  EXPECT_EQ(&returned, &result);
  EXPECT_EQ(result.getErrorCode().getErrorMsg(), "Tag is moved");
}

TEST(TagBestLocation, TraceLogIsOneUnescapedJsonLine) {
  TagBestLocation result(ErrorCode::SUCCESS);
  result.getTagStat().setInfoCount({12, 10, 8});
  std::string const log = result.getTraceLog();
  EXPECT_EQ(log,
            R"({"version":"V2.0","errorCode":0,"errorMsg":"Success","infoCount":[12, 10, 8]})");
  EXPECT_EQ(log.size(), 77u);

  result.setErrorCode(ErrorCode(7, R"(say "hi")"));
  result.getTagStat().setInfoCount({});
  EXPECT_EQ(result.getTraceLog(),
            R"({"version":"V2.0","errorCode":7,"errorMsg":"say "hi"","infoCount":[]})");
  EXPECT_EQ(TagBestLocation::printVec({-3}), "[-3]");
}

TEST(TagBestLocation, OrdersByItsFieldsIgnoringErrorAndStats) {
  TagBestLocation const a(1.0, 2.0, 5, 0.5, 1.0f);
  TagBestLocation b = a;
  b.setErrorCode(ErrorCode::TAG_IS_MOVED);
  b.getTagStat().setInfoCount({1});
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);

  b.setRunTimeStamp(1);
  b.setLon(0.0);  // a later field cannot undo an earlier decision
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
}

}  // namespace
}  // namespace Vantis::Location
