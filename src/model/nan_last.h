#ifndef CORVEX_MODEL_NAN_LAST_H_
#define CORVEX_MODEL_NAN_LAST_H_

#include <cmath>

namespace Vantis::Location {

// A floating-point value ordered totally: NaN after every number and equivalent to every NaN,
// numbers as usual (so -0.0 and 0.0 stay equivalent). Inside a tuple comparison it gives a
// strict weak ordering where the plain value would let a NaN skip the field.
template <typename F>
struct NanLast {
  F value;

  friend bool operator<(NanLast a, NanLast b) {
    if (std::isnan(a.value)) {
      return false;
    }
    return std::isnan(b.value) || a.value < b.value;
  }
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_NAN_LAST_H_
