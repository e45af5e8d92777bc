// libFuzzer target for the exported entry point. It builds the call from the input bytes
// (layout below), runs it twice and aborts unless both calls answer with the same well-formed
// result, the trace log's code is the returned one, and the caller's records and texts are
// unchanged. Also built without libFuzzer into the corpus test, which replays fuzz/corpus and
// fuzz/regressions in the ordinary test suite.
//
// Layout, little-endian (scripts/make_fuzz_corpus.py writes it):
//   u8 flags: bit 0 null infos, bit 1 null result, bit 2 null trace log pointer,
//             bits 3-4 count: 0 the records read, 1 zero, 2 negative, 3 the records repeated
//             up to the target
//   u16 target count (capped at 5001), two texts (u16 length, bytes; up to 64 KiB each),
//   then records of 62 bytes: i64 timeStamp, i32 rssi, f64 confidence, lon, lat, f32 acc,
//   i32 locationType, locationSourceType, indoorFlag, floorId, floorAcc,
//   u8 geoId and u8 floorInfo (0 null, 1 first text, 2 second text, 3 empty text).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "fuzz_input.h"

namespace {

constexpr int kMaxCount = 5001;  // one past the limit

struct Call {
  int code = 0;
  AggregateLocationResult result{};
  std::string geoId, floorInfo, trace;
};

char const* textFor(std::uint8_t choice, std::vector<std::string> const& texts) {
  switch (choice % 4) {
    case 0:
      return nullptr;
    case 3:
      return "";
    default:
      return texts[choice % 4 - 1].c_str();
  }
}

AggregateScanInfo readRecord(corvex_fuzz::FuzzInput& input, std::vector<std::string> const& texts) {
  AggregateScanInfo info{};
  info.timeStamp = input.read<std::int64_t>();
  info.rssi = input.read<std::int32_t>();
  info.confidence = input.read<double>();
  info.lon = input.read<double>();
  info.lat = input.read<double>();
  info.acc = input.read<float>();
  info.locationType = input.read<std::int32_t>();
  info.locationSourceType = input.read<std::int32_t>();
  info.indoorFlag = input.read<std::int32_t>();
  info.floorId = input.read<std::int32_t>();
  info.floorAcc = input.read<std::int32_t>();
  info.geoId = textFor(input.read<std::uint8_t>(), texts);
  info.floorInfo = textFor(input.read<std::uint8_t>(), texts);
  return info;
}

int countFor(int mode, std::vector<AggregateScanInfo>& infos, int target) {
  switch (mode) {
    case 1:
      return 0;
    case 2:
      return -1 - target;
    case 3:
      for (std::size_t i = 0; !infos.empty() && infos.size() < static_cast<std::size_t>(target);
           ++i) {
        infos.push_back(infos[i]);
      }
      return static_cast<int>(infos.size());
    default:
      return static_cast<int>(infos.size());
  }
}

bool sameBits(void const* a, void const* b, std::size_t size) {
  return std::memcmp(a, b, size) == 0;
}

Call locate(AggregateScanInfo const* infos, int count, bool nullResult, bool nullTrace) {
  Call call;
  char* trace = nullptr;
  call.code = GetAggregateLocation(infos, count, nullResult ? nullptr : &call.result,
                                   nullTrace ? nullptr : &trace);
  if (call.code == CORVEX_NULL_INPUT) {
    return call;
  }
  if (trace == nullptr || call.result.geoId == nullptr || call.result.floorInfo == nullptr) {
    std::abort();
  }
  call.trace = trace;
  call.geoId = call.result.geoId;
  call.floorInfo = call.result.floorInfo;
  delete[] trace;
  delete[] call.result.geoId;
  delete[] call.result.floorInfo;
  call.result.geoId = call.result.floorInfo = nullptr;
  return call;
}

void checkWellFormed(Call const& call, bool nullArgument) {
  if (nullArgument != (call.code == CORVEX_NULL_INPUT)) {
    std::abort();
  }
  if (nullArgument) {
    return;
  }
  std::size_t const key = call.trace.find("\"errorCode\":");
  if (key == std::string::npos || std::atoi(call.trace.c_str() + key + 12) != call.code) {
    std::abort();
  }
}

// Field by field: copies of the record need not keep its padding.
void checkSame(Call const& a, Call const& b) {
  AggregateLocationResult const& x = a.result;
  AggregateLocationResult const& y = b.result;
  if (a.code != b.code || x.timeStamp != y.timeStamp || x.runTimeStamp != y.runTimeStamp ||
      !sameBits(&x.lon, &y.lon, sizeof x.lon) || !sameBits(&x.lat, &y.lat, sizeof x.lat) ||
      !sameBits(&x.confidence, &y.confidence, sizeof x.confidence) ||
      !sameBits(&x.acc, &y.acc, sizeof x.acc) || x.floorId != y.floorId ||
      x.floorAcc != y.floorAcc || x.indoorFlag != y.indoorFlag || a.geoId != b.geoId ||
      a.floorInfo != b.floorInfo || a.trace != b.trace) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Every message is built and written; $CORVEX_FUZZ_LOG_FILE keeps them for a look.
  char const* const logFile = std::getenv("CORVEX_FUZZ_LOG_FILE");
  setenv("CORVEX_LOG_FILE", logFile != nullptr ? logFile : "/dev/null", 1);
  setenv("CORVEX_LOG_LEVEL", "debug", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  corvex_fuzz::FuzzInput input(bytes, size);
  std::uint8_t const flags = input.read<std::uint8_t>();
  int const target = input.read<std::uint16_t>() % (kMaxCount + 1);
  std::vector<std::string> const texts = {input.readText(), input.readText()};
  std::vector<AggregateScanInfo> infos;
  while (!input.exhausted() && infos.size() < static_cast<std::size_t>(kMaxCount)) {
    infos.push_back(readRecord(input, texts));
  }
  int const count = countFor(flags >> 3 & 3, infos, target);
  std::vector<AggregateScanInfo> const before = infos;
  std::vector<std::string> const textsBefore = texts;

  AggregateScanInfo const none{};
  AggregateScanInfo const* records = (flags & 1) != 0 ? nullptr
                                     : infos.empty()  ? &none
                                                      : infos.data();
  bool const nullArgument = (flags & 7) != 0;
  Call const first = locate(records, count, (flags & 2) != 0, (flags & 4) != 0);
  checkWellFormed(first, nullArgument);
  checkSame(first, locate(records, count, (flags & 2) != 0, (flags & 4) != 0));
  bool const recordsKept = infos.empty() || sameBits(infos.data(), before.data(),
                                                     infos.size() * sizeof(AggregateScanInfo));
  if (!recordsKept || texts != textsBefore) {
    std::abort();
  }
  return 0;
}
