#ifndef CORVEX_TOOLS_EXPLAIN_MODEL_H_
#define CORVEX_TOOLS_EXPLAIN_MODEL_H_

#include <string>
#include <vector>

#include "calculator/locate_trace.h"
#include "corvex/aggregate_location.h"
#include "platform/log_capture.h"

namespace corvex_cli {

// Everything the explain report shows about one location call: plain data, filled from one
// observed library call by ExplainCommand, and by hand in tests.
struct ExplainModel {
  std::string tag;
  // The tag's records as given to the library; their strings belong to the reader's storage,
  // which outlives the model.
  std::vector<AggregateScanInfo> records;

  int code = 0;                      // the call's return value
  AggregateLocationResult result{};  // its two strings are geoId and floorInfo below
  std::string geoId;
  std::string floorInfo;
  std::string traceLog;
  std::vector<Vantis::Location::LogCapture::Line> log;  // the call's lines, in order
  Vantis::Location::LocateTrace trace;                  // its fates: one per row
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_EXPLAIN_MODEL_H_
