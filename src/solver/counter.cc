#include "solver/counter.h"

#include <limits>

namespace Vantis::Location {

bool Counter::countPlus() {
  bool const reached = count_ >= maximum_;
  // Saturate rather than overflow; no caller counts that far.
  if (count_ < std::numeric_limits<int>::max()) {
    ++count_;
  }
  return reached;
}

}  // namespace Vantis::Location
