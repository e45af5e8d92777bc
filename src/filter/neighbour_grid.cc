#include "filter/neighbour_grid.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "filter/key_numbering.h"

namespace Vantis::Location {

namespace {
// Offsets below sqrt(DBL_MIN) (about 1.5e-154) may square to 0, so two points that far apart
// can be at computed distance 0; cells at least this wide keep them adjacent.
constexpr double kMinCellWidth = 1e-150;
// A computed distance <= eps allows a true offset a few ulps above eps; cells this much wider
// than eps absorb that together with the rounding of x / width.
constexpr double kCellMargin = 1.0 + 0x1p-20;
// Cell indices stay this small, so x / width is off by far less than a cell, and a column or
// row and its neighbours fit 32 bits once offset by kIndexOffset.
constexpr double kMaxCellIndex = 0x1p30;
constexpr std::int64_t kIndexOffset = std::int64_t{1} << 31;
// The cell of the points that can have no neighbour; no column reaches it.
constexpr std::uint64_t kIsolatedCell = UINT64_MAX;

std::uint64_t cellKey(std::int64_t column, std::int64_t row) {
  return static_cast<std::uint64_t>(column + kIndexOffset) << 32 |
         static_cast<std::uint64_t>(row + kIndexOffset);
}

std::int64_t columnOf(std::uint64_t key) {
  return static_cast<std::int64_t>(key >> 32) - kIndexOffset;
}

std::int64_t rowOf(std::uint64_t key) {
  return static_cast<std::int64_t>(key & 0xFFFFFFFFu) - kIndexOffset;
}

bool isFinite(double x, double y) { return std::isfinite(x) && std::isfinite(y); }

}  // namespace

NeighbourGrid::NeighbourGrid(std::vector<double> xs, std::vector<double> ys, double eps)
    : xs(std::move(xs)), ys(std::move(ys)), eps(eps) {
  groupByCell(cellKeys());
}

std::vector<NeighbourGrid::CellKey> NeighbourGrid::cellKeys() const {
  double maxAbs = 0.0;
  for (size_t i = 0; i < xs.size(); ++i) {
    if (isFinite(xs[i], ys[i])) {
      maxAbs = std::max(maxAbs, std::max(std::fabs(xs[i]), std::fabs(ys[i])));
    }
  }
  double const width = std::max(std::max(eps, kMinCellWidth) * kCellMargin, maxAbs / kMaxCellIndex);
  std::vector<CellKey> keys(xs.size(), cellKey(0, 0));
  if (!std::isfinite(eps) || !std::isfinite(width)) {
    return keys;
  }
  for (size_t i = 0; i < xs.size(); ++i) {
    keys[i] = isFinite(xs[i], ys[i]) ? cellKey(static_cast<std::int64_t>(std::floor(xs[i] / width)),
                                               static_cast<std::int64_t>(std::floor(ys[i] / width)))
                                     : kIsolatedCell;
  }
  return keys;
}

// Counting sort by cell number: linear, and each cell keeps its points in index order.
void NeighbourGrid::groupByCell(std::vector<CellKey> const& keys) {
  size_t const count = keys.size();
  KeyNumbering cells(count);
  std::vector<CellKey> keyOfCell;
  cellOf.resize(count);
  for (size_t i = 0; i < count; ++i) {
    cellOf[i] = cells.number(keys[i]);
    if (cellOf[i] == keyOfCell.size()) {
      keyOfCell.push_back(keys[i]);
    }
  }
  cellBegin.assign(keyOfCell.size() + 1, 0);
  for (size_t cell : cellOf) {
    ++cellBegin[cell + 1];
  }
  std::partial_sum(cellBegin.begin(), cellBegin.end(), cellBegin.begin());
  unclaimedEnd.assign(cellBegin.begin(), cellBegin.end() - 1);
  slots.resize(count);
  slotOf.resize(count);
  for (size_t i = 0; i < count; ++i) {
    size_t const slot = unclaimedEnd[cellOf[i]]++;
    slots[slot] = i;
    slotOf[i] = slot;
  }
  linkNearCells(keyOfCell, cells);
}

void NeighbourGrid::linkNearCells(std::vector<CellKey> const& keyOfCell,
                                  KeyNumbering const& cells) {
  nearBegin.reserve(keyOfCell.size() + 1);
  for (CellKey const key : keyOfCell) {
    nearBegin.push_back(nearCells.size());
    if (key == kIsolatedCell) {
      continue;
    }
    for (std::int64_t column = columnOf(key) - 1; column <= columnOf(key) + 1; ++column) {
      for (std::int64_t row = rowOf(key) - 1; row <= rowOf(key) + 1; ++row) {
        size_t const cell = cells.find(cellKey(column, row));
        if (cell != KeyNumbering::kNone) {
          nearCells.push_back(cell);
        }
      }
    }
  }
  nearBegin.push_back(nearCells.size());
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
