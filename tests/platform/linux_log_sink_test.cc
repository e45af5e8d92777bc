#include "platform/linux_log_sink.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "interface/corvex_tag_logger.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogCapture;
using corvex_test::LogLine;

TEST(LinuxLogSink, FormatsOneLinePerLevel) {
  struct Case {
    int level;
    const char* expected;
  } const cases[] = {
      {3, "D 0xD002300/Mirelth: hello\n"},
      {4, "I 0xD002300/Mirelth: hello\n"},
      {5, "W 0xD002300/Mirelth: hello\n"},
      {6, "E 0xD002300/Mirelth: hello\n"},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(LinuxLogSink::formatLine(c.level, 0xD002300, "Mirelth", "hello\n"), c.expected);
  }
  EXPECT_EQ(LinuxLogSink::formatLine(6, 0xD002300, "Mirelth", "no newline"),
            "E 0xD002300/Mirelth: no newline\n");
}

TEST(LinuxLogSink, ParsesLevelNamesWithWarnAsDefault) {
  EXPECT_EQ(LinuxLogSink::parseLevel("debug"), 3);
  EXPECT_EQ(LinuxLogSink::parseLevel("info"), 4);
  EXPECT_EQ(LinuxLogSink::parseLevel("warn"), 5);
  EXPECT_EQ(LinuxLogSink::parseLevel("error"), 6);
  EXPECT_EQ(LinuxLogSink::parseLevel("off"), 7);
  EXPECT_EQ(LinuxLogSink::parseLevel(nullptr), 5);
  EXPECT_EQ(LinuxLogSink::parseLevel("verbose"), 5);
}

class TempFile {
 public:
  TempFile() {
    char name[] = "/tmp/corvex_log_XXXXXX";
    fd_ = mkstemp(name);
    path_ = name;
  }
  ~TempFile() {
    close(fd_);
    std::remove(path_.c_str());
  }
  int fd() const { return fd_; }
  std::vector<std::string> lines() const {
    std::ifstream in(path_);
    std::vector<std::string> out;
    for (std::string line; std::getline(in, line);) {
      out.push_back(line);
    }
    return out;
  }

 private:
  int fd_;
  std::string path_;
};

TEST(LinuxLogSink, DropsLinesBelowItsLevel) {
  TempFile file;
  LinuxLogSink sink(kPlatformLogWarn, file.fd());
  sink.write(kPlatformLogInfo, 0xD002300, "Mirelth", "dropped\n");
  sink.write(kPlatformLogError, 0xD002300, "Mirelth", "kept 100%\n");
  EXPECT_EQ(file.lines(), std::vector<std::string>{"E 0xD002300/Mirelth: kept 100%"});
}

TEST(LinuxLogSink, ConcurrentLinesNeverInterleave) {
  TempFile file;
  LinuxLogSink sink(kPlatformLogDebug, file.fd());
  constexpr int kThreads = 8;
  constexpr int kLinesPerThread = 200;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&sink, t] {
      std::string text(300, static_cast<char>('a' + t));
      for (int i = 0; i < kLinesPerThread; ++i) {
        sink.write(kPlatformLogInfo, 0xD002300, "Mirelth", text);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::vector<std::string> lines = file.lines();
  ASSERT_EQ(lines.size(), static_cast<size_t>(kThreads * kLinesPerThread));
  for (std::string const& line : lines) {
    std::string body = line.substr(std::string("I 0xD002300/Mirelth: ").size());
    EXPECT_EQ(std::set<char>(body.begin(), body.end()).size(), 1u) << line;
  }
}

TEST(PlatformLogPrint, NeverInterpretsTheMessageAsFormat) {
  LogCapture capture;
  PlatformLogPrint(3, 6, 0xD002300, "Mirelth", "%{public}s\n", "50% %s %d");
  PlatformLogPrint(3, 4, 0xD002300, "Mirelth", "%{public}s\n", "");
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{6, "50% %s %d"}, {4, ""}}));
}

TEST(CorvexTagLogger, ForwardsEachLevelUnchanged) {
  LogCapture capture;
  CorvexTagLogger& logger = CorvexTagLogger::getInstance();
  logger.debug("d");
  logger.info(" leading blank");
  logger.warn("w");
  logger.error("100%");
  EXPECT_EQ(capture.lines(),
            (std::vector<LogLine>{{3, "d"}, {4, " leading blank"}, {5, "w"}, {6, "100%"}}));
  EXPECT_EQ(&logger, &CorvexTagLogger::getInstance());
}

}  // namespace
}  // namespace Vantis::Location
