#ifndef CORVEX_GEOMETRY_COORDINATE_CONVERTER_H_
#define CORVEX_GEOMETRY_COORDINATE_CONVERTER_H_

#include <vector>

#include "model/ble_scan_info_with_confidence.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {

// Moves positions between degrees and a flat local east/north frame (metres) around a reference
// {lon0, lat0} (degrees). A reference of any other size than two leaves everything untouched.
class CoordinateConverter {
 public:
  // {east, north} (metres) of (lon, lat) (degrees); {0, 0} for a bad reference.
  static std::vector<double> gpsConvertENU(double lon, double lat, std::vector<double> const& ref);
  // {lon, lat} (degrees) of (east, north) (metres); {0, 0} for a bad reference.
  static std::vector<double> enuConvertGPS(double east, double north,
                                           std::vector<double> const& ref);
  // The result always holds east/north on entry.
  static void enuConvertToGnss(TagBestLocation& result, std::vector<double> const& ref);
  // Converts only the records whose location is in the local frame.
  static void enuConvertToGnss(std::vector<BleScanInfoWithConfidence>& infos,
                               std::vector<double> const& ref);
  // Converts only the records whose location is in degrees.
  static void gnssConvertToEnu(std::vector<BleScanInfoWithConfidence>& infos,
                               std::vector<double> const& ref);
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_COORDINATE_CONVERTER_H_
