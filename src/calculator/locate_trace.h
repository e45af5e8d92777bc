// What one location call did, for tools that explain or evaluate a call. Filled only when a
// caller passes one to the calculator; plain data, nothing in the library reads it back.
#ifndef CORVEX_CALCULATOR_LOCATE_TRACE_H_
#define CORVEX_CALCULATOR_LOCATE_TRACE_H_

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Vantis::Location {

struct LocateTrace {
  // Where a record of the caller's array left the filter pipeline.
  enum class Fate : int {
    kNotReached = 0,      // the call ended before filtering (too many records, confidence error)
    kAgeCut = 1,          // more than six hours older than the newest record
    kKindTransId = 2,     // another record of its kindTransId was preferred
    kConfidenceCut = 3,   // trimmed for low confidence
    kDynamicCluster = 4,  // outside the cluster chosen by the first (400 m) DBSCAN stage
    kStaticCluster = 5,   // outside the cluster chosen by the second (60 m) DBSCAN stage
    kGnssOffset = 6,      // too far (75 m or more) from the cohesive trusted GNSS records
    kSpreadTrim = 7,      // trimmed to bring the spread of the records down
    kKept = 8,            // survived every stage and went into the solve
  };
  enum class Solver : int { kNone = 0, kWeightedMean = 1, kLeastSquares = 2 };

  // One calculator's answer before the main calculator chose between them.
  struct Outcome {
    bool ran = false;
    double lon = std::numeric_limits<double>::quiet_NaN();  // longitude (degrees)
    double lat = std::numeric_limits<double>::quiet_NaN();  // latitude (degrees)
    float acc = 0.0f;                                       // accuracy radius (metres)
    long long runTimeStamp = 0;                             // newest scan near the result (ms)
    int code = 0;                                           // error code of the result
  };

  // The majority vote that set the returned result's building and floor.
  struct IndoorVote {
    std::vector<std::pair<std::string, int>> buildingCounts;  // candidates per geoId, ascending
    std::vector<std::pair<int, int>> floorCounts;  // candidates per floor of the winning building
    std::string building;                          // winning geoId; empty when no vote
    int floor = 0;                                 // winning floor; 0 when none
    bool applied = false;  // the result took building, floor and floor accuracy
  };

  std::vector<Fate> fates;  // per record of the caller's array, by index
  bool hasReference = false;
  double referenceLon = 0.0;  // origin of the local east/north plane: longitude (degrees)
  double referenceLat = 0.0;  // and latitude (degrees)
  Solver solver = Solver::kNone;
  int solverIterations = 0;   // least squares only
  int solverEvaluations = 0;  // least squares only
  double solverRms = 0.0;     // least squares only: residual RMS (metres)
  Outcome main;               // the filtered and solved path, or its early exit
  Outcome kmeans;             // the k-means fallback; ran is false when it was not needed
  int winner = 0;             // 1: main path, 2: k-means, 0: no choice was made
  IndoorVote indoorVote;
};

}  // namespace Vantis::Location

#endif  // CORVEX_CALCULATOR_LOCATE_TRACE_H_
