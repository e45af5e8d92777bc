#include "interface/aggregate_location_adapter.h"

#include <cstring>
#include <memory>
#include <string>

namespace Vantis::Location {
namespace {

// The caller releases the copy with delete[], so it must come from new[].
std::unique_ptr<char[]> copyText(std::string const& text) {
  std::unique_ptr<char[]> copy(new char[text.size() + 1]);
  std::memcpy(copy.get(), text.c_str(), text.size() + 1);
  return copy;
}

}  // namespace

std::vector<BleScanInfoWithConfidence> AggregateLocationAdapter::toScanInfos(
    const AggregateScanInfo* infos, int count) {
  std::vector<BleScanInfoWithConfidence> scanInfos;
  if (count > 0) {
    scanInfos.reserve(static_cast<size_t>(count));
  }
  for (int i = 0; i < count; ++i) {
    scanInfos.push_back(toScanInfo(infos[i]));
    scanInfos.back().setInputIndex(i);
  }
  return scanInfos;
}

BleScanInfoWithConfidence AggregateLocationAdapter::toScanInfo(AggregateScanInfo const& info) {
  BlueToothRecord record(info.timeStamp, info.rssi);
  LastLocation location(info.lon, info.lat, info.acc, info.locationType, info.locationSourceType);
  BleScanInfoWithConfidence scanInfo(record, location, 0, 0, info.confidence);
  if (info.geoId != nullptr) {
    LastLocation& indoor = scanInfo.getLastLocation();
    indoor.setIndoorFlag(info.indoorFlag);
    indoor.setGeoId(info.geoId);
    indoor.setFloorId(info.floorId);
    indoor.setFloorAcc(info.floorAcc);
    indoor.setFloorInfo(info.floorInfo != nullptr ? info.floorInfo : "");
  }
  return scanInfo;
}

void AggregateLocationAdapter::publish(TagBestLocation const& location,
                                       AggregateLocationResult* result, char** traceLog) {
  std::unique_ptr<char[]> geoId = copyText(location.getGeoId());
  std::unique_ptr<char[]> floorInfo = copyText(location.getFloorInfo());
  std::unique_ptr<char[]> trace = copyText(location.getTraceLog());

  result->timeStamp = location.getTimeStamp();
  result->runTimeStamp = location.getRunTimeStamp();
  result->lon = location.getLon();
  result->lat = location.getLat();
  result->confidence = location.getConfidence();
  result->acc = location.getAcc();
  result->geoId = geoId.release();
  result->floorInfo = floorInfo.release();
  result->floorId = location.getFloorId();
  result->floorAcc = location.getFloorAcc();
  result->indoorFlag = location.getIndoorFlag();
  *traceLog = trace.release();
}

void AggregateLocationAdapter::publishNothing(AggregateLocationResult* result,
                                              char** traceLog) noexcept {
  result->geoId = nullptr;
  result->floorInfo = nullptr;
  *traceLog = nullptr;
}

}  // namespace Vantis::Location
