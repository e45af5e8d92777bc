// The exported entry point through its C interface: its own checks, the hand-over of results
// and strings, and hostile use, which it must answer with a known code without crashing,
// hanging, leaking or tripping a sanitizer.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "support/aggregate_call.h"
#include "support/log_capture.h"

namespace corvex_test {
namespace {

using Input = std::vector<AggregateScanInfo>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kFloatInf = std::numeric_limits<float>::infinity();
constexpr float kFloatNaN = std::numeric_limits<float>::quiet_NaN();

// Mostly plausible records with every field sometimes replaced by an extreme: NaN, infinities,
// huge, tiny, negative and boundary values.
Input garbage(std::mt19937_64& random, int count) {
  static double const kDoubles[] = {kNaN, kInf, -kInf, 1e308,        -1e308, 1e-310,
                                    -0.0, 1e19, -1e19, 4294967296.5, 180.0,  -90.0};
  static int const kInts[] = {INT_MIN, INT_MAX, 0, -1, 1, -128, 127, 3, -100, 100000};
  static float const kFloats[] = {kFloatNaN, kFloatInf, -kFloatInf, FLT_MAX, 1e-45f, 0.0f, -1.0f};
  static long long const kTimes[] = {LLONG_MIN, LLONG_MAX, 0, -1, 1, 1LL << 62};
  static char const* const kTexts[] = {"", "B1", "B2", "null", "a much longer identifier", "\"q\""};
  auto const oneIn = [&random](std::uint64_t n) { return random() % n == 0; };
  auto const pick = [&random](auto const& values) { return values[random() % std::size(values)]; };
  auto const unit = [&random] { return static_cast<double>(random() >> 11) * 0x1.0p-53; };
  auto const maybe = [&](double plausible) { return oneIn(6) ? pick(kDoubles) : plausible; };
  auto const maybeInt = [&](int from, int span) {
    return oneIn(6) ? pick(kInts) : from + static_cast<int>(random() % span);
  };
  Input infos(count);
  for (AggregateScanInfo& info : infos) {
    info.timeStamp =
        oneIn(8) ? pick(kTimes) : 1700000000000 + static_cast<long long>(unit() * 3 * 86400000);
    info.rssi = maybeInt(-100, 61);
    info.confidence = maybe(unit());
    info.lon = maybe(8.5417 + 0.004 * (unit() - 0.5));
    info.lat = maybe(47.3769 + 0.004 * (unit() - 0.5));
    info.acc = oneIn(6) ? pick(kFloats) : static_cast<float>(3.0 + 57.0 * unit());
    info.reserved[0] = pick(kInts);
    info.locationType = maybeInt(0, 3);
    info.locationSourceType = maybeInt(1, 3);
    if (oneIn(3)) {
      info.indoorFlag = maybeInt(1, 1);
      info.floorId = maybeInt(-2, 8);
      info.floorAcc = maybeInt(10, 1);
      info.floorInfo = oneIn(10) ? nullptr : pick(kTexts);
      info.geoId = pick(kTexts);
    }
  }
  return infos;
}

// Every record alike, with the given extremes.
Input uniform(int count, double value, float acc, int rssi, long long time) {
  Input infos(count, outdoorScan(time, rssi, 0, 0));
  for (AggregateScanInfo& info : infos) {
    info.lon = info.lat = info.confidence = value;
    info.acc = acc;
  }
  return infos;
}

TEST(GetAggregateLocation, NullArgumentReturnsItsOwnCodeAndWritesNothing) {
  LogCapture capture;
  Input const infos(3, outdoorScan(1700000000000, -60, 0, 0));
  for (int count : {-1, 0, 3}) {
    for (int nullArgument = 0; nullArgument < 3; ++nullArgument) {
      AggregateLocationResult result;
      std::memset(&result, 0xAB, sizeof result);
      AggregateLocationResult const before = result;
      char sentinel = 's';
      char* trace = &sentinel;
      EXPECT_EQ(GetAggregateLocation(nullArgument == 0 ? nullptr : infos.data(), count,
                                     nullArgument == 1 ? nullptr : &result,
                                     nullArgument == 2 ? nullptr : &trace),
                CORVEX_NULL_INPUT);
      EXPECT_EQ(std::memcmp(&result, &before, sizeof result), 0);
      EXPECT_EQ(trace, &sentinel);
    }
  }
  EXPECT_TRUE(capture.lines().empty());
}

// The two refusals made before any record is looked at (the other codes come with the whole
// calls): the values of the default result, or of the newest record as it stands in the
// array, with the code in the trace log and one error line.
TEST(GetAggregateLocation, RefusesEmptyAndOversizedInputWithTheirCodeInTheTraceLog) {
  Input tooMany(5001, outdoorScan(1700000000000, -60, 0, 0));
  tooMany[1234] = outdoorScan(1800000000000, -60, 0.5, 0);  // the newest, out of array order
  tooMany[1234].geoId = "B1";
  tooMany[1234].floorId = 2;
  tooMany[1234].floorAcc = 10;
  struct Case {
    Input infos;
    int code;
    char const* message;
    long long timeStamp;
    double lon;
    char const* geoId;
    char const* error;
  } const cases[] = {
      {{}, CORVEX_INPUT_INFO_EMPTY, "Input info is empty", 0, 0.0, "", "infos is null or empty"},
      {tooMany, CORVEX_INPUT_INFO_OVER_LIMIT, "The number of input info exceeds the limit",
       1800000000000, tooMany[1234].lon, "B1", "infos size exceed limit"},
  };
  for (Case const& c : cases) {
    LogCapture capture;
    AggregateCall const call = callGetAggregateLocation(c.infos);
    EXPECT_EQ(call.code, c.code);
    EXPECT_EQ(call.traceLog, R"({"version":"V2.0","errorCode":)" + std::to_string(c.code) +
                                 R"(,"errorMsg":")" + c.message + R"(","infoCount":[]})");
    EXPECT_TRUE(call.stringsPresent);  // even when empty: fresh strings the caller releases
    EXPECT_EQ(call.result.timeStamp, c.timeStamp);
    EXPECT_EQ(call.result.lon, c.lon);
    EXPECT_EQ(call.result.confidence, c.code == CORVEX_INPUT_INFO_EMPTY ? 1.0 : 0.9);
    EXPECT_EQ(call.geoId, c.geoId);
    EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{kError, c.error}}));
  }
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

TEST(GetAggregateLocation, AnswersGarbageWithAKnownCode) {
  std::set<int> const knownCodes = {CORVEX_SUCCESS,
                                    CORVEX_UNKNOWN_ERROR,
                                    CORVEX_INPUT_INFO_EMPTY,
                                    CORVEX_INPUT_INFO_OVER_LIMIT,
                                    CORVEX_RSSI_OVER_LIMIT,
                                    CORVEX_FILTERED_ALL_INFOS,
                                    CORVEX_ALGORITHM_RUNNING_FAILED,
                                    CORVEX_CONFIDENCE_ERROR,
                                    CORVEX_TAG_IS_MOVED};
  std::mt19937_64 random(20240611);
  std::vector<Input> inputs = {{}, garbage(random, 5001)};
  for (int i = 0; i < 300; ++i) {
    inputs.push_back(
        garbage(random, static_cast<int>(i % 10 == 0 ? 50 + random() % 151 : random() % 31)));
  }
  long long const now = 1700000000000;
  for (int count : {1, 2, 7, 40}) {
    inputs.push_back(uniform(count, kNaN, kFloatNaN, -70, now));
    inputs.push_back(uniform(count, kInf, kFloatInf, -70, now));
    inputs.push_back(uniform(count, -kInf, -kFloatInf, -70, now));
    inputs.push_back(uniform(count, 1e308, FLT_MAX, INT_MAX, LLONG_MAX));
    inputs.push_back(uniform(count, -1e9, -10.0f, INT_MIN, LLONG_MIN));
    inputs.push_back(uniform(count, 0.0, 0.0f, 0, 0));
  }
  LogCapture capture;  // keeps the many error lines out of the test output
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    AggregateCall const call = callGetAggregateLocation(inputs[i]);
    EXPECT_EQ(knownCodes.count(call.code), 1u) << "input " << i << ": " << call.code;
    EXPECT_TRUE(call.stringsPresent) << "input " << i;
    EXPECT_EQ(call.code, call.traceErrorCode()) << "input " << i << ": " << call.traceLog;
    capture.take();
  }
}

}  // namespace
}  // namespace corvex_test
