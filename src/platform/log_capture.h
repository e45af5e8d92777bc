// Per-call collection of log lines.
//
// While a LogCapture lives, every line that the library logs on the thread that created it
// goes into the capture instead of the sink: a host that runs several calls at once (the
// corvex tool, the Python package) gets each call's own lines, in the order they were
// logged, and can print or forward them as it likes. Captures nest: the innermost one of a
// thread takes the lines, and destroying it makes the enclosing one current again.
#ifndef CORVEX_PLATFORM_LOG_CAPTURE_H_
#define CORVEX_PLATFORM_LOG_CAPTURE_H_

#include <string>
#include <vector>

namespace Vantis::Location {

class LogCapture {
 public:
  struct Line {
    int level;            // platform level, 3 (debug) to 6 (error)
    std::string message;  // as logged, without a line end
    bool operator==(Line const& other) const {
      return level == other.level && message == other.message;
    }
  };

  // minLevel: lowest level kept (3 debug to 7 off); lines below it are dropped, not written.
  explicit LogCapture(int minLevel);
  ~LogCapture();
  LogCapture(LogCapture const&) = delete;
  LogCapture& operator=(LogCapture const&) = delete;

  // The capture the calling thread's lines go to, or null.
  static LogCapture* current();

  bool keeps(int level) const { return level >= minLevel_; }
  void add(int level, std::string message);
  std::vector<Line> const& lines() const { return lines_; }
  // Hands the lines collected so far to the caller and starts afresh.
  std::vector<Line> take();

 private:
  int minLevel_;
  std::vector<Line> lines_;
  LogCapture* enclosing_;  // the thread's current capture when this one was made
};

}  // namespace Vantis::Location

#endif  // CORVEX_PLATFORM_LOG_CAPTURE_H_
