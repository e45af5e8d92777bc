/* corvex: releases the strings that GetAggregateLocation hands to its caller. They are
 * allocated with the C++ array allocator, so free() must not release them; a C host calls
 * this function instead (libcorvex_release, shared or static). C++ hosts may use delete[].
 * The header is valid C (C11 or later) and C++. */
#ifndef CORVEX_RELEASE_AGGREGATE_LOCATION_STRING_H_
#define CORVEX_RELEASE_AGGREGATE_LOCATION_STRING_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Releases one string returned by GetAggregateLocation: result.geoId, result.floorInfo or the
 * trace log. A null pointer is ignored. Each string must be released exactly once. */
void ReleaseAggregateLocationString(char* text);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* CORVEX_RELEASE_AGGREGATE_LOCATION_STRING_H_ */
