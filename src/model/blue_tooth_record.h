#ifndef CORVEX_MODEL_BLUE_TOOTH_RECORD_H_
#define CORVEX_MODEL_BLUE_TOOTH_RECORD_H_

#include <string>
#include <tuple>

#include "model/shared_text.h"

namespace Vantis::Location {

// What one phone heard from the tag in one scan: the tag's identity and signal strength.
class BlueToothRecord {
 public:
  // timeStamp (ms), rssi (dBm).
  BlueToothRecord(std::string const& name, std::string const& mac, long long timeStamp, int rssi);
  BlueToothRecord(long long timeStamp, int rssi);

  std::string const& getName() const { return name_.get(); }
  void setName(std::string const& name) { name_ = SharedText(name); }
  std::string const& getMac() const { return mac_.get(); }
  void setMac(std::string const& mac) { mac_ = SharedText(mac); }
  // Scan time (ms).
  long long getTimeStamp() const { return timeStamp_; }
  void setTimeStamp(long long timeStamp) { timeStamp_ = timeStamp; }
  // Received signal strength (dBm).
  int getRssi() const { return rssi_; }
  void setRssi(int rssi) { rssi_ = rssi; }

  std::string toString() const;

  // Time first, then mac, so that records sort by scan time.
  bool operator<(BlueToothRecord const& other) const;
  bool operator==(BlueToothRecord const& other) const;

 private:
  auto orderKey() const { return std::tie(timeStamp_, mac_, rssi_, name_); }

  // Shared, so that copying a record copies no text.
  SharedText name_;
  SharedText mac_;
  long long timeStamp_;
  int rssi_;
};

// Inline: every record comparison starts here.
inline bool BlueToothRecord::operator<(BlueToothRecord const& other) const {
  return orderKey() < other.orderKey();
}

inline bool BlueToothRecord::operator==(BlueToothRecord const& other) const {
  return orderKey() == other.orderKey();
}

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_BLUE_TOOTH_RECORD_H_
