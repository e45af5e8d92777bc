#ifndef CORVEX_GEOMETRY_SIMPLE_RSSI_TO_DISTANCE_CONVERTER_H_
#define CORVEX_GEOMETRY_SIMPLE_RSSI_TO_DISTANCE_CONVERTER_H_

namespace Vantis::Location {

// Log-distance path-loss model: -72.5 dBm at 1 m, 26.5 dB per decade (exponent 2.65).
class SimpleRssiToDistanceConverter {
 public:
  // Distance (metres) for rssi (dBm) in [-128, 0]; 0.0 and an error line outside.
  static double convert(double rssi);
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_SIMPLE_RSSI_TO_DISTANCE_CONVERTER_H_
