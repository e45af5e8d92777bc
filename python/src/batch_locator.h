#ifndef CORVEX_PYTHON_BATCH_LOCATOR_H_
#define CORVEX_PYTHON_BATCH_LOCATOR_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "calculator/locate_trace.h"
#include "scan_columns.h"
#include "tools/tag_locator.h"

namespace corvex_python {

// What one library call gave for one group of rows.
struct GroupOutcome {
  corvex_cli::TagLocator::Outcome call;
  double librarySeconds = 0;               // CPU time of the library call alone (s)
  Vantis::Location::LocateTrace observed;  // what the call did; filled when observing
};

// Runs GetAggregateLocation once per group of rows, on several threads. Needs no interpreter,
// so callers release the GIL around locateAll.
class BatchLocator {
 public:
  // captureLevel: the lowest log level (3 debug to 7 off) kept with each outcome; kNoCapture
  // leaves the lines to the library's own sink. observe: fill each outcome's observed trace.
  static constexpr int kNoCapture = corvex_cli::TagLocator::kLogToSink;
  BatchLocator(ScanColumns const& columns, int captureLevel, bool observe)
      : columns_(columns), captureLevel_(captureLevel), observe_(observe) {}

  // Group g holds the rows rows[offsets[g]] to rows[offsets[g + 1] - 1], in that order; a row
  // is in one group at most (std::invalid_argument otherwise). jobs (at least 1) calls run at
  // once; outcomes come back in group order. Needs about 100 bytes per row of working memory.
  std::vector<GroupOutcome> locateAll(const int64_t* rows, const int64_t* offsets, size_t groups,
                                      int jobs) const;

 private:
  // The records of rows[0] to rows[count - 1], in that order.
  std::unique_ptr<AggregateScanInfo[]> inGroupOrder(const int64_t* rows, size_t count) const;
  GroupOutcome locate(AggregateScanInfo const* infos, size_t count) const;

  ScanColumns const& columns_;
  int captureLevel_;
  bool observe_;
};

}  // namespace corvex_python

#endif  // CORVEX_PYTHON_BATCH_LOCATOR_H_
