// Records/s of the tool's CSV and JSON readers alone (no library calls), on generated records
// shaped like bench/make_tool_input.py's.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "tools/input_buffer.h"
#include "tools/scan_stream_reader.h"

namespace {

constexpr int kRecords = 20000;

class Counter : public corvex_cli::ScanConsumer {
 public:
  bool add(corvex_cli::ScanRecord const& record, std::string*) override {
    sum += record.info.lon;
    return true;
  }
  double sum = 0;
};

std::string input(bool json) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> digits(0, 9999999);
  std::string text = json ? "[\n"
                          : "tag,timeStamp,rssi,confidence,lon,lat,acc,locationType,"
                            "locationSourceType,indoorFlag,floorId,floorAcc,floorInfo,geoId\n";
  for (int i = 0; i < kRecords; ++i) {
    std::string const tag = "tag-" + std::to_string(i / 2000);
    std::string const time = std::to_string(1718092800000LL + i * 4321);
    std::string const lon = "8." + std::to_string(digits(random));
    std::string const lat = "47." + std::to_string(digits(random));
    if (json) {
      text += std::string(i > 0 ? ",\n" : "") + R"({"tag":")" + tag + R"(","timeStamp":)" + time +
              R"(,"rssi":-87,"confidence":0.83,"lon":)" + lon + R"(,"lat":)" + lat +
              R"(,"acc":9.4,"locationType":1,"locationSourceType":1})";
    } else {
      text += tag + "," + time + ",-87,0.83," + lon + "," + lat + ",9.4,1,1,,,,,\n";
    }
  }
  return text + (json ? "\n]\n" : "");
}

void readAll(benchmark::State& state, bool json) {
  std::string const text = input(json);
  for (auto _ : state) {
    corvex_cli::InputBuffer buffer(text, 1 << 18, "bench");
    Counter counter;
    std::string error;
    if (!corvex_cli::ScanStreamReader::read(&buffer, false, &counter, &error)) {
      state.SkipWithError(error.c_str());
    }
    benchmark::DoNotOptimize(counter.sum);
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void BM_ReadCsv(benchmark::State& state) { readAll(state, false); }
void BM_ReadJson(benchmark::State& state) { readAll(state, true); }
BENCHMARK(BM_ReadCsv);
BENCHMARK(BM_ReadJson);

}  // namespace
