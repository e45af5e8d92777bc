#include "filter/kind_trans_id_filter.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
bool hasNoKind(std::string const& kind) { return kind.empty() || kind == "0"; }
}  // namespace

std::vector<BleScanInfoWithConfidence> KindTransIDFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  std::vector<BleScanInfoWithConfidence> result;
  for (size_t index : keep(infos)) {
    result.push_back(infos[index]);
  }
  return result;
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
    std::string const& kind = infos[i].getKindTransId();
    if (hasNoKind(kind)) {
      kept.push_back(i);
    } else {
      groups[kind].push_back(i);
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
