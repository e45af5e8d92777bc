#include "filter/neighbour_grid.h"

#include <cmath>
#include <numeric>

namespace Vantis::Location {

namespace {
// Offsets below sqrt(DBL_MIN) (about 1.5e-154) may square to 0, so two points that far apart
// can be at computed distance 0; cells at least this wide keep them adjacent.
constexpr double kMinCellWidth = 1e-150;
// A computed distance <= eps allows a true offset a few ulps above eps; cells this much wider
// than eps absorb that together with the rounding of x / width.
constexpr double kCellMargin = 1.0 + 0x1p-20;
// Cell indices stay this small, so x / width is off by far less than a cell and fits int64.
constexpr double kMaxCellIndex = 0x1p30;
}  // namespace

NeighbourGrid::NeighbourGrid(std::vector<double> xs, std::vector<double> ys, double eps)
    : xs(std::move(xs)), ys(std::move(ys)), eps(eps) {
  assignCells();
  size_t const count = this->xs.size();
  slots.resize(count);
  std::iota(slots.begin(), slots.end(), size_t{0});
  std::sort(slots.begin(), slots.end(), [this](size_t a, size_t b) {
    return keyOf[a] < keyOf[b] || (keyOf[a] == keyOf[b] && a < b);
  });
  cellOf.resize(count);
  slotOf.resize(count);
  for (size_t slot = 0; slot < count; ++slot) {
    size_t const point = slots[slot];
    if (slot == 0 || keyOf[point] != keyOf[slots[slot - 1]]) {
      cellKeys.push_back(keyOf[point]);
      cellBegin.push_back(slot);
    }
    cellOf[point] = cellKeys.size() - 1;
    slotOf[point] = slot;
  }
  cellBegin.push_back(count);
  unclaimedEnd.assign(cellBegin.begin() + 1, cellBegin.end());
}

void NeighbourGrid::assignCells() {
  bool gridded = std::isfinite(eps);
  double maxAbs = 0.0;
  for (size_t i = 0; i < xs.size(); ++i) {
    if (!std::isfinite(xs[i]) || !std::isfinite(ys[i])) {
      gridded = false;
      break;
    }
    maxAbs = std::max(maxAbs, std::max(std::fabs(xs[i]), std::fabs(ys[i])));
  }
  double const width = std::max(std::max(eps, kMinCellWidth) * kCellMargin, maxAbs / kMaxCellIndex);
  gridded = gridded && std::isfinite(width);
  keyOf.resize(xs.size());
  for (size_t i = 0; i < xs.size(); ++i) {
    keyOf[i] = gridded ? CellKey{static_cast<std::int64_t>(std::floor(xs[i] / width)),
                                 static_cast<std::int64_t>(std::floor(ys[i] / width))}
                       : CellKey{0, 0};
  }
}

bool NeighbourGrid::withinEps(size_t a, size_t b) const {
  double const dx = xs[a] - xs[b];
  double const dy = ys[a] - ys[b];
  double sum = 0.0;
  sum += dx * dx;
  sum += dy * dy;
  return std::sqrt(sum) <= eps;
}

void NeighbourGrid::claim(size_t index) {
  size_t const cell = cellOf[index];
  size_t const slot = slotOf[index];
  if (slot >= unclaimedEnd[cell]) {
    return;
  }
  size_t const last = --unclaimedEnd[cell];
  size_t const moved = slots[last];
  std::swap(slots[slot], slots[last]);
  slotOf[moved] = slot;
  slotOf[index] = last;
}

}  // namespace Vantis::Location
