#include "filter/record_subset.h"

#include <numeric>
#include <utility>

namespace Vantis::Location {

RecordSubset::RecordSubset(std::vector<Record> const& all) : all_(&all), positions_(all.size()) {
  std::iota(positions_.begin(), positions_.end(), size_t{0});
}

RecordSubset::RecordSubset(std::vector<Record> const& all, std::vector<size_t> positions)
    : all_(&all), positions_(std::move(positions)) {}

void RecordSubset::keep(std::vector<size_t> const& members) {
  spare_.clear();
  spare_.reserve(positions_.size());
  for (size_t member : members) {
    spare_.push_back(positions_[member]);
  }
  positions_.swap(spare_);
}

std::vector<RecordSubset::Record> RecordSubset::records() const {
  return std::vector<Record>(begin(), end());
}

}  // namespace Vantis::Location
