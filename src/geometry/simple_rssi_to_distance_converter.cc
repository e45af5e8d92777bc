#include "geometry/simple_rssi_to_distance_converter.h"

#include <cmath>
#include <string>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
constexpr double kMinRssi = -128.0;
constexpr double kMaxRssi = 0.0;
constexpr double kRssiAtOneMetre = -72.5;
constexpr double kDbPerDecade = 26.5;
}  // namespace

double SimpleRssiToDistanceConverter::convert(double rssi) {
  // 0 itself is accepted even though the message reads "< 0".
  if (rssi < kMinRssi || rssi > kMaxRssi) {
    CorvexTagLogger::getInstance().error("rssi " + std::to_string(rssi) +
                                         " out of range! Must be -128 <= rssi < 0 !");
    return 0.0;
  }
  return std::pow(10.0, (kRssiAtOneMetre - rssi) / kDbPerDecade);
}

}  // namespace Vantis::Location
