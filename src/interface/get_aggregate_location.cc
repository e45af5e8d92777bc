// The library's only exported function.
#include "corvex/aggregate_location.h"
#include "interface/locate_with_trace.h"

extern "C" __attribute__((visibility("default"))) int GetAggregateLocation(
    const AggregateScanInfo* infos, int count, AggregateLocationResult* result, char** traceLog) {
  return Vantis::Location::locateWithTrace(infos, count, result, traceLog, nullptr);
}
