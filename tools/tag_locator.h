#ifndef CORVEX_TOOLS_TAG_LOCATOR_H_
#define CORVEX_TOOLS_TAG_LOCATOR_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "platform/log_capture.h"
#include "tools/location_printer.h"
#include "tools/tag_scans.h"

namespace Vantis::Location {
struct LocateTrace;
}

namespace corvex_cli {

// Locates one tag with one library call and formats the answer.
class TagLocator {
 public:
  struct Options {
    LocationPrinter::Format format = LocationPrinter::Format::kJsonLines;
    int logLevel = 7;  // lowest level of the call's log lines to print (3 debug to 6 error); 7 none
    size_t newest = 0;  // when above 0, only the newest this many records of a tag are used
  };

  // What one library call gave. The library hands its strings over: result.geoId and
  // result.floorInfo point into geoId and floorInfo, which own them.
  struct Outcome {
    int code = 0;
    AggregateLocationResult result{};
    std::unique_ptr<char[]> geoId;
    std::unique_ptr<char[]> floorInfo;
    std::unique_ptr<char[]> traceLog;  // null when the library could not make one
    std::vector<Vantis::Location::LogCapture::Line> log;  // the call's lines, in order
  };
  // For call(): the call's lines go to the library's own sink, not into the outcome.
  static constexpr int kLogToSink = -1;

  // Safe to call from several threads at once. The call's log lines go nowhere but into the
  // answer.
  static std::string locate(TagScans const& tag, Options const& options);
  // One library call over count records (0 is allowed). logLevel: lowest level of the lines
  // kept in the outcome (3 debug to 7 none), or kLogToSink. observed: when not null, filled
  // with what the call did. Safe to call from several threads at once.
  static Outcome call(AggregateScanInfo const* infos, size_t count, int logLevel,
                      Vantis::Location::LocateTrace* observed);
  // The newest count records (greatest timeStamp; among equal ones the later in input order),
  // in input order.
  static std::vector<AggregateScanInfo> newest(std::vector<AggregateScanInfo> const& infos,
                                               size_t count);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_TAG_LOCATOR_H_
