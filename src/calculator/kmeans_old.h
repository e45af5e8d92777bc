#ifndef CORVEX_CALCULATOR_KMEANS_OLD_H_
#define CORVEX_CALCULATOR_KMEANS_OLD_H_

#include <vector>

#include "geometry/point.h"

namespace Vantis::Location {

// The k-means calculator's centre finder, after Lloyd's k-means (Lloyd, IEEE Trans. Inf.
// Theory 28(2), 1982) with two twists: centre 0 starts at the most accurate point, and each
// update keeps the old centre as one extra sample. points[0] is overwritten with centre 0's
// position while it runs, so callers pass a list they no longer need as it was.
class KmeansOld {
 public:
  // Centre 0, or Point(0, 0) when points is empty or k does not fit.
  static Point getCorePoint(std::vector<Point>& points, int k, int maxIter);
  static Point applyKmeansInner(std::vector<Point>& points, int k, int maxIter);
  // The centres after maxIter rounds; unchanged when points holds fewer than k points.
  static std::vector<Point> kmeans(std::vector<Point>& points, std::vector<Point>& centers, int k,
                                   int maxIter);
  // assign[i] = index of the centre nearest to points[i] (metres); the earliest of equals.
  static void findCenter(std::vector<Point> const& points, std::vector<Point> const& centers,
                         std::vector<int>& assign, int i);
};

}  // namespace Vantis::Location

#endif  // CORVEX_CALCULATOR_KMEANS_OLD_H_
