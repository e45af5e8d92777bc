#ifndef CORVEX_INTERFACE_AGGREGATE_LOCATION_ADAPTER_H_
#define CORVEX_INTERFACE_AGGREGATE_LOCATION_ADAPTER_H_

#include <unordered_map>
#include <vector>

#include "corvex/aggregate_location.h"
#include "model/ble_scan_info_with_confidence.h"
#include "model/shared_text.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {

// Translates between the C records of the exported entry point and the library's classes.
class AggregateLocationAdapter {
 public:
  // One record per element, in ascending scan time (elements of equal times in array order:
  // the order the locator sorts them into), each knowing its index in the array; count <= 0
  // gives an empty list.
  static std::vector<BleScanInfoWithConfidence> toScanInfos(const AggregateScanInfo* infos,
                                                            int count);
  // The indoor fields are taken only when geoId is set; a null floorInfo then reads as "".
  static BleScanInfoWithConfidence toScanInfo(AggregateScanInfo const& info);

  // Writes the result and a new trace log for the caller. Either everything is written or,
  // when an allocation fails (std::bad_alloc), nothing is and no memory is kept.
  static void publish(TagBestLocation const& location, AggregateLocationResult* result,
                      char** traceLog);
  // Last resort after a failure: the three strings become null so that the caller neither
  // reads nor releases stale pointers. Allocates nothing.
  static void publishNothing(AggregateLocationResult* result, char** traceLog) noexcept;

 private:
  using TextsByAddress = std::unordered_map<char const*, SharedText>;

  static void setIndoorInfo(AggregateScanInfo const& info, TextsByAddress& texts,
                            LastLocation& location);
  static TextsByAddress rankedGeoIds(const AggregateScanInfo* infos, int count);
  static SharedText shared(char const* text, TextsByAddress& texts);
};

}  // namespace Vantis::Location

#endif  // CORVEX_INTERFACE_AGGREGATE_LOCATION_ADAPTER_H_
