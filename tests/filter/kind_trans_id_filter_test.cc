#include "filter/kind_trans_id_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::LogLine;

BleScanInfoWithConfidence ofKind(std::string const& kind, double newConfidence,
                                 std::string const& id) {
  BleScanInfoWithConfidence info = corvex_test::tagged(corvex_test::makeRecord(0, 0), id);
  info.setKindTransId(kind);
  info.setNewConfidence(newConfidence);
  return info;
}

TEST(KindTransIDFilter, KeepsRecordsWithoutKindThenTheBestOfEachKindInKeyOrder) {
  corvex_test::LogCapture capture;
  std::vector<BleScanInfoWithConfidence> const kept = KindTransIDFilter::filter(
      {ofKind("0", 0.1, "zero"), ofKind("", 0.1, "none"), ofKind("B", 0.1, "b"),
       ofKind("A", 0.2, "a-low"), ofKind("A", 0.7, "a-high"), ofKind("a", 0.1, "lower-a")});
  EXPECT_EQ(corvex_test::idsOf(kept),
            (std::vector<std::string>{"zero", "none", "a-high", "b", "lower-a"}));
  EXPECT_EQ(capture.lines(), (std::vector<LogLine>{{corvex_test::kInfo, "kindTransID A, num: 2"}}));
}

TEST(KindTransIDFilter, RefusesEmptyInput) {
  corvex_test::LogCapture capture;
  EXPECT_TRUE(KindTransIDFilter::filter({}).empty());
  EXPECT_EQ(capture.lines(),
            (std::vector<LogLine>{{corvex_test::kError, "infos == null or empty"}}));
}

}  // namespace
}  // namespace Vantis::Location
