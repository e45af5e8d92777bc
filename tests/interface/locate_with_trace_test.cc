// The observer of one call: it must not change a single output bit or log line, and what it
// reports must add up with the trace log's per-stage counts.
#include "interface/locate_with_trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/aggregate_call.h"
#include "support/log_capture.h"

namespace corvex_test {
namespace {

using Vantis::Location::LocateTrace;
using Fate = LocateTrace::Fate;
using Input = std::vector<AggregateScanInfo>;

// Scans over a day around two sites 2 km apart, some indoors, some far too old, some NaN.
Input mixedScans(std::mt19937_64& random, int count) {
  static char const* const kBuildings[] = {"B1", "B2", "null"};
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  Input infos;
  for (int i = 0; i < count; ++i) {
    bool const farSite = unit(random) < 0.2;
    infos.push_back(outdoorScan(1700000000000 + static_cast<long long>(unit(random) * 8.64e7),
                                -50 - static_cast<int>(unit(random) * 50),
                                (farSite ? 0.02 : 0.0) + unit(random) * 8e-4, unit(random) * 8e-4));
    AggregateScanInfo& info = infos.back();
    info.confidence = unit(random);
    info.locationType = unit(random) < 0.5 ? 1 : 2;
    info.locationSourceType = 1 + static_cast<int>(unit(random) * 3);
    if (unit(random) < 0.3) {
      info.geoId = kBuildings[random() % 3];
      info.floorInfo = "F";
      info.floorId = static_cast<int>(random() % 3);
      info.floorAcc = 10 + static_cast<int>(random() % 5);
      info.indoorFlag = 1;
    }
    if (unit(random) < 0.02) {
      info.lat = std::numeric_limits<double>::quiet_NaN();
    }
  }
  return infos;
}

std::vector<int> infoCountOf(std::string const& traceLog) {
  std::vector<int> counts;
  std::istringstream list(traceLog.substr(traceLog.find("\"infoCount\":[") + 13));
  int count = 0;
  while (list >> count) {
    counts.push_back(count);
    list.ignore(1);  // the comma
  }
  return counts;
}

struct TracedCall {
  AggregateCall call;
  std::vector<LogLine> lines;
  LocateTrace trace;
};

TracedCall callWithTrace(Input const& infos) {
  TracedCall traced;
  LogCapture capture;
  char* trace = nullptr;
  AggregateCall& call = traced.call;
  call.code = Vantis::Location::locateWithTrace(infos.data(), static_cast<int>(infos.size()),
                                                &call.result, &trace, &traced.trace);
  call.geoId = call.result.geoId;
  call.floorInfo = call.result.floorInfo;
  call.traceLog = trace;
  delete[] call.result.geoId;
  delete[] call.result.floorInfo;
  delete[] trace;
  call.result.geoId = call.result.floorInfo = nullptr;
  traced.lines = capture.lines();
  return traced;
}

TEST(LocateWithTrace, ObserverChangesNoOutputAndItsFatesAddUpToTheStageCounts) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 60; ++round) {
    Input const infos = mixedScans(random, 1 + round * 7);
    LogCapture capture;
    AggregateCall const plain = callGetAggregateLocation(infos);
    std::vector<LogLine> const plainLines = capture.lines();
    TracedCall const traced = callWithTrace(infos);
    ASSERT_TRUE(traced.call.sameAs(plain)) << "round " << round;
    ASSERT_EQ(traced.lines, plainLines) << "round " << round;

    LocateTrace const& trace = traced.trace;
    std::vector<int> const counts = infoCountOf(plain.traceLog);
    ASSERT_EQ(trace.fates.size(), infos.size());
    // Slot s counts the records left after stage s, so stage s removed slot s-1 minus slot s.
    for (std::size_t slot = 1; slot < counts.size(); ++slot) {
      EXPECT_EQ(std::count(trace.fates.begin(), trace.fates.end(), static_cast<Fate>(slot)),
                counts[slot - 1] - counts[slot])
          << "round " << round << ", stage " << slot;
    }
    if (!counts.empty()) {
      EXPECT_EQ(std::count(trace.fates.begin(), trace.fates.end(), Fate::kKept), counts.back());
    }
    if (plain.code == CORVEX_SUCCESS) {
      EXPECT_TRUE(trace.main.ran && trace.kmeans.ran);
      LocateTrace::Outcome const& winner = trace.winner == 1 ? trace.main : trace.kmeans;
      EXPECT_EQ(std::memcmp(&winner.lon, &plain.result.lon, sizeof(double)), 0);
      EXPECT_EQ(winner.runTimeStamp, plain.result.runTimeStamp);
      EXPECT_EQ(trace.indoorVote.applied, plain.result.indoorFlag == 1 && !plain.geoId.empty());
      EXPECT_EQ(trace.indoorVote.applied ? trace.indoorVote.building : "", plain.geoId);
      EXPECT_NE(trace.solver, LocateTrace::Solver::kNone);
    }
  }
}

TEST(LocateWithTrace, RecordsOfACallThatEndsBeforeFilteringAreNotReached) {
  Input const tooMany(5001, outdoorScan(1700000000000, -60, 0, 0));
  TracedCall const traced = callWithTrace(tooMany);
  EXPECT_EQ(traced.call.code, CORVEX_INPUT_INFO_OVER_LIMIT);
  EXPECT_EQ(std::count(traced.trace.fates.begin(), traced.trace.fates.end(), Fate::kNotReached),
            5001);
  EXPECT_FALSE(traced.trace.kmeans.ran);
  EXPECT_EQ(traced.trace.winner, 0);
}

}  // namespace
}  // namespace corvex_test
