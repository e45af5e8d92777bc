/* corvex: estimates where a Bluetooth Low Energy tag is from the scan records of the phones
 * that heard it. This is the library's whole public interface: one C function and its two
 * records. The header is valid C (C11 or later) and C++.
 *
 * Conventions
 *
 *  - Units: longitude and latitude in degrees (WGS84), accuracies in metres, time stamps in
 *    milliseconds (signed 64-bit, any epoch the caller uses consistently), RSSI in dBm.
 *
 *  - Memory: the caller owns the input array and the output record. A call that returns
 *    anything other than CORVEX_NULL_INPUT stores three new NUL-terminated strings: geoId and
 *    floorInfo of the output record, and the trace log. Each is allocated with the C++ array
 *    allocator (new char[length + 1]) and becomes the caller's; C++ callers release each one
 *    with delete[], C callers with ReleaseAggregateLocationString
 *    (corvex/release_aggregate_location_string.h, libcorvex_release); free() is not a valid
 *    way to release them. An empty text is a one-byte array holding only NUL. The
 *    pointers are null only when memory ran out (CORVEX_UNKNOWN_ERROR; nothing to release).
 *    The library keeps no reference to the input after the call and never writes to it.
 *
 *  - Layout: both records are part of the binary interface (little-endian, 64-bit pointers,
 *    natural alignment); the assertions below pin every field offset.
 *
 *  - Thread safety: the library holds no state between calls, so calls may run on any number
 *    of threads at once, each with its own input and output buffers. Diagnostics of all
 *    threads go to one process-wide logger.
 *
 *  - Errors: the return value. Nothing is thrown across this interface.
 */
#ifndef CORVEX_AGGREGATE_LOCATION_H_
#define CORVEX_AGGREGATE_LOCATION_H_

#include <stddef.h>
#include <stdint.h>

/* Version of the library (semantic versioning: the shared library's SONAME carries the major
 * number). The build reads the project version from these three lines. */
#define CORVEX_VERSION_MAJOR 0
#define CORVEX_VERSION_MINOR 1
#define CORVEX_VERSION_PATCH 0
#define CORVEX_VERSION_TEXT_(major, minor, patch) #major "." #minor "." #patch
#define CORVEX_VERSION_TEXT(major, minor, patch) CORVEX_VERSION_TEXT_(major, minor, patch)
/* "MAJOR.MINOR.PATCH" */
#define CORVEX_VERSION_STRING \
  CORVEX_VERSION_TEXT(CORVEX_VERSION_MAJOR, CORVEX_VERSION_MINOR, CORVEX_VERSION_PATCH)

#ifdef __cplusplus
extern "C" {
#endif

/* Return codes of GetAggregateLocation. The result's error message travels in the trace log. */
enum {
  CORVEX_SUCCESS = 0,
  CORVEX_UNKNOWN_ERROR = -1,
  CORVEX_INPUT_INFO_EMPTY = 500010,
  CORVEX_INPUT_INFO_OVER_LIMIT = 500020, /* 5001 records or more */
  CORVEX_RSSI_OVER_LIMIT = 500030,
  CORVEX_FILTERED_ALL_INFOS = 500050,
  CORVEX_ALGORITHM_RUNNING_FAILED = 500060,
  CORVEX_CONFIDENCE_ERROR = 500070,
  CORVEX_LOG_FUN_ERROR = 500080, /* defined for completeness; never returned */
  CORVEX_TAG_IS_MOVED = 500090,
  CORVEX_NULL_INPUT = 500100 /* infos was null; nothing was written */
};

/* One hearing of the tag by one phone. 88 bytes; element i starts at byte 88 * i. */
typedef struct AggregateScanInfo {
  int64_t timeStamp;          /* scan time (ms) */
  int32_t rssi;               /* received signal strength (dBm); 0 means unknown */
  double confidence;          /* the reporter's trust in this hearing, usually 0 to 1 */
  double lon;                 /* phone longitude (degrees) */
  double lat;                 /* phone latitude (degrees) */
  float acc;                  /* phone fix accuracy (metres) */
  int32_t reserved[2];        /* never read */
  int32_t locationType;       /* kind of the phone's fix; 1 is a satellite (GNSS) fix */
  int32_t locationSourceType; /* source of the phone's fix */
  int32_t indoorFlag;         /* indoor indication; read only when geoId is not null */
  int32_t floorId;            /* floor number; read only when geoId is not null */
  int32_t floorAcc;           /* floor accuracy; read only when geoId is not null */
  const char* floorInfo;      /* floor text; read only when geoId is not null (null reads as "") */
  const char* geoId;          /* building identifier; null: the record has no indoor information */
} AggregateScanInfo;

/* The estimated tag location, written by GetAggregateLocation. 80 bytes. */
typedef struct AggregateLocationResult {
  int64_t timeStamp;    /* time the position refers to (ms) */
  int64_t runTimeStamp; /* newest scan near the position (ms) */
  double lon;           /* tag longitude (degrees) */
  double lat;           /* tag latitude (degrees) */
  double confidence;    /* confidence of the estimate */
  float acc;            /* accuracy radius (metres) */
  char* geoId;          /* building identifier, "" when none; owned by the caller */
  char* floorInfo;      /* floor text, "" when none; owned by the caller */
  int32_t floorId;      /* floor number; -100 when unknown */
  int32_t floorAcc;     /* floor accuracy */
  int32_t indoorFlag;   /* indoor indication */
} AggregateLocationResult;

#ifdef __cplusplus
#define CORVEX_STATIC_ASSERT(condition, message) static_assert(condition, message)
#else
#define CORVEX_STATIC_ASSERT(condition, message) _Static_assert(condition, message)
#endif

CORVEX_STATIC_ASSERT(sizeof(AggregateScanInfo) == 88, "AggregateScanInfo is 88 bytes");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, timeStamp) == 0, "timeStamp at 0");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, rssi) == 8, "rssi at 8");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, confidence) == 16, "confidence at 16");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, lon) == 24, "lon at 24");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, lat) == 32, "lat at 32");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, acc) == 40, "acc at 40");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, reserved) == 44, "reserved at 44");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, locationType) == 52, "locationType at 52");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, locationSourceType) == 56,
                     "locationSourceType at 56");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, indoorFlag) == 60, "indoorFlag at 60");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, floorId) == 64, "floorId at 64");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, floorAcc) == 68, "floorAcc at 68");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, floorInfo) == 72, "floorInfo at 72");
CORVEX_STATIC_ASSERT(offsetof(AggregateScanInfo, geoId) == 80, "geoId at 80");

CORVEX_STATIC_ASSERT(sizeof(AggregateLocationResult) == 80, "AggregateLocationResult is 80 bytes");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, timeStamp) == 0, "timeStamp at 0");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, runTimeStamp) == 8, "runTimeStamp at 8");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, lon) == 16, "lon at 16");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, lat) == 24, "lat at 24");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, confidence) == 32, "confidence at 32");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, acc) == 40, "acc at 40");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, geoId) == 48, "geoId at 48");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, floorInfo) == 56, "floorInfo at 56");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, floorId) == 64, "floorId at 64");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, floorAcc) == 68, "floorAcc at 68");
CORVEX_STATIC_ASSERT(offsetof(AggregateLocationResult, indoorFlag) == 72, "indoorFlag at 72");

/* Estimates the tag's location from count records (zero or less: an empty list, nothing is
 * read). result must point to one writable record and traceLog to a writable pointer.
 *
 * Returns CORVEX_NULL_INPUT when infos is null, leaving result and *traceLog untouched.
 * Otherwise it always fills *result and stores a one-line JSON trace in *traceLog, e.g.
 *   {"version":"V2.0","errorCode":0,"errorMsg":"Success","infoCount":[12, 10, 8]}
 * (infoCount: records left after each filter stage), and returns the result's code:
 * CORVEX_SUCCESS or another code of the enum above. On a failed estimate the record holds
 * the values of the fallback result (typically the newest record's position). */
int GetAggregateLocation(const AggregateScanInfo* infos, int count, AggregateLocationResult* result,
                         char** traceLog);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* CORVEX_AGGREGATE_LOCATION_H_ */
