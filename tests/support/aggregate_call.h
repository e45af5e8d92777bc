// Calls the exported entry point and takes ownership of the strings it hands back.
#ifndef CORVEX_TESTS_SUPPORT_AGGREGATE_CALL_H_
#define CORVEX_TESTS_SUPPORT_AGGREGATE_CALL_H_

#include <functional>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"

namespace corvex_test {

// Everything one call returned, with the strings copied out and released.
struct AggregateCall {
  int code = 0;
  AggregateLocationResult result{};  // string pointers cleared; see the copies below
  bool stringsPresent = false;       // all three returned strings were non-null
  std::string geoId;
  std::string floorInfo;
  std::string traceLog;

  // The errorCode field of the trace log; a sentinel when the log has none.
  int traceErrorCode() const;
  // Field-by-field equality of the values (doubles bitwise, so NaN results compare).
  bool sameAs(AggregateCall const& other) const;
};

// The entry point's signature, so that a test can call an instrumented variant in its place.
using Locate = std::function<int(const AggregateScanInfo*, int, AggregateLocationResult*, char**)>;

AggregateCall callGetAggregateLocation(std::vector<AggregateScanInfo> const& infos,
                                       Locate const& locate = GetAggregateLocation);

// A plausible outdoor record near a fixed point; offsets in degrees.
AggregateScanInfo outdoorScan(long long timeStamp, int rssi, double lonOffset, double latOffset);

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_AGGREGATE_CALL_H_
