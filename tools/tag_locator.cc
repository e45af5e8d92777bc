#include "tools/tag_locator.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "interface/corvex_tag_logger.h"
#include "interface/locate_with_trace.h"
#include "platform/linux_log_sink.h"

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
  Outcome const outcome = call(infos->data(), infos->size(), options.logLevel, nullptr);
  std::vector<std::string> log;
  for (LogCapture::Line const& line : outcome.log) {
    std::string text = LinuxLogSink::formatLine(line.level, CorvexTagLogger::kDomain,
                                                CorvexTagLogger::kTag, line.message);
    text.pop_back();  // the line end
    log.push_back(std::move(text));
  }
  bool const withLog = options.logLevel < Vantis::Location::kPlatformLogOff;
  return LocationPrinter::format(options.format, tag.tag, outcome.code, outcome.result,
                                 outcome.traceLog.get(), withLog ? &log : nullptr);
}

TagLocator::Outcome TagLocator::call(AggregateScanInfo const* infos, size_t count, int logLevel,
                                     Vantis::Location::LocateTrace* observed) {
  // An empty list is not a missing one: the pointer must not be null.
  AggregateScanInfo const none{};
  Outcome outcome;
  char* traceLog = nullptr;
  std::optional<LogCapture> capture;
  if (logLevel != kLogToSink) {
    capture.emplace(logLevel);
  }
  outcome.code = Vantis::Location::locateWithTrace(
      count > 0 ? infos : &none, static_cast<int>(count), &outcome.result, &traceLog, observed);
  outcome.geoId.reset(outcome.result.geoId);
  outcome.floorInfo.reset(outcome.result.floorInfo);
  outcome.traceLog.reset(traceLog);
  if (capture) {
    outcome.log = capture->take();
  }
  return outcome;
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
