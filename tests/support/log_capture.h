// Captures the library's log lines of the calling thread for the lifetime of the object.
#ifndef CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_
#define CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <iosfwd>
#include <string>
#include <vector>

#include "platform/log_capture.h"

namespace corvex_test {

struct LogLine {
  int level;
  std::string message;

  bool operator==(LogLine const& other) const {
    return level == other.level && message == other.message;
  }
};

void PrintTo(LogLine const& line, std::ostream* os);

// Level shorthands matching the platform levels.
constexpr int kDebug = 3;
constexpr int kInfo = 4;
constexpr int kWarn = 5;
constexpr int kError = 6;

class LogCapture {
 public:
  std::vector<LogLine> lines() const;
  std::vector<std::string> messages() const;
  // Messages logged at one level only.
  std::vector<std::string> messages(int level) const;
  void clear() { capture_.take(); }

 private:
  Vantis::Location::LogCapture capture_{kDebug};
};

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_
