// A/B check driver: loads one build of libcorvex.so and prints, call by call over generated
// inputs of every consistently ordered family, everything the caller can observe: the return
// code, each result field (doubles and floats in exact hexadecimal), the strings, the trace
// log and the log lines at debug level. Two builds agree when their outputs are identical
// (scripts/ab_compare.sh compares them).
//
//   corvex_ab_driver LIBRARY [CALLS_PER_FAMILY]
#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "corvex/aggregate_location.h"
#include "loaded_entry_point.h"
#include "scan_families.h"

namespace {

// Sizes cycle through small and large lists, the limits included.
constexpr int kSizes[] = {1, 2, 3, 4, 7, 12, 20, 33, 60, 101, 250, 700, 1000, 5000, 5001, 0};

class LogTail {
 public:
  explicit LogTail(std::string path) : path_(std::move(path)) {}
  // Lines written since the last call.
  std::string next() {
    std::ifstream file(path_, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset_));
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    offset_ += text.size();
    return text;
  }

 private:
  std::string path_;
  std::size_t offset_ = 0;
};

void printCall(int code, AggregateLocationResult const& result, char const* trace) {
  std::printf("code %d ts %lld run %lld lon %a lat %a conf %a acc %a\n", code,
              static_cast<long long>(result.timeStamp), static_cast<long long>(result.runTimeStamp),
              result.lon, result.lat, result.confidence, static_cast<double>(result.acc));
  std::printf("floor %d floorAcc %d indoor %d geoId [%s] floorInfo [%s]\ntrace %s\n",
              result.floorId, result.floorAcc, result.indoorFlag, result.geoId, result.floorInfo,
              trace);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s LIBRARY [CALLS_PER_FAMILY]\n", argv[0]);
    return 2;
  }
  int const callsPerFamily = argc > 2 ? std::atoi(argv[2]) : 320;
  char logPath[] = "/tmp/corvex-ab-log-XXXXXX";
  int const logFd = mkstemp(logPath);
  if (logFd < 0) {
    std::perror("mkstemp");
    return 2;
  }
  // The library reads both once, at its first log line.
  setenv("CORVEX_LOG_FILE", logPath, 1);
  setenv("CORVEX_LOG_LEVEL", "debug", 1);
  corvex_bench::Locate const locate = corvex_bench::loadEntryPoint(argv[1]);
  if (locate == nullptr) {
    std::fprintf(stderr, "cannot load GetAggregateLocation from %s: %s\n", argv[1], dlerror());
    return 2;
  }
  LogTail log(logPath);
  for (corvex_bench::ScanFamily const& family : corvex_bench::scanFamilies()) {
    if (!family.orderingConsistent) {
      continue;
    }
    for (int call = 0; call < callsPerFamily; ++call) {
      int const size = kSizes[call % std::size(kSizes)];
      std::vector<AggregateScanInfo> const infos =
          corvex_bench::makeScans(family, size, static_cast<std::uint64_t>(call));
      AggregateScanInfo const none{};
      AggregateLocationResult result{};
      char* trace = nullptr;
      int const code = locate(infos.empty() ? &none : infos.data(), size, &result, &trace);
      std::printf("== %s call %d size %d\n", family.name, call, size);
      printCall(code, result, trace);
      std::fputs(log.next().c_str(), stdout);
      corvex_bench::releaseStrings(result, trace);
    }
  }
  unlink(logPath);
  return 0;
}
