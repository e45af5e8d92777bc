#ifndef CORVEX_FILTER_KEY_NUMBERING_H_
#define CORVEX_FILTER_KEY_NUMBERING_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vantis::Location {

// Numbers 64-bit keys 0, 1, 2, ... in the order they first come, so that records can be grouped
// by a key (a grid cell, a scan time) in linear time instead of by sorting. An open-addressing
// table with linear probing (Knuth, The Art of Computer Programming, vol. 3, section 6.4),
// sized once for at most `capacity` distinct keys.
class KeyNumbering {
 public:
  static constexpr size_t kNone = SIZE_MAX;

  explicit KeyNumbering(size_t capacity);

  // The number of `key`; a new key gets the next number. At most `capacity` distinct keys.
  size_t number(std::uint64_t key);
  // The number of `key`, or kNone when it has none.
  size_t find(std::uint64_t key) const;
  // How many keys are numbered.
  size_t size() const { return count_; }

 private:
  // The slot holding `key`, or the empty slot where it would go.
  size_t slotOf(std::uint64_t key) const;

  struct Slot {
    std::uint64_t key;
    size_t number;  // kNone marks an empty slot
  };

  std::vector<Slot> slots_;
  size_t mask_;
  size_t count_ = 0;
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_KEY_NUMBERING_H_
