#ifndef CORVEX_FILTER_NEIGHBOUR_GRID_H_
#define CORVEX_FILTER_NEIGHBOUR_GRID_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Vantis::Location {

// Uniform-grid bucketing of 2-D points for fixed-radius neighbour searches (Bentley, Stanat and
// Williams, Information Processing Letters 6(6), 1977): every point within eps of a point lies
// in the 3 x 3 cells around it. Also tracks which points are still
// unclaimed, so that a search can skip points already handed out.
// Where rounding could defeat the grid (non-finite radius or coordinates) all points share one
// cell and a search degrades to a linear scan.
class NeighbourGrid {
 public:
  // xs, ys: coordinates of point i; eps: the search radius (>= 0; NaN finds nothing).
  NeighbourGrid(std::vector<double> xs, std::vector<double> ys, double eps);

  // Euclidean distance of points a and b, summed as NormalDistance does, is <= eps.
  bool withinEps(size_t a, size_t b) const;

  // Calls visit(j) for every point j in the cells around `centre` (a superset of the points
  // within eps, in no particular order) until visit returns false.
  template <typename Visit>
  void forEachNear(size_t centre, Visit visit) const;
  // As forEachNear, over the unclaimed points only; visit must not claim.
  template <typename Visit>
  void forEachUnclaimedNear(size_t centre, Visit visit) const;
  // Takes point `index` out of the unclaimed set; claiming twice is harmless.
  void claim(size_t index);

 private:
  using CellKey = std::pair<std::int64_t, std::int64_t>;

  void assignCells();
  // Calls visitCell(c) for each cell c around `centre` until it returns false.
  template <typename VisitCell>
  void forEachCellNear(size_t centre, VisitCell visitCell) const;

  std::vector<double> xs;
  std::vector<double> ys;
  double eps;
  std::vector<CellKey> keyOf;        // cell of each point
  std::vector<CellKey> cellKeys;     // distinct cells, ascending
  std::vector<size_t> cellOf;        // index into cellKeys of each point
  std::vector<size_t> cellBegin;     // slots of cell c: [cellBegin[c], cellBegin[c + 1])
  std::vector<size_t> unclaimedEnd;  // slots [cellBegin[c], unclaimedEnd[c]) are unclaimed
  std::vector<size_t> slots;         // point indices grouped by cell
  std::vector<size_t> slotOf;        // slots[slotOf[i]] == i
};

template <typename VisitCell>
void NeighbourGrid::forEachCellNear(size_t centre, VisitCell visitCell) const {
  CellKey const key = keyOf[centre];
  for (std::int64_t column = key.first - 1; column <= key.first + 1; ++column) {
    CellKey const last{column, key.second + 1};
    auto cell = std::lower_bound(cellKeys.begin(), cellKeys.end(), CellKey{column, key.second - 1});
    for (; cell != cellKeys.end() && *cell <= last; ++cell) {
      if (!visitCell(static_cast<size_t>(cell - cellKeys.begin()))) {
        return;
      }
    }
  }
}

template <typename Visit>
void NeighbourGrid::forEachNear(size_t centre, Visit visit) const {
  forEachCellNear(centre, [&](size_t cell) {
    for (size_t slot = cellBegin[cell]; slot < cellBegin[cell + 1]; ++slot) {
      if (!visit(slots[slot])) {
        return false;
      }
    }
    return true;
  });
}

template <typename Visit>
void NeighbourGrid::forEachUnclaimedNear(size_t centre, Visit visit) const {
  forEachCellNear(centre, [&](size_t cell) {
    for (size_t slot = cellBegin[cell]; slot < unclaimedEnd[cell]; ++slot) {
      if (!visit(slots[slot])) {
        return false;
      }
    }
    return true;
  });
}

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_NEIGHBOUR_GRID_H_
