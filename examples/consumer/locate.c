/* Locates a tag from three scans and releases what the library returned. */
#include <corvex/aggregate_location.h>
#include <corvex/release_aggregate_location_string.h>
#include <stdio.h>

int main(void) {
  AggregateScanInfo scans[3] = {
      {.timeStamp = 1718000000000, .rssi = -70, .lon = 8.54170, .lat = 47.37690, .acc = 8},
      {.timeStamp = 1718000005000, .rssi = -75, .lon = 8.54182, .lat = 47.37702, .acc = 12},
      {.timeStamp = 1718000009000, .rssi = -68, .lon = 8.54161, .lat = 47.37683, .acc = 6}};
  for (int i = 0; i < 3; ++i) {
    scans[i].confidence = 0.9;
    scans[i].locationType = 1; /* a satellite fix */
  }
  AggregateLocationResult where;
  char* trace;
  int code = GetAggregateLocation(scans, 3, &where, &trace);
  printf("%d %.9f %.9f %.3f %s\n", code, where.lon, where.lat, where.acc, trace);
  ReleaseAggregateLocationString(where.geoId);
  ReleaseAggregateLocationString(where.floorInfo);
  ReleaseAggregateLocationString(trace);
  return code;
}
