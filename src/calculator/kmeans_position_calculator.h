#ifndef CORVEX_CALCULATOR_KMEANS_POSITION_CALCULATOR_H_
#define CORVEX_CALCULATOR_KMEANS_POSITION_CALCULATOR_H_

#include <vector>

#include "calculator/position_calculator.h"
#include "geometry/point.h"
#include "model/ble_scan_info_with_confidence.h"
#include "model/tag_best_location.h"

namespace Vantis::Location {

// The older estimator: keeps the newest and most trusted records, groups the phone positions
// (degrees) and returns the k-means centre of the largest group. When it cannot, it falls back
// to the newest phone position. Stateless.
class KmeansPositionCalculator : public PositionCalculator {
 public:
  // Works on pointers to the records; infos is left as it is.
  TagBestLocation getPosition(std::vector<BleScanInfoWithConfidence>& infos) override;

  // The steps below take a list of records, or of pointers to records (what getPosition uses,
  // so that no record is copied).

  // On a list in time order: keeps the newest 100 and drops those below confidence 0.8, except
  // the two newest. Lists of at most 20 records stay as they are.
  template <typename List>
  static void filterLowConfidence(List& infos);
  // On a list in time order: the three newest records with acc up to 100 m, then the others,
  // cut down by confidence when there are more than 20.
  template <typename List>
  static List preprocessOfflineLocation(List const& infos);
  // One point per record, id = position in the list, acc = the phone's accuracy (metres).
  template <typename List>
  static std::vector<Point> convertToPoint(List const& infos);
  // True unless one of the three newest records is among points. Sorts infos newest first.
  template <typename List>
  static bool checkMove(List& infos, std::vector<Point> const& points);
  // The result at core with acc 50 m and both time stamps at timeStamp (ms); result itself,
  // marked failed, when core is the empty Point(0, 0).
  static TagBestLocation convertResult(Point& core, TagBestLocation& result, long long timeStamp);
};

}  // namespace Vantis::Location

#endif  // CORVEX_CALCULATOR_KMEANS_POSITION_CALCULATOR_H_
