#include "filter/neighbour_grid.h"

#include <algorithm>
#include <cmath>
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

// floor(q) for a cell index q (|q| <= 2^30 + 1), without a library call.
std::int64_t floorOf(double q) {
  auto const truncated = static_cast<std::int64_t>(q);
  return static_cast<double>(truncated) > q ? truncated - 1 : truncated;
}

}  // namespace

NeighbourGrid::NeighbourGrid(std::vector<std::pair<double, double>> points, double eps)
    : points(std::move(points)), eps(eps) {
  groupByCell(cellKeys());
}

std::vector<NeighbourGrid::CellKey> NeighbourGrid::cellKeys() const {
  double maxAbs = 0.0;
  for (auto const& [x, y] : points) {
    if (isFinite(x, y)) {
      maxAbs = std::max(maxAbs, std::max(std::fabs(x), std::fabs(y)));
    }
  }
  double const width = std::max(std::max(eps, kMinCellWidth) * kCellMargin, maxAbs / kMaxCellIndex);
  std::vector<CellKey> keys(points.size(), cellKey(0, 0));
  if (!std::isfinite(eps) || !std::isfinite(width)) {
    return keys;
  }
  for (size_t i = 0; i < points.size(); ++i) {
    auto const [x, y] = points[i];
    keys[i] = isFinite(x, y) ? cellKey(floorOf(x / width), floorOf(y / width)) : kIsolatedCell;
  }
  return keys;
}

// Counting sort by cell number: linear, and each cell keeps its points in index order.
void NeighbourGrid::groupByCell(std::vector<CellKey> const& keys) {
  size_t const count = keys.size();
  KeyNumbering numbers(count);
  std::vector<CellKey> keyOfCell;
  keyOfCell.reserve(count);
  placeOf.resize(count);
  for (size_t i = 0; i < count; ++i) {
    placeOf[i].cell = numbers.number(keys[i]);
    if (placeOf[i].cell == keyOfCell.size()) {
      keyOfCell.push_back(keys[i]);
    }
  }
  cells.assign(keyOfCell.size(), Cell{0, 0, 0, 0, 0});
  for (Place const& place : placeOf) {
    ++cells[place.cell].end;
  }
  size_t begin = 0;
  for (Cell& cell : cells) {
    size_t const size = cell.end;
    cell = {begin, begin + size, begin, 0, 0};
    begin += size;
  }
  slots.resize(count);
  for (size_t i = 0; i < count; ++i) {
    Cell& cell = cells[placeOf[i].cell];
    placeOf[i].slot = cell.unclaimedEnd++;
    slots[placeOf[i].slot] = i;
  }
  linkNearCells(keyOfCell, numbers);
}

void NeighbourGrid::linkNearCells(std::vector<CellKey> const& keyOfCell,
                                  KeyNumbering const& numbers) {
  nearCells.reserve(9 * keyOfCell.size());
  for (size_t c = 0; c < keyOfCell.size(); ++c) {
    CellKey const key = keyOfCell[c];
    cells[c].nearBegin = nearCells.size();
    for (std::int64_t column = columnOf(key) - 1;
         key != kIsolatedCell && column <= columnOf(key) + 1; ++column) {
      for (std::int64_t row = rowOf(key) - 1; row <= rowOf(key) + 1; ++row) {
        size_t const cell = numbers.find(cellKey(column, row));
        if (cell != KeyNumbering::kNone) {
          nearCells.push_back(cell);
        }
      }
    }
    cells[c].nearEnd = nearCells.size();
  }
}

bool NeighbourGrid::withinEps(size_t a, size_t b) const {
  double const dx = points[a].first - points[b].first;
  double const dy = points[a].second - points[b].second;
  double sum = 0.0;
  sum += dx * dx;
  sum += dy * dy;
  return std::sqrt(sum) <= eps;
}

void NeighbourGrid::claim(size_t index) {
  Place& place = placeOf[index];
  Cell& cell = cells[place.cell];
  if (place.slot >= cell.unclaimedEnd) {
    return;
  }
  size_t const last = --cell.unclaimedEnd;
  size_t const moved = slots[last];
  std::swap(slots[place.slot], slots[last]);
  placeOf[moved].slot = place.slot;
  place.slot = last;
}

}  // namespace Vantis::Location
