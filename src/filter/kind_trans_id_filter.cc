#include "filter/kind_trans_id_filter.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

std::vector<BleScanInfoWithConfidence> KindTransIDFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  return RecordSubset(infos, keep(infos)).records();
}

bool KindTransIDFilter::hasKind(BleScanInfoWithConfidence const& info) {
  std::string const& kind = info.getKindTransId();
  return !kind.empty() && kind != "0";
}

std::vector<size_t> KindTransIDFilter::keep(RecordSubset const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos == null or empty");
    return {};
  }
  std::vector<size_t> kept;
  // Keys are views of the records' own texts, which outlive the map.
  std::map<std::string_view, std::vector<size_t>> groups;
  for (size_t i = 0; i < infos.size(); ++i) {
    if (hasKind(infos[i])) {
      groups[infos[i].getKindTransId()].push_back(i);
    } else {
      kept.push_back(i);
    }
  }
  for (auto& entry : groups) {
    std::string_view const kind = entry.first;
    std::vector<size_t>& group = entry.second;
    if (group.size() >= 2) {
      std::stable_sort(group.begin(), group.end(), [&infos](size_t a, size_t b) {
        return infos[a].getNewConfidence() > infos[b].getNewConfidence();
      });
      CorvexTagLogger::getInstance().infoBuilt([&] {
        return "kindTransID " + std::string(kind) + ", num: " + std::to_string(group.size());
      });
    }
    kept.push_back(group.front());
  }
  return kept;
}

}  // namespace Vantis::Location
