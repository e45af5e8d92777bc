#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "support/aggregate_call.h"
#include "support/log_capture.h"

namespace corvex_test {
namespace {

// Scans 15 s apart, the newest first; the floor fields are set but no record names a building.
std::vector<AggregateScanInfo> walkOfScans(int count) {
  std::vector<AggregateScanInfo> infos;
  for (int i = count - 1; i >= 0; --i) {
    infos.push_back(
        outdoorScan(1700000000000 + i * 15000LL, -60 - i % 25, (i % 7) * 1e-5, (i % 5) * 1e-5));
    infos.back().indoorFlag = 1;
    infos.back().floorId = 3;
    infos.back().floorAcc = 10;
    infos.back().floorInfo = "F3";
  }
  return infos;
}

TEST(GetAggregateLocation, NullInfosReturnsItsOwnCodeAndWritesNothing) {
  LogCapture capture;
  for (int count : {-1, 0, 3}) {
    AggregateLocationResult result;
    std::memset(&result, 0xAB, sizeof result);
    AggregateLocationResult const before = result;
    char sentinel = 's';
    char* trace = &sentinel;
    EXPECT_EQ(GetAggregateLocation(nullptr, count, &result, &trace), CORVEX_NULL_INPUT);
    EXPECT_EQ(std::memcmp(&result, &before, sizeof result), 0);
    EXPECT_EQ(trace, &sentinel);
  }
  EXPECT_TRUE(capture.lines().empty());
}

TEST(GetAggregateLocation, EmptyListIsReportedThroughTheResult) {
  AggregateScanInfo const unread = outdoorScan(1, -50, 0, 0);
  for (int count : {0, -4}) {
    LogCapture capture;
    AggregateLocationResult result;
    std::memset(&result, 0xAB, sizeof result);
    char* trace = nullptr;
    EXPECT_EQ(GetAggregateLocation(&unread, count, &result, &trace), CORVEX_INPUT_INFO_EMPTY);
    EXPECT_STREQ(
        trace,
        R"({"version":"V2.0","errorCode":500010,"errorMsg":"Input info is empty","infoCount":[]})");
    // Fresh one-byte strings: releasing each with delete[] must be valid.
    EXPECT_STREQ(result.geoId, "");
    EXPECT_STREQ(result.floorInfo, "");
    EXPECT_NE(result.geoId, result.floorInfo);
    EXPECT_EQ(result.timeStamp, 0);
    EXPECT_EQ(result.confidence, 1.0);
    EXPECT_EQ(result.floorId, -100);
    EXPECT_EQ(result.indoorFlag, 0);
    delete[] result.geoId;
    delete[] result.floorInfo;
    delete[] trace;
    EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{kError, "infos is null or empty"}}));
  }
}

// The return code is the one inside the trace log, whatever the outcome; the caller's records
// stay as they were, however the calculator reorders and repairs its copies.
TEST(GetAggregateLocation, ReturnsTheTraceLogsCodeAndLeavesTheInputAlone) {
  LogCapture capture;
  std::vector<AggregateScanInfo> faint = walkOfScans(10);
  std::vector<AggregateScanInfo> loud = walkOfScans(10);
  for (std::size_t i = 0; i < 10; ++i) {
    faint[i].rssi = -125;
    loud[i].rssi = 20;
  }
  std::vector<AggregateScanInfo> repaired = walkOfScans(30);
  repaired[3].rssi = 0;
  struct Case {
    std::vector<AggregateScanInfo> infos;
    int code;
  };
  Case const cases[] = {{walkOfScans(1), CORVEX_SUCCESS},
                        {walkOfScans(8), CORVEX_SUCCESS},
                        {repaired, CORVEX_SUCCESS},
                        {faint, CORVEX_CONFIDENCE_ERROR},
                        {loud, CORVEX_RSSI_OVER_LIMIT}};
  for (Case const& c : cases) {
    std::vector<AggregateScanInfo> const before = c.infos;
    AggregateCall const call = callGetAggregateLocation(c.infos);
    EXPECT_EQ(call.code, c.code);
    EXPECT_EQ(call.code, call.traceErrorCode()) << call.traceLog;
    EXPECT_EQ(call.traceLog.rfind(R"({"version":"V2.0","errorCode":)", 0), 0u) << call.traceLog;
    EXPECT_TRUE(call.stringsPresent);
    EXPECT_EQ(std::memcmp(c.infos.data(), before.data(), before.size() * sizeof before[0]), 0);
    // Without a building the floor fields are not read.
    EXPECT_EQ(call.geoId + call.floorInfo, "");
    EXPECT_EQ(call.result.floorId, -100);
    EXPECT_EQ(call.result.indoorFlag, 0);
  }
}

TEST(GetAggregateLocation, TooManyRecordsAreRefusedWithTheNewestPosition) {
  LogCapture capture;
  std::vector<AggregateScanInfo> infos = walkOfScans(5001);
  infos[1234].timeStamp = 1800000000000;  // the newest, out of array order
  infos[1234].lon = 9.0;
  AggregateCall const call = callGetAggregateLocation(infos);
  EXPECT_EQ(call.code, CORVEX_INPUT_INFO_OVER_LIMIT);
  EXPECT_EQ(call.result.timeStamp, 1800000000000);
  EXPECT_EQ(call.result.lon, 9.0);
  EXPECT_EQ(call.traceLog,
            R"({"version":"V2.0","errorCode":500020,"errorMsg":"The number of input info exceeds )"
            R"(the limit","infoCount":[]})");
  EXPECT_EQ(capture.messages(kError), std::vector<std::string>{"infos size exceed limit"});
}

// Hosts load libcorvex.so by name; everything but the entry point must stay internal.
TEST(GetAggregateLocation, SharedLibraryExportsOnlyTheEntryPoint) {
  std::string const command = std::string("nm -D --defined-only ") + CORVEX_SHARED_LIBRARY;
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> symbols;
  char line[512];
  char name[256];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    if (std::sscanf(line, "%*s %*c %255s", name) == 1) {  // "<address> <type> <name>"
      symbols.insert(name);
    }
  }
  ASSERT_EQ(pclose(pipe), 0) << command;
  EXPECT_EQ(symbols, std::set<std::string>{"GetAggregateLocation"});
}

}  // namespace
}  // namespace corvex_test
