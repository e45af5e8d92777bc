// The library's only exported function.
#include <vector>

#include "calculator/corvex_tag_position_calculator.h"
#include "corvex/aggregate_location.h"
#include "interface/aggregate_location_adapter.h"
#include "model/tag_best_location.h"

namespace {

using Vantis::Location::AggregateLocationAdapter;
using Vantis::Location::BleScanInfoWithConfidence;
using Vantis::Location::CorvexTagPositionCalculator;
using Vantis::Location::TagBestLocation;

int locate(const AggregateScanInfo* infos, int count, AggregateLocationResult* result,
           char** traceLog) {
  std::vector<BleScanInfoWithConfidence> scanInfos =
      AggregateLocationAdapter::toScanInfos(infos, count);
  CorvexTagPositionCalculator calculator;
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

extern "C" __attribute__((visibility("default"))) int GetAggregateLocation(
    const AggregateScanInfo* infos, int count, AggregateLocationResult* result, char** traceLog) {
  if (infos == nullptr) {
    return CORVEX_NULL_INPUT;
  }
  // The host is C: no exception may cross this boundary.
  try {
    return locate(infos, count, result, traceLog);
  } catch (...) {
    return publishUnknownError(result, traceLog);
  }
}
