// Captures the library's log lines of the calling thread, every level, while it lives.
#ifndef CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_
#define CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <string>
#include <vector>

#include "platform/log_capture.h"

namespace corvex_test {

using LogLine = Vantis::Location::LogCapture::Line;

// Level shorthands matching the platform levels.
constexpr int kDebug = 3;
constexpr int kInfo = 4;
constexpr int kError = 6;

class LogCapture : public Vantis::Location::LogCapture {
 public:
  LogCapture() : Vantis::Location::LogCapture(kDebug) {}

  // Messages logged at one level only.
  std::vector<std::string> messages(int level) const {
    std::vector<std::string> out;
    for (LogLine const& line : lines()) {
      if (line.level == level) out.push_back(line.message);
    }
    return out;
  }
};

// The lines written "<level letter>:<message>" (D, I, W or E), so that a whole log can be
// expected as one short list of strings.
inline std::vector<std::string> tagged(LogCapture const& capture) {
  std::vector<std::string> tags;
  for (LogLine const& line : capture.lines()) {
    tags.push_back(std::string(1, "DIWE"[line.level - kDebug]) + ":" + line.message);
  }
  return tags;
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_
