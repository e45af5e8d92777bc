#include "support/aggregate_call.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace corvex_test {
namespace {

std::string takeString(char* text) {
  std::string copy = text != nullptr ? text : "";
  delete[] text;
  return copy;
}

bool sameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

int AggregateCall::traceErrorCode() const {
  static const char kKey[] = "\"errorCode\":";
  size_t const at = traceLog.find(kKey);
  if (at == std::string::npos) {
    return INT_MIN;
  }
  return static_cast<int>(std::strtol(traceLog.c_str() + at + sizeof kKey - 1, nullptr, 10));
}

bool AggregateCall::sameAs(AggregateCall const& other) const {
  AggregateLocationResult const& a = result;
  AggregateLocationResult const& b = other.result;
  return code == other.code && a.timeStamp == b.timeStamp && a.runTimeStamp == b.runTimeStamp &&
         sameBits(a.lon, b.lon) && sameBits(a.lat, b.lat) && sameBits(a.confidence, b.confidence) &&
         sameBits(a.acc, b.acc) && a.floorId == b.floorId && a.floorAcc == b.floorAcc &&
         a.indoorFlag == b.indoorFlag && geoId == other.geoId && floorInfo == other.floorInfo &&
         traceLog == other.traceLog;
}

AggregateCall callGetAggregateLocation(std::vector<AggregateScanInfo> const& infos,
                                       Locate const& locate) {
  AggregateCall call;
  char* trace = nullptr;
  // An empty vector may have no storage; the entry point would read that as null infos.
  static AggregateScanInfo const kNoRecord{};
  const AggregateScanInfo* data = infos.empty() ? &kNoRecord : infos.data();
  call.code = locate(data, static_cast<int>(infos.size()), &call.result, &trace);
  call.stringsPresent =
      call.result.geoId != nullptr && call.result.floorInfo != nullptr && trace != nullptr;
  call.geoId = takeString(call.result.geoId);
  call.floorInfo = takeString(call.result.floorInfo);
  call.traceLog = takeString(trace);
  call.result.geoId = nullptr;
  call.result.floorInfo = nullptr;
  return call;
}

AggregateScanInfo outdoorScan(long long timeStamp, int rssi, double lonOffset, double latOffset) {
  AggregateScanInfo info{};
  info.timeStamp = timeStamp;
  info.rssi = rssi;
  info.confidence = 0.9;
  info.lon = 8.5417 + lonOffset;
  info.lat = 47.3769 + latOffset;
  info.acc = 8.0f;
  info.locationType = 1;
  info.locationSourceType = 1;
  return info;
}

}  // namespace corvex_test
