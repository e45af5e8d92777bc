#include "geometry/normal_distance.h"

#include <cmath>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

double NormalDistance::compute(std::vector<double> const& a, std::vector<double> const& b) {
  if (a.size() != b.size()) {
    CorvexTagLogger::getInstance().error("checkEqualLength error");
    return 0.0;
  }
  double sum = 0.0;
  for (size_t i = 0; i < a.size(); ++i) {
    double diff = a[i] - b[i];
    sum += diff * diff;
  }
  return std::sqrt(sum);
}

}  // namespace Vantis::Location
