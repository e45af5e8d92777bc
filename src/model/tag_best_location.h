#ifndef CORVEX_MODEL_TAG_BEST_LOCATION_H_
#define CORVEX_MODEL_TAG_BEST_LOCATION_H_

#include <string>
#include <tuple>
#include <vector>

#include "model/error_code.h"
#include "model/tag_stat.h"

namespace Vantis::Location {

// The estimated tag location of one computation, with its outcome and filter statistics.
class TagBestLocation {
 public:
  static constexpr int kNoFloor = -100;

  TagBestLocation();
  explicit TagBestLocation(ErrorCode const& errorCode);
  // lon, lat (degrees, or east/north metres in the local frame).
  TagBestLocation(double lon, double lat);
  // timeStamp (ms), acc (metres).
  TagBestLocation(double lon, double lat, long long timeStamp, double confidence, float acc);

  ErrorCode const& getErrorCode() const { return errorCode_; }
  void setErrorCode(ErrorCode const& errorCode) { errorCode_ = errorCode; }
  // Lets a calculator set the outcome and return the result in one statement.
  TagBestLocation& setErrorCodeAndGet(ErrorCode errorCode);

  // Time the position refers to (ms).
  long long getTimeStamp() const { return timeStamp_; }
  void setTimeStamp(long long timeStamp) { timeStamp_ = timeStamp; }
  // Time stamp the calculators compare to pick a winner (ms).
  long long getRunTimeStamp() const { return runTimeStamp_; }
  void setRunTimeStamp(long long runTimeStamp) { runTimeStamp_ = runTimeStamp; }
  double getLon() const { return lon_; }
  void setLon(double lon) { lon_ = lon; }
  double getLat() const { return lat_; }
  void setLat(double lat) { lat_ = lat; }
  double getConfidence() const { return confidence_; }
  void setConfidence(double confidence) { confidence_ = confidence; }
  // Accuracy radius (metres).
  float getAcc() const { return acc_; }
  void setAcc(float acc) { acc_ = acc; }
  // Building identifier.
  std::string const& getGeoId() const { return geoId_; }
  void setGeoId(std::string const& geoId) { geoId_ = geoId; }
  std::string const& getFloorInfo() const { return floorInfo_; }
  void setFloorInfo(std::string const& floorInfo) { floorInfo_ = floorInfo; }
  int getFloorId() const { return floorId_; }
  void setFloorId(int floorId) { floorId_ = floorId; }
  int getFloorAcc() const { return floorAcc_; }
  void setFloorAcc(int floorAcc) { floorAcc_ = floorAcc; }
  int getIndoorFlag() const { return indoorFlag_; }
  void setIndoorFlag(int indoorFlag) { indoorFlag_ = indoorFlag; }
  TagStat& getTagStat() { return tagStat_; }
  TagStat const& getTagStat() const { return tagStat_; }

  // "[a, b, c]", or "[]" when empty.
  static std::string printVec(std::vector<int> const& values);
  // One-line JSON with version, errorCode, errorMsg and infoCount; nothing is escaped.
  std::string getTraceLog() const;

  // errorCode and tagStat take no part in the order.
  bool operator<(TagBestLocation const& other) const;

 private:
  auto orderKey() const {
    return std::tie(timeStamp_, runTimeStamp_, lon_, lat_, confidence_, acc_, geoId_, floorInfo_,
                    floorId_, floorAcc_, indoorFlag_);
  }

  ErrorCode errorCode_;
  long long timeStamp_;
  long long runTimeStamp_ = 0;
  double lon_;
  double lat_;
  double confidence_;
  float acc_;
  std::string geoId_;
  std::string floorInfo_;
  int floorId_ = kNoFloor;
  int floorAcc_ = 0;
  int indoorFlag_ = 0;
  TagStat tagStat_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_TAG_BEST_LOCATION_H_
