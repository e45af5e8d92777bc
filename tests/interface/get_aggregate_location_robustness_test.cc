// Hostile and concurrent use of the entry point: it must answer every input with a known code
// and never crash, hang, leak or trip a sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "corvex/aggregate_location.h"
#include "support/aggregate_call.h"
#include "support/log_capture.h"

namespace corvex_test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const std::set<int> kKnownCodes = {CORVEX_SUCCESS,
                                   CORVEX_UNKNOWN_ERROR,
                                   CORVEX_INPUT_INFO_EMPTY,
                                   CORVEX_INPUT_INFO_OVER_LIMIT,
                                   CORVEX_RSSI_OVER_LIMIT,
                                   CORVEX_FILTERED_ALL_INFOS,
                                   CORVEX_ALGORITHM_RUNNING_FAILED,
                                   CORVEX_CONFIDENCE_ERROR,
                                   CORVEX_TAG_IS_MOVED};

const char* const kTexts[] = {"", "B1", "B2", "F1", "a much longer building identifier", "\"q\""};

// Draws records that are mostly plausible, with every numeric field sometimes replaced by an
// extreme: NaN, infinities, huge, tiny, negative and boundary values.
class GarbageScans {
 public:
  explicit GarbageScans(uint64_t seed) : random_(seed) {}

  std::vector<AggregateScanInfo> next(int count) {
    std::vector<AggregateScanInfo> infos;
    for (int i = 0; i < count; ++i) {
      infos.push_back(record());
    }
    return infos;
  }

 private:
  bool oneIn(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_) == 0; }

  double extremeDouble() {
    static const double kValues[] = {kNaN,    kInf,   -kInf, 1e308, -1e308, 1e-310,
                                     -1e-300, 0.0,    -0.0,  1e19,  -1e19,  4294967296.5,
                                     180.0,   -180.0, 90.0,  -90.0, 1e9,    -1.0};
    return kValues[std::uniform_int_distribution<size_t>(0, std::size(kValues) - 1)(random_)];
  }

  int extremeInt() {
    static const int kValues[] = {INT_MIN, INT_MAX, 0, -1, 1, -127, -128, 127, 3, -100, 100000};
    return kValues[std::uniform_int_distribution<size_t>(0, std::size(kValues) - 1)(random_)];
  }

  float extremeFloat() {
    static const float kValues[] = {std::numeric_limits<float>::quiet_NaN(),
                                    std::numeric_limits<float>::infinity(),
                                    -std::numeric_limits<float>::infinity(),
                                    std::numeric_limits<float>::max(),
                                    -std::numeric_limits<float>::max(),
                                    std::numeric_limits<float>::denorm_min(),
                                    0.0f,
                                    -1.0f};
    return kValues[std::uniform_int_distribution<size_t>(0, std::size(kValues) - 1)(random_)];
  }

  long long extremeTime() {
    static const long long kValues[] = {LLONG_MIN, LLONG_MAX, 0, -1, 1700000000000, 1, 1LL << 62};
    return kValues[std::uniform_int_distribution<size_t>(0, std::size(kValues) - 1)(random_)];
  }

  double maybe(double plausible) { return oneIn(6) ? extremeDouble() : plausible; }
  int maybe(int plausible) { return oneIn(6) ? extremeInt() : plausible; }

  const char* text() {
    return kTexts[std::uniform_int_distribution<size_t>(0, std::size(kTexts) - 1)(random_)];
  }

  AggregateScanInfo record() {
    std::uniform_real_distribution<double> jitter(-0.002, 0.002);
    AggregateScanInfo info{};
    info.timeStamp = oneIn(8) ? extremeTime()
                              : 1700000000000 + std::uniform_int_distribution<long long>(
                                                    0, 3 * 86400000LL)(random_);
    info.rssi = maybe(std::uniform_int_distribution<int>(-100, -40)(random_));
    info.confidence = maybe(std::uniform_real_distribution<double>(0.0, 1.0)(random_));
    info.lon = maybe(8.5417 + jitter(random_));
    info.lat = maybe(47.3769 + jitter(random_));
    info.acc =
        oneIn(6) ? extremeFloat() : std::uniform_real_distribution<float>(3.0f, 60.0f)(random_);
    info.reserved[0] = extremeInt();
    info.reserved[1] = extremeInt();
    info.locationType = maybe(std::uniform_int_distribution<int>(0, 2)(random_));
    info.locationSourceType = maybe(std::uniform_int_distribution<int>(1, 3)(random_));
    if (oneIn(3)) {
      info.indoorFlag = maybe(1);
      info.floorId = maybe(std::uniform_int_distribution<int>(-2, 5)(random_));
      info.floorAcc = maybe(1);
      info.floorInfo = oneIn(10) ? nullptr : text();
      info.geoId = text();
    }
    return info;
  }

  std::mt19937_64 random_;
};

void expectWellFormed(AggregateCall const& call) {
  EXPECT_TRUE(kKnownCodes.count(call.code)) << call.code;
  EXPECT_TRUE(call.stringsPresent);
  EXPECT_EQ(call.code, call.traceErrorCode()) << call.traceLog;
}

TEST(GetAggregateLocation, AnswersGarbageWithAKnownCode) {
  LogCapture capture;  // keeps the many error lines out of the test output
  GarbageScans garbage(20240611);
  std::mt19937 sizes(7);
  auto const start = std::chrono::steady_clock::now();
  for (int call = 0; call < 300; ++call) {
    int const count = call % 10 == 0 ? std::uniform_int_distribution<int>(50, 200)(sizes)
                                     : std::uniform_int_distribution<int>(0, 30)(sizes);
    SCOPED_TRACE("call " + std::to_string(call));
    expectWellFormed(callGetAggregateLocation(garbage.next(count)));
    capture.clear();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(120));
}

TEST(GetAggregateLocation, AnswersUniformlyExtremeRecords) {
  LogCapture capture;
  struct Case {
    const char* name;
    double coordinate;
    double confidence;
    float acc;
    int rssi;
    long long timeStamp;
  };
  Case const cases[] = {
      {"nan", kNaN, kNaN, std::numeric_limits<float>::quiet_NaN(), -70, 1700000000000},
      {"inf", kInf, kInf, std::numeric_limits<float>::infinity(), -70, 1700000000000},
      {"-inf", -kInf, -kInf, -std::numeric_limits<float>::infinity(), -70, 1700000000000},
      {"huge", 1e308, 1e308, std::numeric_limits<float>::max(), INT_MAX, LLONG_MAX},
      {"negative", -1e9, -5.0, -10.0f, INT_MIN, LLONG_MIN},
      {"zero", 0.0, 0.0, 0.0f, 0, 0},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    for (int count : {1, 2, 7, 40}) {
      std::vector<AggregateScanInfo> infos;
      for (int i = 0; i < count; ++i) {
        AggregateScanInfo info = outdoorScan(c.timeStamp, c.rssi, 0, 0);
        info.lon = c.coordinate;
        info.lat = c.coordinate;
        info.confidence = c.confidence;
        info.acc = c.acc;
        infos.push_back(info);
      }
      expectWellFormed(callGetAggregateLocation(infos));
    }
  }
}

TEST(GetAggregateLocation, ExtremeTimeStampsSideBySide) {
  LogCapture capture;
  std::vector<AggregateScanInfo> infos;
  long long const times[] = {LLONG_MIN, LLONG_MAX, 0, LLONG_MIN + 1, LLONG_MAX - 1, -1};
  for (int i = 0; i < 12; ++i) {
    infos.push_back(outdoorScan(times[i % 6], -60 - i, i * 1e-5, 0));
  }
  expectWellFormed(callGetAggregateLocation(infos));
}

std::vector<std::vector<AggregateScanInfo>> mixedInputs() {
  GarbageScans garbage(99);
  std::vector<std::vector<AggregateScanInfo>> inputs;
  for (int i = 0; i < 12; ++i) {
    std::vector<AggregateScanInfo> infos;
    for (int j = 0; j < 20 + i * 5; ++j) {
      infos.push_back(outdoorScan(1700000000000 + j * 20000LL, -55 - (j * 7) % 40,
                                  ((j * 13) % 9) * 2e-5, ((j * 5) % 11) * 2e-5));
    }
    inputs.push_back(infos);
    inputs.push_back(garbage.next(5 + i * 3));
  }
  return inputs;
}

TEST(GetAggregateLocation, ConcurrentCallsMatchSequentialOnes) {
  LogCapture capture;
  auto const inputs = mixedInputs();
  std::vector<AggregateCall> expected;
  for (auto const& infos : inputs) {
    expected.push_back(callGetAggregateLocation(infos));
  }
  constexpr int kThreads = 8;
  std::vector<std::vector<AggregateCall>> actual(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    actual[t].resize(inputs.size());
    threads.emplace_back([&inputs, &actual, t] {
      // Each thread starts elsewhere so that different inputs overlap in time.
      for (size_t k = 0; k < inputs.size(); ++k) {
        size_t const i = (k + static_cast<size_t>(t) * 3) % inputs.size();
        actual[t][i] = callGetAggregateLocation(inputs[i]);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (int t = 0; t < kThreads; ++t) {
    for (size_t i = 0; i < inputs.size(); ++i) {
      EXPECT_TRUE(actual[t][i].sameAs(expected[i])) << "thread " << t << ", input " << i;
    }
  }
}

}  // namespace
}  // namespace corvex_test
