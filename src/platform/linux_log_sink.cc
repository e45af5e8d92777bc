#include "platform/linux_log_sink.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/log_capture.h"

namespace Vantis::Location {
namespace {

char levelLetter(int level) {
  switch (level) {
    case kPlatformLogDebug:
      return 'D';
    case kPlatformLogInfo:
      return 'I';
    case kPlatformLogWarn:
      return 'W';
    default:
      return level < kPlatformLogDebug ? 'D' : 'E';
  }
}

std::string formatArguments(const char* fmt, va_list args) {
  std::string out;
  if (fmt == nullptr) {
    return out;
  }
  for (const char* c = fmt; *c != '\0'; ++c) {
    if (*c != '%') {
      out += *c;
      continue;
    }
    const char* directive = c + 1;
    if (*directive == '%') {
      out += '%';
      c = directive;
      continue;
    }
    if (*directive == '{') {
      const char* close = std::strchr(directive, '}');
      if (close == nullptr) {
        out += *c;
        continue;
      }
      directive = close + 1;
    }
    if (*directive != 's') {
      out += *c;
      continue;
    }
    const char* text = va_arg(args, const char*);
    out += text != nullptr ? text : "(null)";
    c = directive;
  }
  return out;
}

// The file named by CORVEX_LOG_FILE, opened for appending, or -1 (also when none is named).
int openLogFile(const char* path) {
  if (path == nullptr || *path == '\0') {
    return -1;
  }
  return ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
}

}  // namespace

LinuxLogSink::LinuxLogSink(int minLevel, int fd) : minLevel_(minLevel), fd_(fd) {}

LinuxLogSink& LinuxLogSink::fromEnvironment() {
  static LinuxLogSink sink = [] {
    int level = parseLevel(std::getenv("CORVEX_LOG_LEVEL"));
    int fd = openLogFile(std::getenv("CORVEX_LOG_FILE"));  // kept open for the process's life
    return LinuxLogSink(level, fd >= 0 ? fd : STDERR_FILENO);
  }();
  return sink;
}

int LinuxLogSink::parseLevel(const char* name) {
  if (name == nullptr) {
    return kPlatformLogWarn;
  }
  struct Named {
    const char* name;
    int level;
  };
  static const Named kLevels[] = {{"debug", kPlatformLogDebug},
                                  {"info", kPlatformLogInfo},
                                  {"warn", kPlatformLogWarn},
                                  {"error", kPlatformLogError},
                                  {"off", kPlatformLogOff}};
  for (const Named& entry : kLevels) {
    if (std::strcmp(name, entry.name) == 0) {
      return entry.level;
    }
  }
  return kPlatformLogWarn;
}

std::vector<std::string> LinuxLogSink::environmentProblems() {
  std::vector<std::string> problems;
  const char* level = std::getenv("CORVEX_LOG_LEVEL");
  if (level != nullptr && parseLevel(level) == kPlatformLogWarn &&
      std::strcmp(level, "warn") != 0) {
    problems.push_back(std::string("CORVEX_LOG_LEVEL '") + level +
                       "' is not one of debug, info, warn, error, off; warn is used");
  }
  const char* path = std::getenv("CORVEX_LOG_FILE");
  int fd = openLogFile(path);
  if (fd >= 0) {
    ::close(fd);
  } else if (path != nullptr && *path != '\0') {
    problems.push_back(std::string("CORVEX_LOG_FILE '") + path + "' cannot be opened (" +
                       std::strerror(errno) + "); stderr is used");
  }
  return problems;
}

std::string LinuxLogSink::formatLine(int level, unsigned int domain, const char* tag,
                                     std::string const& text) {
  char prefix[48];
  std::snprintf(prefix, sizeof prefix, "%c 0x%X/", levelLetter(level), domain);
  std::string line = prefix;
  line += tag != nullptr ? tag : "";
  line += ": ";
  line += text;
  if (line.back() != '\n') {
    line += '\n';
  }
  return line;
}

void LinuxLogSink::write(int level, unsigned int domain, const char* tag, std::string const& text) {
  if (!keeps(level)) {
    return;
  }
  const std::string line = formatLine(level, domain, tag, text);
  std::lock_guard<std::mutex> lock(mutex_);
  const char* data = line.data();
  size_t left = line.size();
  while (left > 0) {
    ssize_t written = ::write(fd_, data, left);
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      return;  // nowhere to report a failing log device
    }
    data += written;
    left -= static_cast<size_t>(written);
  }
}

int PlatformLogPrint(int /*type*/, int level, unsigned int domain, const char* tag, const char* fmt,
                     ...) {
  va_list args;
  va_start(args, fmt);
  std::string text = formatArguments(fmt, args);
  va_end(args);

  int const length = static_cast<int>(text.size());
  if (LogCapture* capture = LogCapture::current()) {
    if (!text.empty() && text.back() == '\n') {
      text.pop_back();
    }
    capture->add(level, std::move(text));
    return length;
  }
  LinuxLogSink::fromEnvironment().write(level, domain, tag, text);
  return length;
}

bool PlatformLogIsLoggable(unsigned int /*domain*/, const char* /*tag*/, int level) {
  if (LogCapture const* capture = LogCapture::current()) {
    return capture->keeps(level);
  }
  return LinuxLogSink::fromEnvironment().keeps(level);
}

}  // namespace Vantis::Location
