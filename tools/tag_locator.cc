#include "tools/tag_locator.h"

#include <algorithm>
#include <memory>
#include <numeric>

#include "interface/corvex_tag_logger.h"
#include "platform/linux_log_sink.h"
#include "platform/log_capture.h"

namespace corvex_cli {

using Vantis::Location::CorvexTagLogger;
using Vantis::Location::LinuxLogSink;
using Vantis::Location::LogCapture;

std::string TagLocator::locate(TagScans const& tag, Options const& options) {
  std::vector<AggregateScanInfo> kept;
  std::vector<AggregateScanInfo> const* infos = &tag.infos;
  if (options.newest > 0 && tag.infos.size() > options.newest) {
    kept = newest(tag.infos, options.newest);
    infos = &kept;
  }
  AggregateLocationResult result{};
  char* traceLog = nullptr;
  LogCapture capture(options.logLevel);
  // A tag has at least one record, so the data pointer is never null.
  int const code =
      GetAggregateLocation(infos->data(), static_cast<int>(infos->size()), &result, &traceLog);
  // The library hands the three strings over; they are released with delete[].
  std::unique_ptr<char[]> const geoId(result.geoId);
  std::unique_ptr<char[]> const floorInfo(result.floorInfo);
  std::unique_ptr<char[]> const trace(traceLog);
  std::vector<std::string> log;
  for (LogCapture::Line const& line : capture.lines()) {
    std::string text = LinuxLogSink::formatLine(line.level, CorvexTagLogger::kDomain,
                                                CorvexTagLogger::kTag, line.message);
    text.pop_back();  // the line end
    log.push_back(std::move(text));
  }
  bool const withLog = options.logLevel < Vantis::Location::kPlatformLogOff;
  return LocationPrinter::format(options.format, tag.tag, code, result, traceLog,
                                 withLog ? &log : nullptr);
}

std::vector<AggregateScanInfo> TagLocator::newest(std::vector<AggregateScanInfo> const& infos,
                                                  size_t count) {
  std::vector<size_t> order(infos.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&infos](size_t a, size_t b) {
    return infos[a].timeStamp < infos[b].timeStamp;
  });
  order.erase(order.begin(),
              order.end() - static_cast<std::ptrdiff_t>(std::min(count, order.size())));
  std::sort(order.begin(), order.end());
  std::vector<AggregateScanInfo> kept;
  kept.reserve(order.size());
  for (size_t index : order) {
    kept.push_back(infos[index]);
  }
  return kept;
}

}  // namespace corvex_cli
