#include "column_collector.h"

namespace corvex_python {

bool ColumnCollector::add(corvex_cli::ScanRecord const& record, std::string* /*error*/) {
  infos_.push_back(record.info);
  addText(kTag, record.tag);
  addText(kGeoId, record.geoId);
  addText(kFloorInfo, record.floorInfo);
  return true;
}

void ColumnCollector::addText(TextField field, std::string_view text) {
  std::vector<int64_t>& codes = codes_[field];
  std::vector<std::string>& texts = texts_[field];
  if (!codes.empty() && texts[static_cast<size_t>(codes.back())] == text) {
    codes.push_back(codes.back());  // runs of one text are the rule
    return;
  }
  auto const [it, added] =
      codeOf_[field].try_emplace(std::string(text), static_cast<int64_t>(texts.size()));
  if (added) {
    texts.emplace_back(text);
  }
  codes.push_back(it->second);
}

}  // namespace corvex_python
