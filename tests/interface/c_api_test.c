/* Compiled as C: the public header must be valid C, and the entry point callable from C. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "corvex/aggregate_location.h"
#include "corvex/release_aggregate_location_string.h"

static int failures = 0;

static void check(int condition, const char* what) {
  if (!condition) {
    fprintf(stderr, "c_api_test: FAILED: %s\n", what);
    ++failures;
  }
}

static void callWith(const AggregateScanInfo* infos, int count, int expectedCode) {
  AggregateLocationResult result;
  char* trace = NULL;
  int code = GetAggregateLocation(infos, count, &result, &trace);
  const char* at = trace != NULL ? strstr(trace, "\"errorCode\":") : NULL;
  check(code == expectedCode, "return code");
  check(result.geoId != NULL && result.floorInfo != NULL, "strings returned");
  check(at != NULL && atoi(at + strlen("\"errorCode\":")) == code, "code in the trace log");
  ReleaseAggregateLocationString(result.geoId);
  ReleaseAggregateLocationString(result.floorInfo);
  ReleaseAggregateLocationString(trace);
}

int main(void) {
  AggregateScanInfo infos[3];
  AggregateLocationResult untouched;
  char* trace = NULL;
  int i;

  memset(infos, 0, sizeof infos);
  for (i = 0; i < 3; ++i) {
    infos[i].timeStamp = 1700000000000LL + i * 10000;
    infos[i].rssi = -65 - i;
    infos[i].confidence = 0.9;
    infos[i].lon = 8.5417 + i * 1e-5;
    infos[i].lat = 47.3769;
    infos[i].acc = 10.0f;
    infos[i].locationType = 1;
  }
  infos[2].geoId = "B1";
  infos[2].floorInfo = "F2";
  infos[2].floorId = 2;

  check(GetAggregateLocation(NULL, 3, &untouched, &trace) == CORVEX_NULL_INPUT, "null infos");
  check(trace == NULL, "null infos leaves the trace alone");
  callWith(infos, 0, CORVEX_INPUT_INFO_EMPTY);
  callWith(infos, 3, CORVEX_SUCCESS);
  if (failures == 0) {
    printf("c_api_test: ok\n");
  }
  return failures == 0 ? 0 : 1;
}
