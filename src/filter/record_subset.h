#ifndef CORVEX_FILTER_RECORD_SUBSET_H_
#define CORVEX_FILTER_RECORD_SUBSET_H_

#include <cstddef>
#include <iterator>
#include <vector>

#include "model/ble_scan_info_with_confidence.h"

namespace Vantis::Location {

// Some records of a list, in an order of their own, held as positions in the list: filter
// stages select and reorder positions instead of copying records. The list must outlive the
// subset and stay unchanged.
class RecordSubset {
 public:
  using Record = BleScanInfoWithConfidence;

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Record;
    using difference_type = std::ptrdiff_t;
    using pointer = Record const*;
    using reference = Record const&;

    Iterator(std::vector<Record> const* all, std::vector<size_t>::const_iterator position)
        : all_(all), position_(position) {}
    Record const& operator*() const { return (*all_)[*position_]; }
    Record const* operator->() const { return &**this; }
    Iterator& operator++() {
      ++position_;
      return *this;
    }
    bool operator==(Iterator const& other) const { return position_ == other.position_; }
    bool operator!=(Iterator const& other) const { return position_ != other.position_; }

   private:
    std::vector<Record> const* all_;
    std::vector<size_t>::const_iterator position_;
  };

  // Every record of `all`, in order. Implicit: a list passes for its own full subset.
  RecordSubset(std::vector<Record> const& all);
  // The records at `positions` in `all`, in that order.
  RecordSubset(std::vector<Record> const& all, std::vector<size_t> positions);

  size_t size() const { return positions_.size(); }
  bool empty() const { return positions_.empty(); }
  Record const& operator[](size_t k) const { return (*all_)[positions_[k]]; }
  Record const& back() const { return (*this)[size() - 1]; }
  Iterator begin() const { return Iterator(all_, positions_.begin()); }
  Iterator end() const { return Iterator(all_, positions_.end()); }

  // Keeps the records at `members` (indices into this subset, each at most once), in that
  // order.
  void keep(std::vector<size_t> const& members);
  // Copies of the records, in subset order.
  std::vector<Record> records() const;

 private:
  std::vector<Record> const* all_;
  std::vector<size_t> positions_;
  std::vector<size_t> spare_;  // keep() builds here and swaps: one allocation for many keeps
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_RECORD_SUBSET_H_
