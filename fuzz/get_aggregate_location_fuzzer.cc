// libFuzzer target for the exported entry point: turns the input bytes into scan records and
// checks that every call answers with a well-formed result.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"

namespace {

// Enough records for every stage to run; more would only make iterations slow.
constexpr size_t kMaxRecords = 300;

// Plausible values reach the deeper stages; raw bytes give NaN, infinities and extremes.
void fillRecord(FuzzedDataProvider& data, std::vector<std::string> const& texts,
                AggregateScanInfo* info) {
  uint8_t const shape = data.ConsumeIntegral<uint8_t>();
  if ((shape & 1) != 0) {
    info->timeStamp = 1700000000000 + data.ConsumeIntegralInRange<int64_t>(0, 86400000);
    info->lon = 8.5 + data.ConsumeIntegral<int16_t>() * 1e-5;
    info->lat = 47.3 + data.ConsumeIntegral<int16_t>() * 1e-5;
    info->acc = data.ConsumeIntegralInRange<int>(0, 100);
  } else {
    data.ConsumeData(&info->timeStamp, sizeof info->timeStamp);
    data.ConsumeData(&info->lon, sizeof info->lon);
    data.ConsumeData(&info->lat, sizeof info->lat);
    data.ConsumeData(&info->acc, sizeof info->acc);
  }
  if ((shape & 2) != 0) {
    info->rssi = data.ConsumeIntegralInRange<int32_t>(-110, 5);
    info->confidence = data.ConsumeIntegralInRange<int>(0, 100) / 100.0;
  } else {
    data.ConsumeData(&info->rssi, sizeof info->rssi);
    data.ConsumeData(&info->confidence, sizeof info->confidence);
  }
  info->locationType = data.ConsumeIntegralInRange<int32_t>(-1, 3);
  info->locationSourceType = data.ConsumeIntegralInRange<int32_t>(-1, 4);
  if ((shape & 4) != 0) {
    data.ConsumeData(&info->indoorFlag, sizeof info->indoorFlag);
    info->floorId = data.ConsumeIntegralInRange<int32_t>(-3, 5);
    data.ConsumeData(&info->floorAcc, sizeof info->floorAcc);
    info->geoId = texts[data.ConsumeIntegralInRange<size_t>(0, texts.size() - 1)].c_str();
    // A null floor text with a building is a caller slip the entry point tolerates.
    info->floorInfo = (shape & 8) != 0
                          ? nullptr
                          : texts[data.ConsumeIntegralInRange<size_t>(0, texts.size() - 1)].c_str();
  }
}

int traceErrorCode(char const* trace) {
  char const* const key = std::strstr(trace, "\"errorCode\":");
  if (key == nullptr) {
    std::abort();
  }
  return static_cast<int>(std::strtol(key + std::strlen("\"errorCode\":"), nullptr, 10));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("CORVEX_LOG_LEVEL", "off", 0);  // the messages are still built, only not written
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  std::vector<std::string> const texts = {data.ConsumeRandomLengthString(12),
                                          data.ConsumeRandomLengthString(12), ""};
  bool const claimNone = data.ConsumeBool();  // a zero count with records present
  std::vector<AggregateScanInfo> infos;
  while (data.remaining_bytes() > 0 && infos.size() < kMaxRecords) {
    infos.emplace_back();
    fillRecord(data, texts, &infos.back());
  }
  AggregateScanInfo const none{};
  int const count = claimNone ? 0 : static_cast<int>(infos.size());

  AggregateLocationResult result;
  char* trace = nullptr;
  int const code =
      GetAggregateLocation(infos.empty() ? &none : infos.data(), count, &result, &trace);
  if (trace == nullptr || result.geoId == nullptr || result.floorInfo == nullptr ||
      traceErrorCode(trace) != code) {
    std::abort();
  }
  delete[] result.geoId;
  delete[] result.floorInfo;
  delete[] trace;
  return 0;
}
