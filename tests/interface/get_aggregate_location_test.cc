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

std::vector<AggregateScanInfo> walkOfScans(int count) {
  std::vector<AggregateScanInfo> infos;
  for (int i = 0; i < count; ++i) {
    infos.push_back(
        outdoorScan(1700000000000 + i * 15000LL, -60 - i % 25, (i % 7) * 1e-5, (i % 5) * 1e-5));
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
    SCOPED_TRACE(count);
    LogCapture capture;
    AggregateLocationResult result;
    std::memset(&result, 0xAB, sizeof result);
    char* trace = nullptr;
    EXPECT_EQ(GetAggregateLocation(&unread, count, &result, &trace), CORVEX_INPUT_INFO_EMPTY);
    EXPECT_STREQ(
        trace,
        R"({"version":"V2.0","errorCode":500010,"errorMsg":"Input info is empty","infoCount":[]})");
    // Fresh one-byte strings: releasing each with delete[] must be valid.
    ASSERT_NE(result.geoId, nullptr);
    ASSERT_NE(result.floorInfo, nullptr);
    EXPECT_NE(result.geoId, result.floorInfo);
    EXPECT_EQ(result.geoId[0], '\0');
    EXPECT_EQ(result.floorInfo[0], '\0');
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

TEST(GetAggregateLocation, RecordWithoutBuildingKeepsNoFloor) {
  LogCapture capture;
  std::vector<AggregateScanInfo> infos = walkOfScans(12);
  for (AggregateScanInfo& info : infos) {
    info.indoorFlag = 1;
    info.floorId = 3;  // ignored: no building identifier
    info.floorAcc = 1;
    info.floorInfo = "F3";
  }
  AggregateCall const call = callGetAggregateLocation(infos);
  EXPECT_EQ(call.result.floorId, -100);
  EXPECT_EQ(call.result.indoorFlag, 0);
  EXPECT_EQ(call.geoId, "");
  EXPECT_EQ(call.floorInfo, "");
  EXPECT_EQ(call.code, call.traceErrorCode());
}

TEST(GetAggregateLocation, LeavesTheCallersRecordsUntouched) {
  LogCapture capture;
  std::vector<AggregateScanInfo> infos = walkOfScans(30);
  std::swap(infos[0], infos[29]);  // unsorted, so a sort in place would show
  infos[3].rssi = 0;               // would be repaired in place
  std::vector<AggregateScanInfo> const before = infos;
  AggregateCall const call = callGetAggregateLocation(infos);
  EXPECT_EQ(call.code, call.traceErrorCode());
  EXPECT_EQ(std::memcmp(infos.data(), before.data(), infos.size() * sizeof infos[0]), 0);
}

// The return code is the one inside the trace log, whatever the outcome.
TEST(GetAggregateLocation, ReturnCodeMatchesTheTraceLog) {
  LogCapture capture;
  std::vector<std::vector<AggregateScanInfo>> inputs = {walkOfScans(1), walkOfScans(8),
                                                        walkOfScans(40)};
  std::vector<AggregateScanInfo> zeroConfidence = walkOfScans(10);
  for (AggregateScanInfo& info : zeroConfidence) {
    info.confidence = 0.0;
  }
  inputs.push_back(zeroConfidence);
  std::vector<AggregateScanInfo> loud = walkOfScans(10);
  for (AggregateScanInfo& info : loud) {
    info.rssi = 20;
  }
  inputs.push_back(loud);
  for (auto const& infos : inputs) {
    AggregateCall const call = callGetAggregateLocation(infos);
    EXPECT_TRUE(call.stringsPresent);
    EXPECT_EQ(call.code, call.traceErrorCode()) << call.traceLog;
    EXPECT_EQ(call.traceLog.rfind(R"({"version":"V2.0","errorCode":)", 0), 0u) << call.traceLog;
  }
}

// Hosts load libcorvex.so by name; everything but the entry point must stay internal.
TEST(GetAggregateLocation, SharedLibraryExportsOnlyTheEntryPoint) {
  std::string const command = std::string("nm -D --defined-only ") + CORVEX_SHARED_LIBRARY;
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> symbols;
  char line[512];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    char type = 0;
    char name[256] = {0};
    // "<address> <type> <name>"
    if (std::sscanf(line, "%*s %c %255s", &type, name) == 2) {
      symbols.insert(name);
    }
  }
  ASSERT_EQ(pclose(pipe), 0) << command;
  EXPECT_EQ(symbols, std::set<std::string>{"GetAggregateLocation"});
}

}  // namespace
}  // namespace corvex_test
