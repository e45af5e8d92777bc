#ifndef CORVEX_INTERFACE_LOCATE_WITH_TRACE_H_
#define CORVEX_INTERFACE_LOCATE_WITH_TRACE_H_

#include "calculator/locate_trace.h"
#include "corvex/aggregate_location.h"

namespace Vantis::Location {

// GetAggregateLocation with an observer, for the library's own tools: same arguments, return
// value, output and log lines. When trace is not null it is reset and then filled with what
// the call did (its fates hold one entry per input record when count > 0). Not exported.
int locateWithTrace(const AggregateScanInfo* infos, int count, AggregateLocationResult* result,
                    char** traceLog, LocateTrace* trace);

}  // namespace Vantis::Location

#endif  // CORVEX_INTERFACE_LOCATE_WITH_TRACE_H_
