#include "batch_locator.h"

#include <time.h>

#include <chrono>

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
  std::vector<GroupOutcome> outcomes(groups);
  corvex_cli::WorkerPool pool(jobs);  // declared after outcomes: joins before they go
  for (size_t g = 0; g < groups; ++g) {
    pool.submit([this, &outcomes, rows, offsets, g] {
      outcomes[g] = locate(rows + offsets[g], static_cast<size_t>(offsets[g + 1] - offsets[g]));
    });
  }
  while (!pool.waitFor(std::chrono::seconds(1))) {
  }
  return outcomes;
}

GroupOutcome BatchLocator::locate(const int64_t* rows, size_t count) const {
  std::vector<AggregateScanInfo> infos(count);
  for (size_t i = 0; i < count; ++i) {
    infos[i] = columns_.record(static_cast<size_t>(rows[i]));
  }
  GroupOutcome outcome;
  double const start = threadCpuSeconds();
  outcome.call = corvex_cli::TagLocator::call(infos.data(), count, captureLevel_,
                                              observe_ ? &outcome.observed : nullptr);
  outcome.librarySeconds = threadCpuSeconds() - start;
  return outcome;
}

}  // namespace corvex_python
