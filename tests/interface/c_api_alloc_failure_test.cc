// Memory exhaustion at every allocation of a call: the entry point must answer with
// UNKNOWN_ERROR, throw nothing and keep nothing. A program of its own, because it replaces the
// global allocator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "corvex/aggregate_location.h"

// The replacement pair below is malloc and free underneath, which GCC cannot see as a pair.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace {

thread_local long allocationsUntilFailure = -1;  // -1: never fail
thread_local bool allocationFailed = false;
thread_local bool failOnce = false;  // false: memory stays exhausted after the first failure

}  // namespace

// Every form of new and delete is replaced, so that each pair matches whatever the sanitizer
// runtime would otherwise provide. Only the throwing forms fail on purpose; the library may
// handle a failed nothrow allocation itself (a stable sort then sorts in place).
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size) {
  if (allocationsUntilFailure == 0) {
    allocationFailed = true;
    allocationsUntilFailure = failOnce ? -1 : 0;
    throw std::bad_alloc();
  }
  if (allocationsUntilFailure > 0) {
    --allocationsUntilFailure;
  }
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
  return operator new(size, std::nothrow);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::nothrow_t const&) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::nothrow_t const&) noexcept { std::free(memory); }

namespace {

TEST(GetAggregateLocation, AnswersMemoryExhaustionWithUnknownError) {
  std::vector<AggregateScanInfo> infos(6);
  for (std::size_t i = 0; i < infos.size(); ++i) {
    infos[i].timeStamp = 1700000000000 + static_cast<long long>(i) * 30000;
    infos[i].rssi = -60 - static_cast<int>(i);
    infos[i].confidence = 0.9;
    infos[i].lon = 8.5417 + static_cast<double>(i) * 1e-5;
    infos[i].lat = 47.3769;
    infos[i].locationType = 1;
    infos[i].geoId = i % 2 == 0 ? "a building identifier longer than small strings" : nullptr;
    infos[i].floorInfo = "a floor description longer than small strings";
  }
  // A single failed allocation leaves memory for the fallback result; exhaustion for good
  // leaves the three strings null.
  for (bool once : {true, false}) {
    failOnce = once;
    int failedCalls = 0;
    for (long failAt = 0; failedCalls == failAt; ++failAt) {  // until a call succeeds
      AggregateLocationResult result;
      char sentinel = 's';
      char* trace = &sentinel;  // every outcome must overwrite it
      allocationFailed = false;
      allocationsUntilFailure = failAt;
      int const code =
          GetAggregateLocation(infos.data(), static_cast<int>(infos.size()), &result, &trace);
      allocationsUntilFailure = -1;
      if (allocationFailed) {
        ++failedCalls;
        EXPECT_EQ(code, CORVEX_UNKNOWN_ERROR) << "failing allocation " << failAt;
        if (once) {
          EXPECT_STREQ(
              trace,
              R"({"version":"V2.0","errorCode":-1,"errorMsg":"Unknown error","infoCount":[]})");
          EXPECT_STREQ(result.geoId, "");
          EXPECT_STREQ(result.floorInfo, "");
        } else {
          EXPECT_EQ(trace, nullptr);
          EXPECT_EQ(result.geoId, nullptr);
          EXPECT_EQ(result.floorInfo, nullptr);
        }
      } else {
        EXPECT_NE(code, CORVEX_UNKNOWN_ERROR);  // every allocation of the call has failed once
      }
      delete[] result.geoId;
      delete[] result.floorInfo;
      delete[] trace;
    }
    EXPECT_GT(failedCalls, 3) << "once " << once;
  }
}

}  // namespace
