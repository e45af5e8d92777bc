#include "tools/tag_locator.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "tools/location_printer.h"

namespace corvex_cli {

std::string TagLocator::locate(TagScans const& tag) {
  std::vector<AggregateScanInfo> const infos = tag.toScanInfos();
  AggregateLocationResult result{};
  char* traceLog = nullptr;
  // A tag has at least one record, so infos.data() is never null.
  int const code =
      GetAggregateLocation(infos.data(), static_cast<int>(infos.size()), &result, &traceLog);
  // The library hands the three strings over; they are released with delete[].
  std::unique_ptr<char[]> const geoId(result.geoId);
  std::unique_ptr<char[]> const floorInfo(result.floorInfo);
  std::unique_ptr<char[]> const trace(traceLog);
  return LocationPrinter::format(tag.tag, code, result, traceLog);
}

std::vector<std::string> TagLocator::locateAll(std::vector<TagScans> const& tags, int jobs) {
  std::vector<std::string> lines(tags.size());
  std::atomic<size_t> next{0};
  std::exception_ptr failure;
  std::mutex failureMutex;
  auto const work = [&] {
    try {
      for (size_t i = next++; i < tags.size(); i = next++) {
        lines[i] = locate(tags[i]);
      }
    } catch (...) {
      std::lock_guard<std::mutex> lock(failureMutex);
      failure = std::current_exception();
    }
  };
  size_t const workers = std::min(tags.size(), static_cast<size_t>(std::max(jobs, 1)));
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
  return lines;
}

}  // namespace corvex_cli
