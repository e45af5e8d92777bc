#ifndef CORVEX_TOOLS_EXPLAIN_MODEL_H_
#define CORVEX_TOOLS_EXPLAIN_MODEL_H_

#include <string>
#include <vector>

#include "calculator/locate_trace.h"
#include "corvex/aggregate_location.h"
#include "platform/log_capture.h"
#include "tools/scan_row.h"

namespace corvex_cli {

// Everything the explain report shows about one location call: plain data, filled from one
// observed library call by ExplainCommand, and by hand in tests.
struct ExplainModel {
  std::string tag;
  std::vector<ScanRow> rows;  // the tag's records, in the order given to the library

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
