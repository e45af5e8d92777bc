#include "interface/locate_with_trace.h"

#include <cstddef>
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "interface/aggregate_location_adapter.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {
namespace {

// The record a stable sort by scan time puts last: the last one of the greatest time.
AggregateScanInfo const& newestOf(const AggregateScanInfo* infos, int count) {
  int newest = 0;
  for (int i = 1; i < count; ++i) {
    if (infos[i].timeStamp >= infos[newest].timeStamp) {
      newest = i;
    }
  }
  return infos[newest];
}

TagBestLocation computeLocation(const AggregateScanInfo* infos, int count, LocateTrace* trace) {
  CorvexTagPositionCalculator calculator(trace);
  // Refused before anything is copied: a huge count costs one pass over the times.
  if (count > 0 && static_cast<std::size_t>(count) > CorvexTagPositionCalculator::kMaxInfos) {
    return calculator.refuseOverLimit(AggregateLocationAdapter::toScanInfo(newestOf(infos, count)));
  }
  std::vector<BleScanInfoWithConfidence> scanInfos =
      AggregateLocationAdapter::toScanInfos(infos, count);
  return calculator.getPosition(scanInfos);
}

int locate(const AggregateScanInfo* infos, int count, AggregateLocationResult* result,
           char** traceLog, LocateTrace* trace) {
  TagBestLocation const location = computeLocation(infos, count, trace);
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
  if (infos == nullptr || result == nullptr || traceLog == nullptr) {
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
