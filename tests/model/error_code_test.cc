#include "model/error_code.h"

#include <gtest/gtest.h>

namespace Vantis::Location {
namespace {

TEST(ErrorCode, ComparesByCodeOnly) {
  EXPECT_FALSE(ErrorCode::SUCCESS != ErrorCode(0, "Other"));
  EXPECT_TRUE(ErrorCode::SUCCESS != ErrorCode::UNKNOWN_ERROR);
}

TEST(ErrorCode, PrintsUnescapedJson) {
  EXPECT_EQ(ErrorCode::RSSI_OVER_LIMIT.toString(),
            R"x({"errorCode":500030,"errorMsg":"One of the RSSI exceeds the limit)x"
            R"x((should be -127 <= RSSI <= 0)"})x");
  EXPECT_EQ(ErrorCode(-1, R"(a"b)").toString(), R"({"errorCode":-1,"errorMsg":"a"b"})");
}

}  // namespace
}  // namespace Vantis::Location
