#include "batch_locator.h"

#include <time.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "interface/locate_with_trace.h"

namespace corvex_python {

using Vantis::Location::LogCapture;

namespace {

double threadCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

std::string takeText(char* text) {
  std::unique_ptr<char[]> const owned(text);  // the library hands its strings over
  return text != nullptr ? std::string(text) : std::string();
}

}  // namespace

std::vector<GroupOutcome> BatchLocator::locateAll(const int64_t* rows, const int64_t* offsets,
                                                  size_t groups, int jobs) const {
  std::vector<GroupOutcome> outcomes(groups);
  std::atomic<size_t> next{0};
  std::exception_ptr failure;
  std::mutex failureMutex;
  auto const work = [&] {
    try {
      std::vector<AggregateScanInfo> infos;  // reused by every call of this thread
      for (size_t g = next++; g < groups; g = next++) {
        outcomes[g] =
            locate(rows + offsets[g], static_cast<size_t>(offsets[g + 1] - offsets[g]), &infos);
      }
    } catch (...) {
      std::lock_guard<std::mutex> lock(failureMutex);
      failure = std::current_exception();
      next = groups;
    }
  };
  size_t const workers = std::min(groups, static_cast<size_t>(std::max(jobs, 1)));
  std::vector<std::thread> threads;
  for (size_t w = 1; w < workers; ++w) {
    threads.emplace_back(work);
  }
  work();  // the calling thread is one of the workers
  for (std::thread& thread : threads) {
    thread.join();
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
  return outcomes;
}

GroupOutcome BatchLocator::locate(const int64_t* rows, size_t count,
                                  std::vector<AggregateScanInfo>* infos) const {
  infos->resize(count);
  for (size_t i = 0; i < count; ++i) {
    (*infos)[i] = columns_.record(static_cast<size_t>(rows[i]));
  }
  // An empty group is an empty list, not a missing one: the pointer must not be null.
  AggregateScanInfo const none{};
  GroupOutcome outcome;
  char* trace = nullptr;
  {
    std::optional<LogCapture> capture;
    if (captureLevel_ != kNoCapture) {
      capture.emplace(captureLevel_);
    }
    double const start = threadCpuSeconds();
    outcome.code = Vantis::Location::locateWithTrace(
        count > 0 ? infos->data() : &none, static_cast<int>(count), &outcome.result, &trace,
        observe_ ? &outcome.observed : nullptr);
    outcome.librarySeconds = threadCpuSeconds() - start;
    if (capture) {
      outcome.log = capture->take();
    }
  }
  outcome.geoId = takeText(outcome.result.geoId);
  outcome.floorInfo = takeText(outcome.result.floorInfo);
  outcome.result.geoId = nullptr;
  outcome.result.floorInfo = nullptr;
  outcome.traceMissing = trace == nullptr;
  outcome.trace = takeText(trace);
  return outcome;
}

}  // namespace corvex_python
