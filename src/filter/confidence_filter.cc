#include "filter/confidence_filter.h"

#include <algorithm>
#include <numeric>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

std::vector<BleScanInfoWithConfidence> ConfidenceFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double threshold) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos == null or is empty");
    return {};
  }
  if (minItems <= 0) {
    CorvexTagLogger::getInstance().error("minItems can't less than 1");
    return {};
  }
  // Sorting indices moves no records, and only the kept ones are copied.
  std::vector<size_t> order(infos.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(), [&infos](size_t a, size_t b) {
    return infos[a].getConfidence() > infos[b].getConfidence();
  });
  size_t kept = order.size();
  while (kept > static_cast<size_t>(minItems) &&
         infos[order[kept - 1]].getConfidence() < threshold) {
    --kept;
  }
  std::vector<BleScanInfoWithConfidence> result;
  result.reserve(kept);
  for (size_t i = 0; i < kept; ++i) {
    result.push_back(infos[order[i]]);
  }
  return result;
}

}  // namespace Vantis::Location
