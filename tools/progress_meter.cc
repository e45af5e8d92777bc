#include "tools/progress_meter.h"

#include <cstdio>

namespace corvex_cli {
namespace {
constexpr auto kQuietTime = std::chrono::seconds(1);
constexpr auto kRefreshTime = std::chrono::milliseconds(250);
}  // namespace

ProgressMeter::ProgressMeter(bool enabled, size_t totalBytes)
    : enabled_(enabled), totalBytes_(totalBytes), start_(Clock::now()) {}

void ProgressMeter::update(bool reading, size_t bytesRead, size_t records, size_t tagsDone,
                           size_t tags) {
  if (!enabled_) {
    return;
  }
  Clock::time_point const now = Clock::now();
  if (now - start_ < kQuietTime || (visible_ && now - shown_ < kRefreshTime)) {
    return;
  }
  shown_ = now;
  visible_ = true;
  double const seconds = std::chrono::duration<double>(now - start_).count();
  // The share of the tags read so far that are located, scaled by the share of the input read.
  double done = tags > 0 ? static_cast<double>(tagsDone) / static_cast<double>(tags) : 0;
  if (reading) {
    done *= totalBytes_ > 0 ? static_cast<double>(bytesRead) / static_cast<double>(totalBytes_) : 0;
  }
  std::fprintf(stderr, "\r\033[Kcorvex: %zu of %zu%s tags located, %.0f records/s", tagsDone, tags,
               reading ? "+" : "", static_cast<double>(records) / seconds);
  if (done > 0) {
    std::fprintf(stderr, ", about %.0f s left", seconds * (1 - done) / done);
  }
  std::fflush(stderr);
}

void ProgressMeter::clear() {
  if (visible_) {
    std::fprintf(stderr, "\r\033[K");
    std::fflush(stderr);
    visible_ = false;
  }
}

}  // namespace corvex_cli
