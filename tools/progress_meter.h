#ifndef CORVEX_TOOLS_PROGRESS_METER_H_
#define CORVEX_TOOLS_PROGRESS_METER_H_

#include <chrono>
#include <cstddef>

namespace corvex_cli {

// A one-line progress display on a terminal: tags located of those seen, records/s and the
// time left. Shows nothing for the first second, so that quick runs stay quiet, and nothing at
// all when disabled (stderr is not a terminal).
class ProgressMeter {
 public:
  // totalBytes: size of the input, 0 when unknown.
  ProgressMeter(bool enabled, size_t totalBytes);
  ~ProgressMeter() { clear(); }
  ProgressMeter(ProgressMeter const&) = delete;
  ProgressMeter& operator=(ProgressMeter const&) = delete;

  // reading: the input has not ended yet, so the number of tags is not final.
  void update(bool reading, size_t bytesRead, size_t records, size_t tagsDone, size_t tags);
  // Removes the line, if one is shown.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool enabled_;
  size_t totalBytes_;
  Clock::time_point start_;
  Clock::time_point shown_;
  bool visible_ = false;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_PROGRESS_METER_H_
