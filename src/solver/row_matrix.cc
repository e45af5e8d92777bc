#include "solver/row_matrix.h"

#include <algorithm>

namespace Vantis::Location {

RowMatrix::RowMatrix(std::vector<std::vector<double>> const& rows)
    : rows_(rows.size()), columns_(rows.empty() ? 0 : rows[0].size()) {
  ragged_ = std::any_of(rows.begin(), rows.end(),
                        [this](std::vector<double> const& row) { return row.size() != columns_; });
  if (ragged_) {
    columns_ = 0;
    return;
  }
  data_.reserve(rows_ * columns_);
  for (std::vector<double> const& row : rows) {
    data_.insert(data_.end(), row.begin(), row.end());
  }
}

void RowMatrix::resize(std::size_t rows, std::size_t columns) {
  rows_ = rows;
  columns_ = columns;
  ragged_ = false;
  data_.resize(rows * columns);
}

std::vector<std::vector<double>> RowMatrix::toRows() const {
  std::vector<std::vector<double>> result(rows_);
  for (std::size_t i = 0; i < rows_; ++i) {
    auto const begin = data_.begin() + static_cast<std::ptrdiff_t>(i * columns_);
    result[i].assign(begin, begin + static_cast<std::ptrdiff_t>(columns_));
  }
  return result;
}

}  // namespace Vantis::Location
