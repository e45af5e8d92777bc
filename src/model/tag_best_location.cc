#include "model/tag_best_location.h"

#include <utility>

namespace Vantis::Location {

TagBestLocation::TagBestLocation() : TagBestLocation(ErrorCode::UNKNOWN_ERROR) {}

TagBestLocation::TagBestLocation(ErrorCode const& errorCode)
    : errorCode_(errorCode), timeStamp_(0), lon_(0), lat_(0), confidence_(1.0), acc_(0) {}

TagBestLocation::TagBestLocation(double lon, double lat) : TagBestLocation(lon, lat, 0, 1.0, 0) {}

TagBestLocation::TagBestLocation(double lon, double lat, long long timeStamp, double confidence,
                                 float acc)
    : errorCode_(ErrorCode::SUCCESS),
      timeStamp_(timeStamp),
      lon_(lon),
      lat_(lat),
      confidence_(confidence),
      acc_(acc) {}

TagBestLocation& TagBestLocation::setErrorCodeAndGet(ErrorCode errorCode) {
  errorCode_ = std::move(errorCode);
  return *this;
}

std::string TagBestLocation::printVec(std::vector<int> const& values) {
  std::string text = "[";
  for (size_t i = 0; i < values.size(); ++i) {
    if (i > 0) {
      text += ", ";
    }
    text += std::to_string(values[i]);
  }
  return text + "]";
}

std::string TagBestLocation::getTraceLog() const {
  return "{\"version\":\"" + tagStat_.getVersion() +
         "\",\"errorCode\":" + std::to_string(errorCode_.getErrorCode()) + ",\"errorMsg\":\"" +
         errorCode_.getErrorMsg() + "\",\"infoCount\":" + printVec(tagStat_.getInfoCount()) + "}";
}

bool TagBestLocation::operator<(TagBestLocation const& other) const {
  return orderKey() < other.orderKey();
}

}  // namespace Vantis::Location
