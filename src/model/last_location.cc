#include "model/last_location.h"

#include <sstream>
#include <utility>

namespace Vantis::Location {

LastLocation::LastLocation(double lon, double lat, float acc, int locationType,
                           int locationSourceType)
    : lon_(lon),
      lat_(lat),
      acc_(acc),
      locationType_(locationType),
      locationSourceType_(locationSourceType) {}

void LastLocation::setIndoorInfo(int indoorFlag, std::string geoId, int floorId, int floorAcc,
                                 std::string floorInfo) {
  indoorFlag_ = indoorFlag;
  geoId_ = SharedText(std::move(geoId));
  floorId_ = floorId;
  floorAcc_ = floorAcc;
  floorInfo_ = SharedText(std::move(floorInfo));
}

void LastLocation::setGnssBearingSpeed(float bearing, float speed) {
  bearing_ = bearing;
  speed_ = speed;
}

std::string LastLocation::toString() const {
  std::ostringstream out;
  out.precision(15);
  out << "LastLocation{timeStamp = " << timeStamp_ << ", lat = " << lat_ << ", lon = " << lon_
      << ", acc = " << static_cast<double>(acc_) << ", speed = " << static_cast<double>(speed_)
      << ", bearing = " << static_cast<double>(bearing_) << ", locationType = " << locationType_
      << ", locationSourceType = " << locationSourceType_ << ", indoorFlag = " << indoorFlag_
      << ", buildingId = " << geoId_.get() << ", floor = " << floorId_
      << ", floorAcc = " << floorAcc_ << ", isEnu = " << isEnu_ << "}";
  return out.str();
}

// Tuple comparison tests `<` both ways per field, so a NaN field decides nothing and the next
// field takes over.
bool LastLocation::operator<(LastLocation const& other) const {
  return orderKey() < other.orderKey();
}

bool LastLocation::operator==(LastLocation const& other) const {
  return orderKey() == other.orderKey();
}

bool LastLocation::precedesInTotalOrder(LastLocation const& other) const {
  return totalOrderKey() < other.totalOrderKey();
}

}  // namespace Vantis::Location
