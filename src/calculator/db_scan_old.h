#ifndef CORVEX_CALCULATOR_DB_SCAN_OLD_H_
#define CORVEX_CALCULATOR_DB_SCAN_OLD_H_

#include <vector>

#include "geometry/point.h"

namespace Vantis::Location {

// The k-means calculator's own density grouping of phone positions, after DBSCAN (Ester,
// Kriegel, Sander and Xu, KDD 1996) but simplified: every unclassed point starts a group of its
// neighbours, and groups that share a point merge in one pass. Distances are whole metres
// between points in degrees. minPts only marks key points; it never removes a point.
class DBScanOld {
 public:
  // The largest group (the earliest of equals), or an empty list. Marks points classed.
  // eps (metres).
  static std::vector<Point> getFilteredPointList(std::vector<Point>& points, double eps,
                                                 int minPts);
  // Every group, emptied (merged) ones included. eps (metres).
  static std::vector<std::vector<Point>> applyDbScanInner(std::vector<Point>& points, double eps,
                                                          int minPts);
  // The points closer than eps (metres) to p, each once; they are marked classed in points.
  static std::vector<Point> getKeyPoint(std::vector<Point>& points, Point& p, double eps,
                                        int minPts);
  // Appends the points of b missing from a when the two share a point; true if they did.
  static bool mergeList(std::vector<Point>& a, std::vector<Point> const& b);
  static void setListClassed(std::vector<Point>& list);

 private:
  // getKeyPoint; when no two points share an id no point can repeat, and none is looked for.
  static std::vector<Point> neighbourhoodOf(std::vector<Point>& points, Point& p, double eps,
                                            int minPts, bool idsDistinct);
};

}  // namespace Vantis::Location

#endif  // CORVEX_CALCULATOR_DB_SCAN_OLD_H_
