// The platform log service of Linux builds.
//
// The algorithmic code never writes diagnostics itself: CorvexTagLogger hands every message
// to PlatformLogPrint, which plays the part of the phone platform's log print call. On
// Linux each call becomes one line
//
//   <L> 0xD002300/Mirelth: <message>
//
// with <L> one of D, I, W, E for levels 3, 4, 5, 6. Lines go to stderr, or are appended to
// the file named by CORVEX_LOG_FILE; CORVEX_LOG_LEVEL (debug, info, warn, error, off;
// default warn) decides what is kept. Both variables are read once, on the first call.
#ifndef CORVEX_PLATFORM_LINUX_LOG_SINK_H_
#define CORVEX_PLATFORM_LINUX_LOG_SINK_H_

#include <mutex>
#include <string>
#include <vector>

namespace Vantis::Location {

enum PlatformLogLevel : int {
  kPlatformLogDebug = 3,
  kPlatformLogInfo = 4,
  kPlatformLogWarn = 5,
  kPlatformLogError = 6,
  kPlatformLogOff = 7,  // threshold only: keeps nothing
};

// Writes complete lines to one file descriptor. Each line is written with a single
// write(2) under a mutex, so lines of concurrent callers never interleave and every line
// has reached the kernel before write() returns.
class LinuxLogSink {
 public:
  // minLevel: lowest level kept (3 to 7). fd: an open, writable descriptor; not owned.
  LinuxLogSink(int minLevel, int fd);

  // Reads CORVEX_LOG_LEVEL and CORVEX_LOG_FILE; falls back to stderr when the file cannot
  // be opened. The process-wide sink is built this way, once.
  static LinuxLogSink& fromEnvironment();

  // Level name as in CORVEX_LOG_LEVEL; null or unknown text gives warn.
  static int parseLevel(const char* name);

  // What fromEnvironment() works around without a word, one sentence each: a CORVEX_LOG_LEVEL
  // that names no level, a CORVEX_LOG_FILE that cannot be opened for appending. For hosts that
  // tell their user; opens and closes the file as the sink would.
  static std::vector<std::string> environmentProblems();

  // "<L> 0x<DOMAIN>/<tag>: " followed by text; a line end is added when text lacks one.
  static std::string formatLine(int level, unsigned int domain, const char* tag,
                                std::string const& text);

  bool keeps(int level) const { return level >= minLevel_; }
  void write(int level, unsigned int domain, const char* tag, std::string const& text);

 private:
  int minLevel_;
  int fd_;
  std::mutex mutex_;
};

// The platform print call. Supports the directives the system uses: "%{public}s",
// "%{private}s" and "%s" each take one const char* argument (a null one prints "(null)"),
// "%%" prints a percent sign; every other character is copied. Arguments are never
// reinterpreted as formats. Lines logged on a thread with a LogCapture go to the capture
// instead of the sink. Returns the number of characters of the formatted text.
int PlatformLogPrint(int type, int level, unsigned int domain, const char* tag, const char* fmt,
                     ...);

// Whether a line of this level would be kept (by the calling thread's LogCapture, if any, or
// else by the sink), so that callers can skip building a message nobody keeps.
bool PlatformLogIsLoggable(unsigned int domain, const char* tag, int level);

}  // namespace Vantis::Location

#endif  // CORVEX_PLATFORM_LINUX_LOG_SINK_H_
