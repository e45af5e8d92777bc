#include "filter/confidence_filter.h"

#include <algorithm>

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
  std::vector<BleScanInfoWithConfidence> result = infos;
  std::stable_sort(result.begin(), result.end(),
                   [](BleScanInfoWithConfidence const& a, BleScanInfoWithConfidence const& b) {
                     return a.getConfidence() > b.getConfidence();
                   });
  while (result.size() > static_cast<size_t>(minItems) &&
         result.back().getConfidence() < threshold) {
    result.pop_back();
  }
  return result;
}

}  // namespace Vantis::Location
