#ifndef CORVEX_TOOLS_SCAN_RECORD_H_
#define CORVEX_TOOLS_SCAN_RECORD_H_

#include <string_view>

#include "corvex/aggregate_location.h"

namespace corvex_cli {

// One checked input record as a reader hands it on. The views point into the reader's
// buffers and stay valid only until the reader moves on; info's string pointers stay null.
struct ScanRecord {
  std::string_view tag;  // "" when the input has no tag
  AggregateScanInfo info{};
  bool indoor = false;  // the record names a building; then geoId and floorInfo go to the library
  std::string_view geoId;
  std::string_view floorInfo;
  unsigned implausible = 0;  // bits (1 << ScanRecordBuilder::Field) of values no phone produces
  int line = 0;              // where the record starts (1-based)
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_RECORD_H_
