#include "interface/aggregate_location_adapter.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace Vantis::Location {
namespace {

// The caller releases the copy with delete[], so it must come from new[].
std::unique_ptr<char[]> copyText(std::string const& text) {
  std::unique_ptr<char[]> copy(new char[text.size() + 1]);
  std::memcpy(copy.get(), text.c_str(), text.size() + 1);
  return copy;
}

}  // namespace

// Built in the order the locator would sort them into, so that no record is moved afterwards.
std::vector<BleScanInfoWithConfidence> AggregateLocationAdapter::toScanInfos(
    const AggregateScanInfo* infos, int count) {
  std::vector<BleScanInfoWithConfidence> scanInfos;
  if (count <= 0) {
    return scanInfos;
  }
  std::vector<std::pair<long long, int>> byTime;
  byTime.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    byTime.emplace_back(infos[i].timeStamp, i);
  }
  std::stable_sort(byTime.begin(), byTime.end(),
                   [](auto const& a, auto const& b) { return a.first < b.first; });
  scanInfos.reserve(static_cast<size_t>(count));
  TextsByAddress texts = rankedGeoIds(infos, count);
  for (auto const& [timeStamp, index] : byTime) {
    AggregateScanInfo const& info = infos[index];
    scanInfos.emplace_back(
        BlueToothRecord(timeStamp, info.rssi),
        LastLocation(info.lon, info.lat, info.acc, info.locationType, info.locationSourceType), 0,
        0, info.confidence);
    setIndoorInfo(info, texts, scanInfos.back().getLastLocation());
    scanInfos.back().setInputIndex(index);
  }
  return scanInfos;
}

BleScanInfoWithConfidence AggregateLocationAdapter::toScanInfo(AggregateScanInfo const& info) {
  TextsByAddress texts;
  BleScanInfoWithConfidence scanInfo(
      BlueToothRecord(info.timeStamp, info.rssi),
      LastLocation(info.lon, info.lat, info.acc, info.locationType, info.locationSourceType), 0, 0,
      info.confidence);
  setIndoorInfo(info, texts, scanInfo.getLastLocation());
  return scanInfo;
}

void AggregateLocationAdapter::setIndoorInfo(AggregateScanInfo const& info, TextsByAddress& texts,
                                             LastLocation& location) {
  if (info.geoId == nullptr) {
    return;
  }
  location.setIndoorFlag(info.indoorFlag);
  location.setGeoId(shared(info.geoId, texts));
  location.setFloorId(info.floorId);
  location.setFloorAcc(info.floorAcc);
  location.setFloorInfo(shared(info.floorInfo != nullptr ? info.floorInfo : "", texts));
}

// Records are ordered and voted on by building; ranked once, long texts are not read again.
AggregateLocationAdapter::TextsByAddress AggregateLocationAdapter::rankedGeoIds(
    const AggregateScanInfo* infos, int count) {
  TextsByAddress texts;
  std::vector<char const*> addresses;
  std::vector<std::string_view> views;
  for (int i = 0; i < count; ++i) {
    if (infos[i].geoId != nullptr && texts.try_emplace(infos[i].geoId).second) {
      addresses.push_back(infos[i].geoId);
      views.emplace_back(infos[i].geoId);
    }
  }
  std::vector<SharedText> const ranked = SharedText::ranked(views);
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    texts[addresses[i]] = ranked[i];
  }
  return texts;
}

// Callers usually pass one building text for many records: it is copied once.
SharedText AggregateLocationAdapter::shared(char const* text, TextsByAddress& texts) {
  auto const found = texts.find(text);
  if (found != texts.end()) {
    return found->second;
  }
  return texts.emplace(text, SharedText(text)).first->second;
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
