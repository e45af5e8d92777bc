#include "platform/log_capture.h"

#include <utility>

namespace Vantis::Location {
namespace {
thread_local LogCapture* currentCapture = nullptr;
}  // namespace

LogCapture::LogCapture(int minLevel) : minLevel_(minLevel), enclosing_(currentCapture) {
  currentCapture = this;
}

LogCapture::~LogCapture() { currentCapture = enclosing_; }

LogCapture* LogCapture::current() { return currentCapture; }

void LogCapture::add(int level, std::string message) {
  if (keeps(level)) {
    lines_.push_back({level, std::move(message)});
  }
}

std::vector<LogCapture::Line> LogCapture::take() { return std::exchange(lines_, {}); }

}  // namespace Vantis::Location
