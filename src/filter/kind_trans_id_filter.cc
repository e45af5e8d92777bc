#include "filter/kind_trans_id_filter.h"

#include <algorithm>
#include <map>
#include <string>

#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

namespace {
bool hasNoKind(std::string const& kind) { return kind.empty() || kind == "0"; }
}  // namespace

std::vector<BleScanInfoWithConfidence> KindTransIDFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos) {
  if (infos.empty()) {
    CorvexTagLogger::getInstance().error("infos == null or empty");
    return {};
  }
  std::vector<BleScanInfoWithConfidence> result;
  std::map<std::string, std::vector<BleScanInfoWithConfidence>> groups;
  for (BleScanInfoWithConfidence const& info : infos) {
    if (hasNoKind(info.getKindTransId())) {
      result.push_back(info);
    } else {
      groups[info.getKindTransId()].push_back(info);
    }
  }
  for (auto& entry : groups) {
    std::string const& kind = entry.first;
    std::vector<BleScanInfoWithConfidence>& group = entry.second;
    if (group.size() >= 2) {
      std::stable_sort(group.begin(), group.end(),
                       [](BleScanInfoWithConfidence const& a, BleScanInfoWithConfidence const& b) {
                         return a.getNewConfidence() > b.getNewConfidence();
                       });
      CorvexTagLogger::getInstance().infoBuilt(
          [&] { return "kindTransID " + kind + ", num: " + std::to_string(group.size()); });
    }
    result.push_back(group.front());
  }
  return result;
}

}  // namespace Vantis::Location
