#include "filter/confidence_filter.h"

#include <algorithm>
#include <utility>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

std::vector<BleScanInfoWithConfidence> ConfidenceFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos, int minItems, double threshold) {
  return RecordSubset(infos, keep(infos, minItems, threshold)).records();
}

std::vector<size_t> ConfidenceFilter::keep(RecordSubset const& infos, int minItems,
                                           double threshold) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos == null or is empty");
    return {};
  }
  if (minItems <= 0) {
    CorvexTagLogger::getInstance().error("minItems can't less than 1");
    return {};
  }
  // (confidence, index) pairs sort without moving or touching records.
  std::vector<std::pair<double, size_t>> order;
  order.reserve(infos.size());
  for (size_t i = 0; i < infos.size(); ++i) {
    order.emplace_back(infos[i].getConfidence(), i);
  }
  std::stable_sort(order.begin(), order.end(),
                   [](auto const& a, auto const& b) { return a.first > b.first; });
  size_t kept = order.size();
  while (kept > static_cast<size_t>(minItems) && order[kept - 1].first < threshold) {
    --kept;
  }
  std::vector<size_t> positions;
  positions.reserve(kept);
  for (size_t i = 0; i < kept; ++i) {
    positions.push_back(order[i].second);
  }
  return positions;
}

}  // namespace Vantis::Location
