#include "tools/scan_table.h"

#include <utility>

namespace corvex_cli {

ScanTable::ScanTable(std::function<void(size_t)> runEnded) : runEnded_(std::move(runEnded)) {}

bool ScanTable::add(ScanRecord const& record, std::string* /*error*/) {
  if (records_ == 0 || record.tag != tags_[current_].tag) {
    size_t const previous = current_;
    auto const [it, added] = indexOfTag_.try_emplace(std::string(record.tag), tags_.size());
    if (added) {
      tags_.push_back(TagScans{std::string(record.tag), {}, {}, {}});
      sealed_.push_back(false);
    }
    current_ = it->second;
    if (records_ > 0 && runEnded_) {
      runEnded_(previous);
    }
  }
  AggregateScanInfo info = record.info;
  if (record.indoor) {
    info.geoId = strings_.intern(record.geoId);
    info.floorInfo = strings_.intern(record.floorInfo);
  }
  TagScans& tag = tags_[current_];
  (sealed_[current_] ? tag.late : tag.infos).push_back(info);
  for (unsigned bits = record.implausible, field = 0; bits != 0; bits >>= 1, ++field) {
    tag.implausible[field] += bits & 1U;
  }
  ++records_;
  return true;
}

void ScanTable::finish() {
  if (records_ > 0 && runEnded_) {
    runEnded_(current_);
  }
}

bool ScanTable::mergeLate(size_t index) {
  TagScans& tag = tags_[index];
  if (tag.late.empty()) {
    return false;
  }
  tag.infos.insert(tag.infos.end(), tag.late.begin(), tag.late.end());
  tag.late = {};
  return true;
}

}  // namespace corvex_cli
