#ifndef CORVEX_PYTHON_LOCATION_LINE_WRITER_H_
#define CORVEX_PYTHON_LOCATION_LINE_WRITER_H_

#include <cstdint>
#include <string>
#include <vector>

namespace corvex_python {

// The fields of one tag's answer as `corvex locate` prints them.
struct LocationLine {
  std::string tag;
  int code = 0;
  std::string message;
  double lon = 0;  // degrees
  double lat = 0;  // degrees
  float acc = 0;   // metres
  double confidence = 0;
  int64_t timeStamp = 0;     // ms
  int64_t runTimeStamp = 0;  // ms
  int32_t indoorFlag = 0;
  std::string geoId;
  int32_t floorId = 0;
  int32_t floorAcc = 0;
  std::string floorInfo;
  std::vector<int> infoCount;
};

// Writes one answer as the JSON line of `corvex locate`, byte for byte: keys in the order of
// LocationLine, numbers in the shortest form that reads back to the same value (acc as the
// float it is), NaN and infinities as null, invalid UTF-8 replaced.
class LocationLineWriter {
 public:
  static std::string write(LocationLine const& line);
};

}  // namespace corvex_python

#endif  // CORVEX_PYTHON_LOCATION_LINE_WRITER_H_
