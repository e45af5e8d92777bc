#include "filter/kind_trans_id_filter.h"

#include <gtest/gtest.h>

#include <string>

#include "support/filter_records.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::Ids;
using corvex_test::idsOf;

BleScanInfoWithConfidence ofKind(std::string const& kind, double newConfidence, char const* id) {
  BleScanInfoWithConfidence info = corvex_test::makeRecord(0, 0, 0, 0, 0.5, id);
  info.setKindTransId(kind);
  info.setNewConfidence(newConfidence);
  return info;
}

TEST(KindTransIDFilter, KeepsRecordsWithoutKindThenTheBestOfEachKindInKeyOrder) {
  corvex_test::LogCapture capture;
  EXPECT_EQ(idsOf(KindTransIDFilter::filter({ofKind("0", 0.1, "zero"), ofKind("", 0.1, "none"),
                                             ofKind("B", 0.1, "b"), ofKind("A", 0.2, "a-low"),
                                             ofKind("A", 0.7, "a-high"), ofKind("a", 0.1, "a")})),
            (Ids{"zero", "none", "a-high", "b", "a"}));
  EXPECT_EQ(corvex_test::tagged(capture), Ids{"I:kindTransID A, num: 2"});
}

}  // namespace
}  // namespace Vantis::Location
