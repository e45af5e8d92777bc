#include "tools/location_printer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace corvex_cli {
namespace {

using Format = LocationPrinter::Format;

TEST(LocationPrinter, WritesOneLineWithFixedKeyOrder) {
  char geoId[] = "B\"1";
  char floorInfo[] = "F2";
  AggregateLocationResult const result = {
      1700000002000, 1700000003000, 8.541712345678901, 47.37, 0.1, 0.1f, geoId, floorInfo, 2, 1, 1};
  std::vector<std::string> const log = {"I 0xD002300/Mirelth: using algorithm 1"};
  EXPECT_EQ(
      LocationPrinter::format(
          Format::kJsonLines, "tag-1", 0, result,
          R"({"version":"V2.0","errorCode":0,"errorMsg":"Success","infoCount":[12, 10, 8]})", &log),
      R"({"tag":"tag-1","code":0,"message":"Success","lon":8.541712345678901,"lat":47.37,)"
      R"("acc":0.1,"confidence":0.1,"timeStamp":1700000002000,)"
      R"("runTimeStamp":1700000003000,"indoorFlag":1,"geoId":"B\"1","floorId":2,)"
      R"("floorAcc":1,"floorInfo":"F2","infoCount":[12,10,8],)"
      R"("log":["I 0xD002300/Mirelth: using algorithm 1"]})");
}

TEST(LocationPrinter, NumbersReadBackExactlyAndOddValuesStayValidJson) {
  AggregateLocationResult result{};
  result.lon = std::nextafter(8.5, 9.0);
  result.lat = -1e-310;
  result.acc = 3.3f;
  auto parsed = nlohmann::json::parse(
      LocationPrinter::format(Format::kJsonLines, "t", 0, result, nullptr, nullptr));
  EXPECT_EQ(parsed["lon"].get<double>(), result.lon);
  EXPECT_EQ(parsed["lat"].get<double>(), result.lat);
  EXPECT_EQ(parsed["acc"].get<float>(), 3.3f);

  result.lon = NAN;
  result.lat = INFINITY;
  result.acc = NAN;
  char invalidUtf8[] = "\xff";
  result.floorInfo = invalidUtf8;
  parsed = nlohmann::json::parse(
      LocationPrinter::format(Format::kGeoJson, "t", 0, result, "{", nullptr));
  EXPECT_TRUE(parsed["geometry"].is_null());  // no usable position, though the code is 0
  parsed = parsed["properties"];
  EXPECT_TRUE(parsed["lon"].is_null());
  EXPECT_TRUE(parsed["lat"].is_null());
  EXPECT_TRUE(parsed["acc"].is_null());
  EXPECT_EQ(parsed["geoId"], "");
  EXPECT_EQ(parsed["floorInfo"], "\xEF\xBF\xBD");  // the replacement character
  EXPECT_EQ(parsed["message"], "");
  EXPECT_EQ(parsed["infoCount"], nlohmann::json::array());
}

}  // namespace
}  // namespace corvex_cli
