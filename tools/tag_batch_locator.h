#ifndef CORVEX_TOOLS_TAG_BATCH_LOCATOR_H_
#define CORVEX_TOOLS_TAG_BATCH_LOCATOR_H_

#include <atomic>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "tools/input_buffer.h"
#include "tools/progress_meter.h"
#include "tools/scan_consumer.h"
#include "tools/scan_table.h"
#include "tools/tag_locator.h"
#include "tools/worker_pool.h"

namespace corvex_cli {

// Locates every tag of an input while it is still being read: when a run of consecutive
// records of one tag ends, the tag goes to a worker; should more of its records come later,
// it is located again, with all of them, once the input has ended. The answers are the same
// as locating each tag after reading everything.
class TagBatchLocator : public ScanConsumer {
 public:
  // jobs: tags located at once (1: on the reading thread). input, progress: may be null.
  TagBatchLocator(TagLocator::Options const& options, int jobs, InputBuffer const* input,
                  ProgressMeter* progress);

  bool add(ScanRecord const& record, std::string* error) override;
  // Call once the input has ended: locates what is left and waits for every tag.
  void finish();

  // One answer per tag, in order of first appearance (after finish()).
  std::deque<std::string> const& answers() const { return answers_; }
  // Notes for the user, tag by tag: values no phone produces, records left out by newest,
  // tags over the library's limit.
  std::vector<std::string> notes() const;

 private:
  void dispatch(size_t index);
  // Hands the tag to a worker, which puts its answer in place.
  void locateLater(size_t index);
  void showProgress(bool reading);

  TagLocator::Options options_;
  InputBuffer const* input_;
  ProgressMeter* progress_;
  std::deque<std::string> answers_;
  std::atomic<size_t> tagsDone_{0};
  ScanTable table_;
  WorkerPool pool_;  // last: its destructor waits for tasks that use the members above
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_TAG_BATCH_LOCATOR_H_
