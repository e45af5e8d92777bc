#include "model/blue_tooth_record.h"

namespace Vantis::Location {

BlueToothRecord::BlueToothRecord(std::string const& name, std::string const& mac,
                                 long long timeStamp, int rssi)
    : name_(name), mac_(mac), timeStamp_(timeStamp), rssi_(rssi) {}

BlueToothRecord::BlueToothRecord(long long timeStamp, int rssi)
    : timeStamp_(timeStamp), rssi_(rssi) {}

std::string BlueToothRecord::toString() const {
  return "BlueToothRecord{name='" + name_.get() + "', mac='" + mac_.get() +
         "', timeStamp=" + std::to_string(timeStamp_) + ", rssi=" + std::to_string(rssi_) + "}";
}

}  // namespace Vantis::Location
