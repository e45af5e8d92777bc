// The C example in C++ (C++17): the returned strings are released by unique_ptr<char[]>.
#include <corvex/aggregate_location.h>

#include <cstdio>
#include <memory>
#include <vector>

int main() {
  struct Hearing {
    int64_t timeStamp;  // ms
    int32_t rssi;       // dBm
    double lon, lat;    // degrees
    float acc;          // metres
  };
  std::vector<Hearing> const hearings = {{1718000000000, -70, 8.54170, 47.37690, 8},
                                         {1718000005000, -75, 8.54182, 47.37702, 12},
                                         {1718000009000, -68, 8.54161, 47.37683, 6}};
  std::vector<AggregateScanInfo> scans;
  for (Hearing const& hearing : hearings) {
    AggregateScanInfo scan{};
    scan.timeStamp = hearing.timeStamp;
    scan.rssi = hearing.rssi;
    scan.confidence = 0.9;
    scan.lon = hearing.lon;
    scan.lat = hearing.lat;
    scan.acc = hearing.acc;
    scan.locationType = 1;  // a satellite fix
    scans.push_back(scan);
  }
  AggregateLocationResult where{};
  char* trace = nullptr;
  int const code =
      GetAggregateLocation(scans.data(), static_cast<int>(scans.size()), &where, &trace);
  std::unique_ptr<char[]> const geoId(where.geoId), floorInfo(where.floorInfo), log(trace);
  std::printf("%d %.9f %.9f %.3f %s\n", code, where.lon, where.lat, where.acc, log.get());
  return code;
}
