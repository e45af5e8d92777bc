// Whole calls of the entry point over generated tags (whole_calls.csv, written by
// scripts/make_whole_calls.py): groups of phones near and far, recent and hours old, satellite,
// network and indoor fixes, faint signals, moved tags and odd values. Every result field (bit
// for bit), the trace log and every log line at debug level of each call must be as recorded
// in whole_calls.expected. The record pins the whole pipeline: each filter stage, the
// clustering, both algorithms and both solvers, the cluster choices, the indoor vote and the
// moved-tag rule, with the log lines that tell each step. After a deliberate change of results
// or log lines, rewrite it with `/usr/bin/python3 scripts/make_whole_calls.py --update` and
// review the diff.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/aggregate_call.h"
#include "support/log_capture.h"
#include "support/whole_call_tags.h"

namespace corvex_test {
namespace {

std::string const kRecord = CORVEX_SOURCE_DIR "/tests/interface/whole_calls.expected";

// One call as text: the result's fields (doubles with 17 digits, so that equal text means
// equal bits), the trace log and the log lines with their level letters.
std::string locate(Tag const& tag) {
  LogCapture capture;
  AggregateCall const call = callGetAggregateLocation(tag.infos);
  AggregateLocationResult const& r = call.result;
  char fields[400];
  std::snprintf(fields, sizeof fields,
                "code %d time %lld run %lld lon %.17g lat %.17g confidence %.17g acc %.9g\n"
                "indoor %d floorId %d floorAcc %d ",
                call.code, static_cast<long long>(r.timeStamp),
                static_cast<long long>(r.runTimeStamp), r.lon, r.lat, r.confidence,
                static_cast<double>(r.acc), r.indoorFlag, r.floorId, r.floorAcc);
  std::string text = "== " + tag.name + "\n" + fields + "geoId '" + call.geoId + "' floorInfo '" +
                     call.floorInfo + "'\n" + call.traceLog + "\n";
  for (LogLine const& line : capture.lines()) {
    text += std::string(1, "DIWE"[line.level - kDebug]) + " " + line.message + "\n";
  }
  return text;
}

std::vector<std::string> recorded() {
  std::ifstream in(kRecord);
  std::vector<std::string> calls;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("== ", 0) == 0) calls.emplace_back();
    if (!calls.empty()) calls.back() += line + "\n";
  }
  return calls;
}

void expectRecorded(std::vector<std::string> const& answers) {
  std::vector<std::string> const expected = recorded();
  ASSERT_EQ(answers.size(), expected.size());
  for (size_t i = 0; i < answers.size(); ++i) {
    ASSERT_EQ(answers[i], expected[i]);  // the first call that differs, as a diff
  }
}

TEST(WholeCalls, AnswersAndLogLinesAreAsRecorded) {
  std::vector<Tag> const tags = wholeCallTags();
  std::vector<std::string> answers;
  for (Tag const& tag : tags) {
    std::vector<AggregateScanInfo> const given = tag.infos;
    answers.push_back(locate(tag));
    // The caller's records stay as they were, however the library sorts and repairs its own.
    ASSERT_EQ(std::memcmp(given.data(), tag.infos.data(), given.size() * sizeof given[0]), 0);
  }
  if (std::getenv("CORVEX_UPDATE_WHOLE_CALLS") != nullptr) {
    std::ofstream out(kRecord);
    for (std::string const& answer : answers) out << answer;
    return;
  }
  EXPECT_EQ(tags.size(), 160u);
  expectRecorded(answers);
}

// Calls share no state: threads that run every call, each starting elsewhere so that
// different calls overlap, give the recorded answers and lines.
TEST(WholeCalls, ConcurrentCallsAnswerAsSequentialOnes) {
  std::vector<Tag> const tags = wholeCallTags();
  constexpr size_t kThreads = 3;
  std::vector<std::vector<std::string>> answers(kThreads, std::vector<std::string>(tags.size()));
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&tags, &answers, t] {
      for (size_t k = 0; k < tags.size(); ++k) {
        size_t const i = (k + t * tags.size() / kThreads) % tags.size();
        answers[t][i] = locate(tags[i]);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::vector<std::string> const& each : answers) expectRecorded(each);
}

// Records with distinct scan times and confidences have one order after the library's sorts,
// so the order the caller gives them in cannot matter.
TEST(WholeCalls, RecordOrderDoesNotMatterWhenTimesAndConfidencesDiffer) {
  int checked = 0;
  for (Tag tag : wholeCallTags()) {
    std::set<long long> times;
    std::set<double> confidences;
    for (AggregateScanInfo const& info : tag.infos) {
      times.insert(info.timeStamp);
      if (!std::isnan(info.confidence)) confidences.insert(info.confidence);
    }
    if (times.size() < tag.infos.size() || confidences.size() < tag.infos.size()) continue;
    std::string const answer = locate(tag);
    std::reverse(tag.infos.begin(), tag.infos.end());
    EXPECT_EQ(locate(tag), answer);
    std::rotate(tag.infos.begin(), tag.infos.begin() + tag.infos.size() / 3, tag.infos.end());
    EXPECT_EQ(locate(tag), answer);
    ++checked;
  }
  EXPECT_GE(checked, 60);
}

}  // namespace
}  // namespace corvex_test
