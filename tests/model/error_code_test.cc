#include "model/error_code.h"

#include <gtest/gtest.h>

#include <utility>

#include "corvex/aggregate_location.h"

namespace Vantis::Location {
namespace {

TEST(ErrorCode, CodesAreTheOnesTheCHeaderPublishes) {
  std::pair<ErrorCode const&, int> const codes[] = {
      {ErrorCode::SUCCESS, CORVEX_SUCCESS},
      {ErrorCode::UNKNOWN_ERROR, CORVEX_UNKNOWN_ERROR},
      {ErrorCode::INPUT_INFO_EMPTY, CORVEX_INPUT_INFO_EMPTY},
      {ErrorCode::INPUT_INFO_OVER_LIMIT, CORVEX_INPUT_INFO_OVER_LIMIT},
      {ErrorCode::RSSI_OVER_LIMIT, CORVEX_RSSI_OVER_LIMIT},
      {ErrorCode::FILTERED_ALL_INFOS, CORVEX_FILTERED_ALL_INFOS},
      {ErrorCode::ALGORITHM_RUNNING_FAILED, CORVEX_ALGORITHM_RUNNING_FAILED},
      {ErrorCode::CONFIDENCE_ERROR, CORVEX_CONFIDENCE_ERROR},
      {ErrorCode::LOG_FUN_ERROR, CORVEX_LOG_FUN_ERROR},
      {ErrorCode::TAG_IS_MOVED, CORVEX_TAG_IS_MOVED},
  };
  for (auto const& [error, code] : codes)
    EXPECT_EQ(error.getErrorCode(), code) << error.getErrorMsg();
}

TEST(ErrorCode, ComparesByCodeOnlyAndPrintsUnescapedJson) {
  EXPECT_FALSE(ErrorCode::SUCCESS != ErrorCode(0, "Other"));
  EXPECT_TRUE(ErrorCode::SUCCESS != ErrorCode::UNKNOWN_ERROR);
  EXPECT_EQ(ErrorCode(-1, R"(a"b)").toString(), R"({"errorCode":-1,"errorMsg":"a"b"})");
}

}  // namespace
}  // namespace Vantis::Location
