#ifndef CORVEX_TOOLS_EXPLAIN_MODEL_H_
#define CORVEX_TOOLS_EXPLAIN_MODEL_H_

#include <string>
#include <utility>
#include <vector>

#include "corvex/aggregate_location.h"
#include "platform/log_capture.h"
#include "tools/scan_row.h"

namespace corvex_cli {

// Everything the explain report shows about one location call: plain data, filled from the
// library's call observer by ExplainCommand and by hand in tests.
struct ExplainModel {
  // Where a record left the filter pipeline, in pipeline order.
  enum class Stage {
    kTooOld,         // more than six hours older than the newest record
    kKindTransId,    // another record of the same transmission kind was preferred
    kLowConfidence,  // the confidence trim
    kWideCluster,    // outside the chosen 400 m cluster
    kNearCluster,    // outside the chosen 60 m cluster
    kGnssAnchor,     // too far from the mean of the trusted satellite fixes
    kSpread,         // dropped to bring the spread down
    kKept,           // survived every stage and took part in the fit
    kNotReached,     // the call ended before filtering
  };

  // A position in degrees with its accuracy (metres), error code and run time stamp (ms).
  struct Estimate {
    double lon = 0;
    double lat = 0;
    float acc = 0;
    int code = 0;
    long long runTimeStamp = 0;
  };

  // How many indoor candidates named one building or floor.
  struct Vote {
    std::string value;
    int count = 0;
  };

  std::string tag;
  std::vector<ScanRow> rows;  // the tag's records, in input order
  std::vector<Stage> stages;  // one per row

  int code = 0;                      // the call's return value
  AggregateLocationResult result{};  // its strings are geoId and floorInfo below
  std::string geoId;
  std::string floorInfo;
  std::string traceLog;
  std::vector<Vantis::Location::LogCapture::Line> log;  // the call's lines, in order

  bool mainPathSolved = false;  // the least-squares path produced a position
  Estimate mainPath;
  bool kmeansRan = false;
  Estimate kmeans;
  int winner = 0;  // 1: least-squares path, 2: k-means, 0: no choice was made
  std::vector<std::pair<std::string, std::string>> fit;  // solver facts, label and value

  std::vector<Vote> buildingVotes;  // empty when no record qualified for the indoor vote
  std::vector<Vote> floorVotes;     // floors within the winning building
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_EXPLAIN_MODEL_H_
