#include "support/log_capture.h"

#include <ostream>

namespace corvex_test {

std::vector<LogLine> LogCapture::lines() const {
  std::vector<LogLine> out;
  for (auto const& line : capture_.lines()) {
    out.push_back({line.level, line.message});
  }
  return out;
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

// Readable failure output for EXPECT_EQ on lines.
void PrintTo(LogLine const& line, std::ostream* os) {
  *os << "{" << line.level << ", \"" << line.message << "\"}";
}

}  // namespace corvex_test
