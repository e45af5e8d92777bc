#include "tools/tag_batch_locator.h"

#include <chrono>

#include "calculator/corvex_tag_position_calculator.h"

namespace corvex_cli {
namespace {
// The library refuses more (500020).
constexpr size_t kRecordsPerCall = Vantis::Location::CorvexTagPositionCalculator::kMaxInfos;
constexpr size_t kProgressEvery = 1 << 14;  // records
}  // namespace

TagBatchLocator::TagBatchLocator(TagLocator::Options const& options, int jobs,
                                 InputBuffer const* input, ProgressMeter* progress)
    : options_(options),
      input_(input),
      progress_(progress),
      table_([this](size_t index) { dispatch(index); }),
      pool_(jobs) {}

bool TagBatchLocator::add(ScanRecord const& record, std::string* error) {
  if (progress_ != nullptr && table_.records() % kProgressEvery == 0) {
    showProgress(true);
  }
  return table_.add(record, error);
}

void TagBatchLocator::dispatch(size_t index) {
  if (table_.sealed(index)) {
    return;  // located again at the end
  }
  table_.seal(index);
  while (answers_.size() <= index) {
    answers_.emplace_back();
  }
  locateLater(index);
}

void TagBatchLocator::locateLater(size_t index) {
  TagScans const* const tag = &table_.tag(index);
  std::string* const answer = &answers_[index];
  pool_.submit([this, tag, answer] {
    *answer = TagLocator::locate(*tag, options_);
    ++tagsDone_;
  });
}

void TagBatchLocator::finish() {
  table_.finish();
  auto const waitAll = [this] {
    while (!pool_.waitFor(std::chrono::milliseconds(250))) {
      showProgress(false);
    }
  };
  waitAll();
  for (size_t index = 0; index < table_.size(); ++index) {
    if (table_.mergeLate(index)) {
      --tagsDone_;
      locateLater(index);
    }
  }
  waitAll();
  if (progress_ != nullptr) {
    progress_->clear();
  }
}

void TagBatchLocator::showProgress(bool reading) {
  if (progress_ != nullptr) {
    progress_->update(reading, input_ != nullptr ? input_->bytesRead() : 0, table_.records(),
                      tagsDone_, table_.size());
  }
}

std::vector<std::string> TagBatchLocator::notes() const {
  std::vector<std::string> notes;
  for (size_t index = 0; index < table_.size(); ++index) {
    TagScans const& tag = table_.tag(index);
    std::string const name = "tag '" + tag.tag + "': ";
    for (int field = 0; field < ScanRecordBuilder::kFieldCount; ++field) {
      if (tag.implausible[field] > 0) {
        notes.push_back(name + std::to_string(tag.implausible[field]) + " records with " +
                        ScanRecordBuilder::fieldName(field) + " " +
                        ScanRecordBuilder::implausibleRule(field) +
                        ", which no phone reports; passed on as they are");
      }
    }
    size_t const records = tag.infos.size();
    size_t const used = options_.newest > 0 ? std::min(records, options_.newest) : records;
    if (used < records) {
      notes.push_back(name + "used the newest " + std::to_string(used) + " of " +
                      std::to_string(records) + " records");
    }
    if (used > kRecordsPerCall) {
      notes.push_back(name + std::to_string(used) + " records, more than the " +
                      std::to_string(kRecordsPerCall) + " one call takes (code 500020); --newest " +
                      std::to_string(kRecordsPerCall) + " keeps the newest");
    }
  }
  return notes;
}

}  // namespace corvex_cli
