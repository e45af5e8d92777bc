// The only function of libcorvex_release: the array release matching the allocation in
// GetAggregateLocation.
#include "corvex/release_aggregate_location_string.h"

extern "C" __attribute__((visibility("default"))) void ReleaseAggregateLocationString(char* text) {
  delete[] text;
}
