#ifndef CORVEX_TOOLS_LOCATION_PRINTER_H_
#define CORVEX_TOOLS_LOCATION_PRINTER_H_

#include <string>

#include "corvex/aggregate_location.h"

namespace corvex_cli {

// Formats the answer for one tag as one line of JSON (no line end), keys in this order:
// tag, code, message, lon, lat, acc, confidence, timeStamp, runTimeStamp, indoorFlag, geoId,
// floorId, floorAcc, floorInfo, infoCount. Numbers are written so that they read back to the
// same value (acc in the shortest form that reads back to the same float); NaN and infinities
// become null.
class LocationPrinter {
 public:
  // traceLog: the library's trace; supplies message and infoCount. Null strings print as "".
  static std::string format(std::string const& tag, int code, AggregateLocationResult const& result,
                            char const* traceLog);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_LOCATION_PRINTER_H_
