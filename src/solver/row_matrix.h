#ifndef CORVEX_SOLVER_ROW_MATRIX_H_
#define CORVEX_SOLVER_ROW_MATRIX_H_

#include <cstddef>
#include <vector>

namespace Vantis::Location {

// A dense matrix kept row after row in one array, so that refilling it reuses its storage.
// Built from rows of unequal length it keeps no entries and says so: no computation takes it.
class RowMatrix {
 public:
  RowMatrix() = default;
  explicit RowMatrix(std::vector<std::vector<double>> const& rows);

  // rows x columns entries of unspecified value; keeps the storage.
  void resize(std::size_t rows, std::size_t columns);

  std::size_t rows() const { return rows_; }
  std::size_t columns() const { return columns_; }
  bool ragged() const { return ragged_; }
  double& operator()(std::size_t row, std::size_t column) { return data_[row * columns_ + column]; }
  double operator()(std::size_t row, std::size_t column) const {
    return data_[row * columns_ + column];
  }
  // The rows as vectors (empty rows for a ragged matrix).
  std::vector<std::vector<double>> toRows() const;

 private:
  std::vector<double> data_;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  bool ragged_ = false;
};

}  // namespace Vantis::Location

#endif  // CORVEX_SOLVER_ROW_MATRIX_H_
