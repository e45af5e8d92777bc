#include "filter/key_numbering.h"

namespace Vantis::Location {
namespace {

// The finaliser of SplitMix64 (Steele, Lea and Flood, OOPSLA 2014): nearby keys, such as
// neighbouring cells or times, land far apart.
std::uint64_t mix(std::uint64_t key) {
  key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9u;
  key = (key ^ (key >> 27)) * 0x94D049BB133111EBu;
  return key ^ (key >> 31);
}

// A power of two at least twice `capacity`: probes stay short.
size_t tableSize(size_t capacity) {
  size_t size = 16;
  while (size < 2 * capacity) {
    size *= 2;
  }
  return size;
}

}  // namespace

KeyNumbering::KeyNumbering(size_t capacity)
    : slots_(tableSize(capacity), Slot{0, kNone}), mask_(slots_.size() - 1) {}

size_t KeyNumbering::number(std::uint64_t key) {
  Slot& slot = slots_[slotOf(key)];
  if (slot.number == kNone) {
    slot = {key, count_++};
  }
  return slot.number;
}

size_t KeyNumbering::find(std::uint64_t key) const { return slots_[slotOf(key)].number; }

size_t KeyNumbering::slotOf(std::uint64_t key) const {
  size_t slot = static_cast<size_t>(mix(key)) & mask_;
  while (slots_[slot].number != kNone && slots_[slot].key != key) {
    slot = (slot + 1) & mask_;
  }
  return slot;
}

}  // namespace Vantis::Location
