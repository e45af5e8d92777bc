#include "interface/locate_with_trace.h"

#include <cstddef>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "interface/aggregate_location_adapter.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {
namespace {

int locate(const AggregateScanInfo* infos, int count, AggregateLocationResult* result,
           char** traceLog, LocateTrace* trace) {
  std::vector<BleScanInfoWithConfidence> scanInfos =
      AggregateLocationAdapter::toScanInfos(infos, count);
  CorvexTagPositionCalculator calculator(trace);
  TagBestLocation const location = calculator.getPosition(scanInfos);
  AggregateLocationAdapter::publish(location, result, traceLog);
  return location.getErrorCode().getErrorCode();
}

// Reports an internal failure (in practice, memory exhaustion) as an unknown error with the
// values of a default result; if even that cannot be allocated, the strings become null.
int publishUnknownError(AggregateLocationResult* result, char** traceLog) noexcept {
  try {
    AggregateLocationAdapter::publish(TagBestLocation(), result, traceLog);
  } catch (...) {
    AggregateLocationAdapter::publishNothing(result, traceLog);
  }
  return CORVEX_UNKNOWN_ERROR;
}

}  // namespace

int locateWithTrace(const AggregateScanInfo* infos, int count, AggregateLocationResult* result,
                    char** traceLog, LocateTrace* trace) {
  if (infos == nullptr) {
    return CORVEX_NULL_INPUT;
  }
  // The host is C: no exception may cross this boundary.
  try {
    if (trace != nullptr) {
      *trace = LocateTrace();
      trace->fates.assign(count > 0 ? static_cast<std::size_t>(count) : 0,
                          LocateTrace::Fate::kNotReached);
    }
    return locate(infos, count, result, traceLog, trace);
  } catch (...) {
    return publishUnknownError(result, traceLog);
  }
}

}  // namespace Vantis::Location
