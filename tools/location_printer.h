#ifndef CORVEX_TOOLS_LOCATION_PRINTER_H_
#define CORVEX_TOOLS_LOCATION_PRINTER_H_

#include <string>
#include <vector>

#include "corvex/aggregate_location.h"

namespace corvex_cli {

// Formats the answers for tags. Every format carries the same fields, in this order: tag, code,
// message, lon, lat, acc, confidence, timeStamp, runTimeStamp, indoorFlag, geoId, floorId,
// floorAcc, floorInfo, infoCount, and log when the call's log lines were asked for. Numbers
// are written so that they read back to the same value (acc in the shortest form that reads
// back to the same float); NaN and infinities become null (an empty CSV cell).
class LocationPrinter {
 public:
  enum class Format {
    kJsonLines,  // one JSON object per tag and line
    kCsv,        // a header row, then one row per tag; infoCount and log as JSON arrays
    kGeoJson,    // a FeatureCollection (RFC 7946), one Point Feature per tag
  };

  // One tag's answer, without a line end. traceLog: the library's trace; supplies message and
  // infoCount. Null strings print as "". log: the call's log lines, or null for none.
  static std::string format(Format format, std::string const& tag, int code,
                            AggregateLocationResult const& result, char const* traceLog,
                            std::vector<std::string> const* log);
  // What comes before the first answer, between two, and after the last.
  static std::string header(Format format, bool withLog);
  static char const* separator(Format format);
  static char const* footer(Format format);
  // Whether a result with this code carries an estimated position. Failed calls return the
  // newest record's own fix, a default (0, 0) or local metres: GeoJSON gives them no geometry.
  static bool hasPosition(int code) { return code == CORVEX_SUCCESS; }
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_LOCATION_PRINTER_H_
