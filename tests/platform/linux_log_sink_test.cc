#include "platform/linux_log_sink.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
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

TEST(LinuxLogSink, FormatsOneLinePerLevelAndParsesLevelNamesWithWarnAsDefault) {
  struct Case {
    char const* name;  // as in CORVEX_LOG_LEVEL
    int level;
    char const* line;  // of the text "hello\n" at that level
  } const cases[] = {
      {"debug", 3, "D 0xD002300/Mirelth: hello\n"},
      {"info", 4, "I 0xD002300/Mirelth: hello\n"},
      {"warn", 5, "W 0xD002300/Mirelth: hello\n"},
      {"error", 6, "E 0xD002300/Mirelth: hello\n"},
      {"off", 7, nullptr},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(LinuxLogSink::parseLevel(c.name), c.level);
    if (c.line != nullptr) {
      EXPECT_EQ(LinuxLogSink::formatLine(c.level, 0xD002300, "Mirelth", "hello\n"), c.line);
    }
  }
  EXPECT_EQ(LinuxLogSink::parseLevel(nullptr), 5);
  EXPECT_EQ(LinuxLogSink::parseLevel("verbose"), 5);
  EXPECT_EQ(LinuxLogSink::formatLine(6, 0xD002300, "Mirelth", "no newline"),
            "E 0xD002300/Mirelth: no newline\n");
}

// The log file is created readable by all, and one that cannot be opened is told.
TEST(LinuxLogSink, CreatesTheLogFileWithMode0644OrTellsWhyNot) {
  std::string const path = "/tmp/corvex_log_mode_" + std::to_string(getpid());
  char const* const given = std::getenv("CORVEX_LOG_FILE");
  std::string const saved = given != nullptr ? given : "";
  mode_t const mask = umask(0);
  setenv("CORVEX_LOG_FILE", path.c_str(), 1);
  EXPECT_TRUE(LinuxLogSink::environmentProblems().empty());
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0644u);
  std::remove(path.c_str());
  setenv("CORVEX_LOG_FILE", "/", 1);
  EXPECT_EQ(LinuxLogSink::environmentProblems(),
            std::vector<std::string>{"CORVEX_LOG_FILE '/' cannot be opened (Is a directory); "
                                     "stderr is used"});
  given != nullptr ? setenv("CORVEX_LOG_FILE", saved.c_str(), 1) : unsetenv("CORVEX_LOG_FILE");
  umask(mask);
}

// The lines a sink keeping minLevel and up writes while `use` runs.
std::vector<std::string> written(int minLevel, std::function<void(LinuxLogSink&)> const& use) {
  FILE* file = std::tmpfile();
  LinuxLogSink sink(minLevel, fileno(file));
  use(sink);
  std::rewind(file);
  std::vector<std::string> lines;
  for (char line[1024]; std::fgets(line, sizeof line, file) != nullptr;) {
    lines.emplace_back(line, std::strcspn(line, "\n"));
  }
  std::fclose(file);
  return lines;
}

TEST(LinuxLogSink, DropsLinesBelowItsLevel) {
  EXPECT_EQ(written(kPlatformLogWarn,
                    [](LinuxLogSink& sink) {
                      sink.write(kPlatformLogInfo, 0xD002300, "Mirelth", "dropped\n");
                      sink.write(kPlatformLogError, 0xD002300, "Mirelth", "kept 100%\n");
                    }),
            std::vector<std::string>{"E 0xD002300/Mirelth: kept 100%"});
}

TEST(LinuxLogSink, ConcurrentLinesNeverInterleave) {
  constexpr int kThreads = 8;
  constexpr int kLinesPerThread = 200;
  std::vector<std::string> const lines = written(kPlatformLogDebug, [](LinuxLogSink& sink) {
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&sink, t] {
        std::string const text(300, static_cast<char>('a' + t));
        for (int i = 0; i < kLinesPerThread; ++i) {
          sink.write(kPlatformLogInfo, 0xD002300, "Mirelth", text);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  });
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
