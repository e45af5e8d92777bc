// The main calculator when it cannot solve: the newest scan as reported, with its building when
// it may vote, and the code; the records leave in degrees again.
#include "calculator/corvex_tag_position_calculator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/calculator_scan.h"
#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using corvex_test::describe;
using corvex_test::Scan;
using Infos = std::vector<BleScanInfoWithConfidence>;

constexpr long long kNow = 1700000000000;

// count scans about a metre apart along east, a minute apart, the newest last at kNow and in
// building B7.
Infos row(int count, int rssi = -70, int locationType = 0) {
  Infos infos;
  for (int i = 0; i < count; ++i) {
    long long const time = kNow - (count - 1 - i) * 60000LL;
    infos.push_back(
        Scan{116.4 + i * 1e-5, 39.9, time, rssi, 0.9, 0.5, 10, 0, locationType}.inDegrees());
  }
  infos.back().getLastLocation().setIndoorInfo(0, "B7", 4, 12, "4F");
  return infos;
}

TEST(CorvexTagPositionCalculator, FailuresReturnTheNewestScanWithTheirCode) {
  struct Case {
    char const* name;
    Infos infos;
    ErrorCode code;
    std::vector<std::string> errors;
    bool votes;            // the newest scan is trusted enough to vote on its building
    double newConfidence;  // left on the records; 0.5 when they were never scored
  } cases[] = {
      {"over the limit",
       row(5001),
       ErrorCode::INPUT_INFO_OVER_LIMIT,
       {"infos size exceed limit"},
       true,
       0.5},
      // Outdoors below -120 dBm: no proactive satellite fix to judge cohesion on, all scores 0.
      {"all faint outdoors",
       row(3, -125, 1),
       ErrorCode::CONFIDENCE_ERROR,
       {"infos == null or is empty", "All of new confidences are 0"},
       false,
       0.0},
  };
  for (Case& c : cases) {
    SCOPED_TRACE(c.name);
    Infos const given = c.infos;
    corvex_test::LogCapture capture;
    TagBestLocation const result = CorvexTagPositionCalculator().getPosition(c.infos);
    EXPECT_EQ(capture.messages(corvex_test::kError), c.errors);
    LastLocation const& newest = given.back().getLastLocationConst();
    TagBestLocation expected(newest.getLon(), newest.getLat(), kNow, 0.9, 10.0f);
    expected.setRunTimeStamp(kNow);
    expected.setErrorCode(c.code);
    if (c.votes) {
      expected.setIndoorFlag(1);
      expected.setGeoId("B7");
      expected.setFloorId(4);
      expected.setFloorAcc(12);
    }
    EXPECT_EQ(describe(result), describe(expected));
    EXPECT_EQ(result.getLon(), newest.getLon());
    for (std::size_t i = 0; i < c.infos.size(); i += 1000) {
      EXPECT_NEAR(c.infos[i].getLastLocationConst().getLat(),
                  given[i].getLastLocationConst().getLat(), 1e-9);
      EXPECT_EQ(c.infos[i].getNewConfidence(), c.newConfidence);
    }
  }
  corvex_test::LogCapture quiet;
  Infos none;
  EXPECT_EQ(CorvexTagPositionCalculator().getPosition(none).getErrorCode(),
            ErrorCode::INPUT_INFO_EMPTY);
  Infos fiveThousand = row(5000);
  EXPECT_EQ(CorvexTagPositionCalculator().getPosition(fiveThousand).getErrorCode(),
            ErrorCode::SUCCESS);
}

}  // namespace
}  // namespace Vantis::Location
