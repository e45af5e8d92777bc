// Heap use of one call, counted by a replaced operator new: the records' texts must be held
// once, not once per pipeline stage.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "counting_allocator.h"
#include "support/aggregate_call.h"

namespace corvex_test {
namespace {

TEST(PeakHeap, LongTextsOfManyRecordsAreHeldOnce) {
  setenv("CORVEX_LOG_LEVEL", "off", 1);
  constexpr int kRecords = 5000;
  constexpr std::size_t kTextBytes = 64 * 1024;
  // Distinct texts that differ only at their end, all of one building as far as a vote goes.
  std::vector<std::string> texts;
  std::vector<AggregateScanInfo> infos;
  texts.reserve(kRecords);
  for (int i = 0; i < kRecords; ++i) {
    texts.push_back(std::string(kTextBytes - 8, 'g') + std::to_string(10000000 + i));
    infos.push_back(outdoorScan(1700000000000 + i % 7, -60, (i % 13) * 1e-6, (i % 11) * 1e-6));
    infos.back().geoId = texts.back().c_str();
    infos.back().floorInfo = texts.back().c_str();
    infos.back().floorId = 2;
    infos.back().floorAcc = 12;
  }
  corvex_bench::resetAllocationStats();
  AggregateCall const call = callGetAggregateLocation(infos);
  std::size_t const peak = corvex_bench::allocationStats().peakBytes;
  EXPECT_EQ(call.code, CORVEX_SUCCESS);
  // One copy of each text (geoId and floorInfo share their address here) plus records.
  EXPECT_LT(peak, kRecords * kTextBytes + 16 * 1024 * 1024) << peak;
}

}  // namespace
}  // namespace corvex_test
