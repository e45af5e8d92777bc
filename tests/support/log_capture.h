// Captures the library's log lines in-process for the lifetime of the object.
#ifndef CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_
#define CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

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
  LogCapture();
  ~LogCapture();
  LogCapture(LogCapture const&) = delete;
  LogCapture& operator=(LogCapture const&) = delete;

  std::vector<LogLine> lines() const;
  std::vector<std::string> messages() const;
  // Messages logged at one level only.
  std::vector<std::string> messages(int level) const;
  void clear();

 private:
  static void record(void* context, int level, std::string const& message);

  mutable std::mutex mutex_;
  std::vector<LogLine> lines_;
};

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_LOG_CAPTURE_H_
