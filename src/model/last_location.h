#ifndef CORVEX_MODEL_LAST_LOCATION_H_
#define CORVEX_MODEL_LAST_LOCATION_H_

#include <string>
#include <tuple>
#include <utility>

#include "model/nan_last.h"
#include "model/shared_text.h"

namespace Vantis::Location {

// The reporting phone's own position fix at scan time, with its optional indoor information.
class LastLocation {
 public:
  static constexpr int kNoFloor = -100;

  // lon, lat (degrees), acc (metres).
  LastLocation(double lon, double lat, float acc, int locationType, int locationSourceType);

  // Time of the fix (ms).
  long long getTimeStamp() const { return timeStamp_; }
  void setTimeStamp(long long timeStamp) { timeStamp_ = timeStamp; }
  // Longitude (degrees), or east (metres) while getEnu() is true.
  double getLon() const { return lon_; }
  void setLon(double lon) { lon_ = lon; }
  // Latitude (degrees), or north (metres) while getEnu() is true.
  double getLat() const { return lat_; }
  void setLat(double lat) { lat_ = lat; }
  // Horizontal accuracy (metres).
  float getAcc() const { return acc_; }
  void setAcc(float acc) { acc_ = acc; }
  float getSpeed() const { return speed_; }
  void setSpeed(float speed) { speed_ = speed; }
  float getBearing() const { return bearing_; }
  void setBearing(float bearing) { bearing_ = bearing; }
  int getLocationType() const { return locationType_; }
  void setLocationType(int locationType) { locationType_ = locationType; }
  int getLocationSourceType() const { return locationSourceType_; }
  void setLocationSourceType(int locationSourceType) { locationSourceType_ = locationSourceType; }
  int getIndoorFlag() const { return indoorFlag_; }
  void setIndoorFlag(int indoorFlag) { indoorFlag_ = indoorFlag; }
  int getFloorId() const { return floorId_; }
  void setFloorId(int floorId) { floorId_ = floorId; }
  int getFloorAcc() const { return floorAcc_; }
  void setFloorAcc(int floorAcc) { floorAcc_ = floorAcc; }
  std::string const& getFloorInfo() const { return floorInfo_.get(); }
  void setFloorInfo(std::string const& floorInfo) { floorInfo_ = SharedText(floorInfo); }
  // Shares a text with other records instead of copying it.
  void setFloorInfo(SharedText floorInfo) { floorInfo_ = std::move(floorInfo); }
  // Building identifier.
  std::string const& getGeoId() const { return geoId_.get(); }
  // The same, as the shared text: cheap to compare and copy.
  SharedText const& getGeoIdText() const { return geoId_; }
  void setGeoId(std::string const& geoId) { geoId_ = SharedText(geoId); }
  // Shares a text with other records instead of copying it.
  void setGeoId(SharedText geoId) { geoId_ = std::move(geoId); }
  bool getEnu() const { return isEnu_; }
  void setEnu(bool isEnu) { isEnu_ = isEnu; }

  // The building identifier comes before the floor description.
  void setIndoorInfo(int indoorFlag, std::string geoId, int floorId, int floorAcc,
                     std::string floorInfo);
  void setGnssBearingSpeed(float bearing, float speed);

  // Latitude is printed before longitude; floorInfo is not printed.
  std::string toString() const;

  // floorInfo takes part in neither comparison.
  bool operator<(LastLocation const& other) const;
  bool operator==(LastLocation const& other) const;
  // operator< with every NaN field sorted after the numbers and equivalent to every NaN: a
  // strict weak ordering for any field values.
  bool precedesInTotalOrder(LastLocation const& other) const;

 private:
  // The fields of both comparisons, in comparison order.
  auto orderKey() const {
    return std::tie(timeStamp_, lat_, lon_, acc_, speed_, bearing_, locationType_,
                    locationSourceType_, indoorFlag_, geoId_, floorId_, floorAcc_, isEnu_);
  }

  auto totalOrderKey() const {
    using Key =
        std::tuple<long long, NanLast<double>, NanLast<double>, NanLast<float>, NanLast<float>,
                   NanLast<float>, int, int, int, SharedText const&, int, int, bool>;
    return Key(timeStamp_, {lat_}, {lon_}, {acc_}, {speed_}, {bearing_}, locationType_,
               locationSourceType_, indoorFlag_, geoId_, floorId_, floorAcc_, isEnu_);
  }

  long long timeStamp_ = 0;
  double lon_;
  double lat_;
  float acc_;
  float speed_ = 0;
  float bearing_ = 0;
  int locationType_;
  int locationSourceType_;
  int indoorFlag_ = 0;
  int floorId_ = kNoFloor;
  int floorAcc_ = 0;
  SharedText floorInfo_;
  SharedText geoId_;
  bool isEnu_ = false;  // true when lon_/lat_ hold local east/north metres
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_LAST_LOCATION_H_
