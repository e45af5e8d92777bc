#ifndef CORVEX_FILTER_NEIGHBOUR_GRID_H_
#define CORVEX_FILTER_NEIGHBOUR_GRID_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vantis::Location {

class KeyNumbering;

// Uniform-grid bucketing of 2-D points for fixed-radius neighbour searches (Bentley, Stanat and
// Williams, Information Processing Letters 6(6), 1977): every point within eps of a point lies
// in the 3 x 3 cells around it. Also tracks which points are still
// unclaimed, so that a search can skip points already handed out.
// A point with a non-finite coordinate is within no finite eps of anything: its searches find
// nothing and no search finds it. Where rounding could defeat the grid (a radius that is not
// finite or too large) all points share one cell and a search degrades to a linear scan.
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
  // Column and row of a cell, each offset to unsigned 32 bits, column in the high half.
  using CellKey = std::uint64_t;

  std::vector<CellKey> cellKeys() const;
  void groupByCell(std::vector<CellKey> const& keys);
  // Each cell's occupied neighbour cells (itself included), found once instead of per search.
  void linkNearCells(std::vector<CellKey> const& keyOfCell, KeyNumbering const& cells);

  std::vector<double> xs;
  std::vector<double> ys;
  double eps;
  std::vector<size_t> cellOf;        // cell number of each point
  std::vector<size_t> cellBegin;     // slots of cell c: [cellBegin[c], cellBegin[c + 1])
  std::vector<size_t> unclaimedEnd;  // slots [cellBegin[c], unclaimedEnd[c]) are unclaimed
  std::vector<size_t> slots;         // point indices grouped by cell
  std::vector<size_t> slotOf;        // slots[slotOf[i]] == i
  std::vector<size_t> nearBegin;     // near cells of cell c: nearCells[nearBegin[c] .. [c + 1])
  std::vector<size_t> nearCells;
};

template <typename Visit>
void NeighbourGrid::forEachNear(size_t centre, Visit visit) const {
  size_t const cell = cellOf[centre];
  for (size_t near = nearBegin[cell]; near < nearBegin[cell + 1]; ++near) {
    size_t const other = nearCells[near];
    for (size_t slot = cellBegin[other]; slot < cellBegin[other + 1]; ++slot) {
      if (!visit(slots[slot])) {
        return;
      }
    }
  }
}

template <typename Visit>
void NeighbourGrid::forEachUnclaimedNear(size_t centre, Visit visit) const {
  size_t const cell = cellOf[centre];
  for (size_t near = nearBegin[cell]; near < nearBegin[cell + 1]; ++near) {
    size_t const other = nearCells[near];
    for (size_t slot = cellBegin[other]; slot < unclaimedEnd[other]; ++slot) {
      if (!visit(slots[slot])) {
        return;
      }
    }
  }
}

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_NEIGHBOUR_GRID_H_
