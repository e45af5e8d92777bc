#ifndef CORVEX_TOOLS_SCAN_TABLE_H_
#define CORVEX_TOOLS_SCAN_TABLE_H_

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "tools/scan_consumer.h"
#include "tools/string_pool.h"
#include "tools/tag_scans.h"

namespace corvex_cli {

// Groups records by tag, tags in order of first appearance. While reading, a tag can be
// sealed (handed to another thread): its records then stay untouched, and records of it that
// come later wait in its late list until mergeLate().
class ScanTable : public ScanConsumer {
 public:
  // runEnded(tag index): called when a record of another tag follows a run of records of one
  // tag, and at finish() for the last run.
  explicit ScanTable(std::function<void(size_t)> runEnded = nullptr);

  bool add(ScanRecord const& record, std::string* error) override;
  // The input has ended.
  void finish();

  size_t size() const { return tags_.size(); }
  size_t records() const { return records_; }
  // References stay valid while tags are added.
  TagScans& tag(size_t index) { return tags_[index]; }
  TagScans const& tag(size_t index) const { return tags_[index]; }

  void seal(size_t index) { sealed_[index] = true; }
  bool sealed(size_t index) const { return sealed_[index]; }
  // Appends the tag's late records to its records, when no other thread reads them; says
  // whether there were any.
  bool mergeLate(size_t index);

 private:
  std::function<void(size_t)> runEnded_;
  StringPool strings_;
  std::deque<TagScans> tags_;
  std::deque<bool> sealed_;
  std::unordered_map<std::string, size_t> indexOfTag_;
  size_t current_ = 0;  // tag of the last record
  size_t records_ = 0;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_TABLE_H_
