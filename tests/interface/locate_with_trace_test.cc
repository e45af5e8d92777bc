// The observer of one call: it must not change a single output bit or log line, and what it
// reports must add up with the trace log's per-stage counts.
#include "interface/locate_with_trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "support/aggregate_call.h"
#include "support/log_capture.h"
#include "support/whole_call_tags.h"

namespace corvex_test {
namespace {

using Vantis::Location::LocateTrace;
using Fate = LocateTrace::Fate;
using Input = std::vector<AggregateScanInfo>;

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
  traced.call = callGetAggregateLocation(infos, [&traced](auto... arguments) {
    return Vantis::Location::locateWithTrace(arguments..., &traced.trace);
  });
  traced.lines = capture.lines();
  return traced;
}

TEST(LocateWithTrace, ObserverChangesNoOutputAndItsFatesAddUpToTheStageCounts) {
  for (Tag const& tag : wholeCallTags()) {
    Input const& infos = tag.infos;
    LogCapture capture;
    AggregateCall const plain = callGetAggregateLocation(infos);
    std::vector<LogLine> const plainLines = capture.lines();
    TracedCall const traced = callWithTrace(infos);
    ASSERT_TRUE(traced.call.sameAs(plain)) << tag.name;
    ASSERT_EQ(traced.lines, plainLines) << tag.name;

    LocateTrace const& trace = traced.trace;
    std::vector<int> const counts = infoCountOf(plain.traceLog);
    ASSERT_EQ(trace.fates.size(), infos.size());
    // The local plane's origin is the oldest record, the first of equal times.
    AggregateScanInfo const& oldest = *std::min_element(
        infos.begin(), infos.end(), [](auto& a, auto& b) { return a.timeStamp < b.timeStamp; });
    EXPECT_TRUE(trace.hasReference);
    EXPECT_EQ(std::memcmp(&trace.referenceLon, &oldest.lon, sizeof(double)), 0) << tag.name;
    EXPECT_EQ(std::memcmp(&trace.referenceLat, &oldest.lat, sizeof(double)), 0) << tag.name;
    // Slot s counts the records left after stage s, so stage s removed slot s-1 minus slot s.
    for (std::size_t slot = 1; slot < counts.size(); ++slot) {
      EXPECT_EQ(std::count(trace.fates.begin(), trace.fates.end(), static_cast<Fate>(slot)),
                counts[slot - 1] - counts[slot])
          << tag.name << ", stage " << slot;
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
