#ifndef CORVEX_FILTER_NEIGHBOUR_GRID_H_
#define CORVEX_FILTER_NEIGHBOUR_GRID_H_

#include <cstddef>
#include <cstdint>
#include <utility>
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
  // points[i] = {x, y} of point i; eps: the search radius (>= 0; NaN finds nothing).
  NeighbourGrid(std::vector<std::pair<double, double>> points, double eps);

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

  struct Cell {
    size_t begin;  // slots [begin, end) hold the cell's points,
    size_t end;    // [begin, unclaimedEnd) the unclaimed ones
    size_t unclaimedEnd;
    size_t nearBegin;  // nearCells[nearBegin, nearEnd): the occupied cells around it, itself too
    size_t nearEnd;
  };
  struct Place {
    size_t cell;
    size_t slot;  // slots[slot] is the point
  };

  std::vector<CellKey> cellKeys() const;
  void groupByCell(std::vector<CellKey> const& keys);
  // Each cell's neighbour cells, found once instead of per search.
  void linkNearCells(std::vector<CellKey> const& keyOfCell, KeyNumbering const& numbers);

  std::vector<std::pair<double, double>> points;
  double eps;
  std::vector<Place> placeOf;  // by point
  std::vector<Cell> cells;
  std::vector<size_t> slots;  // point indices grouped by cell
  std::vector<size_t> nearCells;
};

template <typename Visit>
void NeighbourGrid::forEachNear(size_t centre, Visit visit) const {
  Cell const& cell = cells[placeOf[centre].cell];
  for (size_t near = cell.nearBegin; near < cell.nearEnd; ++near) {
    Cell const& other = cells[nearCells[near]];
    for (size_t slot = other.begin; slot < other.end; ++slot) {
      if (!visit(slots[slot])) {
        return;
      }
    }
  }
}

template <typename Visit>
void NeighbourGrid::forEachUnclaimedNear(size_t centre, Visit visit) const {
  Cell const& cell = cells[placeOf[centre].cell];
  for (size_t near = cell.nearBegin; near < cell.nearEnd; ++near) {
    Cell const& other = cells[nearCells[near]];
    for (size_t slot = other.begin; slot < other.unclaimedEnd; ++slot) {
      if (!visit(slots[slot])) {
        return;
      }
    }
  }
}

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_NEIGHBOUR_GRID_H_
