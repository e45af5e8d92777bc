#include "batch_locator.h"

#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "tools/worker_pool.h"

namespace corvex_python {

namespace {

double threadCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

}  // namespace

std::vector<GroupOutcome> BatchLocator::locateAll(const int64_t* rows, const int64_t* offsets,
                                                  size_t groups, int jobs) const {
  std::unique_ptr<AggregateScanInfo[]> const ordered =
      inGroupOrder(rows, groups > 0 ? static_cast<size_t>(offsets[groups]) : 0);
  std::vector<GroupOutcome> outcomes(groups);
  std::atomic<size_t> next{0};
  auto const work = [&] {
    for (size_t g = next++; g < groups; g = next++) {
      outcomes[g] =
          locate(ordered.get() + offsets[g], static_cast<size_t>(offsets[g + 1] - offsets[g]));
    }
  };
  corvex_cli::WorkerPool pool(jobs);  // declared after outcomes: joins before they go
  for (int worker = 0; worker < std::max(jobs, 1); ++worker) {
    pool.submit(work);
  }
  while (!pool.waitFor(std::chrono::seconds(1))) {
  }
  return outcomes;
}

std::unique_ptr<AggregateScanInfo[]> BatchLocator::inGroupOrder(const int64_t* rows,
                                                                size_t count) const {
  // Reading the columns row after row and putting each record where its group wants it
  // touches far fewer cache lines than fetching a group's scattered rows from every column.
  constexpr size_t kUnused = SIZE_MAX;
  std::vector<size_t> place(columns_.rows, kUnused);
  for (size_t i = 0; i < count; ++i) {
    size_t& slot = place[static_cast<size_t>(rows[i])];
    if (slot != kUnused) {
      throw std::invalid_argument("row " + std::to_string(rows[i]) + " is in two groups");
    }
    slot = i;
  }
  // Left uninitialised: every slot is written once below, and zeroing first would cost as much.
  std::unique_ptr<AggregateScanInfo[]> ordered(new AggregateScanInfo[count]);
  for (size_t row = 0; row < columns_.rows; ++row) {
    if (place[row] != kUnused) {
      ordered[place[row]] = columns_.record(row);
    }
  }
  return ordered;
}

GroupOutcome BatchLocator::locate(AggregateScanInfo const* infos, size_t count) const {
  GroupOutcome outcome;
  double const start = threadCpuSeconds();
  outcome.call = corvex_cli::TagLocator::call(infos, count, captureLevel_,
                                              observe_ ? &outcome.observed : nullptr);
  outcome.librarySeconds = threadCpuSeconds() - start;
  return outcome;
}

}  // namespace corvex_python
