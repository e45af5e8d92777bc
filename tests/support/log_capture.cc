#include "support/log_capture.h"

#include <ostream>

#include "platform/linux_log_sink.h"

namespace corvex_test {

LogCapture::LogCapture() { Vantis::Location::SetPlatformLogHookForTesting(&record, this); }

LogCapture::~LogCapture() { Vantis::Location::SetPlatformLogHookForTesting(nullptr, nullptr); }

void LogCapture::record(void* context, int level, std::string const& message) {
  auto* self = static_cast<LogCapture*>(context);
  std::lock_guard<std::mutex> lock(self->mutex_);
  self->lines_.push_back({level, message});
}

std::vector<LogLine> LogCapture::lines() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return lines_;
}

std::vector<std::string> LogCapture::messages() const {
  std::vector<std::string> out;
  for (LogLine const& line : lines()) {
    out.push_back(line.message);
  }
  return out;
}

std::vector<std::string> LogCapture::messages(int level) const {
  std::vector<std::string> out;
  for (LogLine const& line : lines()) {
    if (line.level == level) {
      out.push_back(line.message);
    }
  }
  return out;
}

void LogCapture::clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  lines_.clear();
}

// Readable failure output for EXPECT_EQ on lines.
void PrintTo(LogLine const& line, std::ostream* os) {
  *os << "{" << line.level << ", \"" << line.message << "\"}";
}

}  // namespace corvex_test
