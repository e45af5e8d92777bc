// Captured log lines written as "<level letter>:<message>" (D, I, W or E), so that a whole log
// can be expected as one short list of strings.
#ifndef CORVEX_TESTS_SUPPORT_TAGGED_LINES_H_
#define CORVEX_TESTS_SUPPORT_TAGGED_LINES_H_

#include <string>
#include <vector>

#include "support/log_capture.h"

namespace corvex_test {

inline std::vector<std::string> tagged(LogCapture const& capture) {
  std::vector<std::string> tags;
  for (LogLine const& line : capture.lines()) {
    char const letter = line.level >= kDebug && line.level <= kError ? "DIWE"[line.level - 3] : '?';
    tags.push_back(std::string(1, letter) + ":" + line.message);
  }
  return tags;
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_TAGGED_LINES_H_
