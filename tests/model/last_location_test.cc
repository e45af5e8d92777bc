#include "model/last_location.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>

namespace Vantis::Location {
namespace {

TEST(LastLocation, OrdersByItsOwnFieldListIgnoringFloorInfo) {
  using Tweak = void (*)(LastLocation&);
  // Each tweak raises one field, in comparison order: a raised earlier field outweighs any later.
  Tweak const tweaks[] = {
      [](LastLocation& l) { l.setTimeStamp(1); },
      [](LastLocation& l) { l.setLat(1); },
      [](LastLocation& l) { l.setLon(1); },
      [](LastLocation& l) { l.setAcc(1); },
      [](LastLocation& l) { l.setSpeed(1); },
      [](LastLocation& l) { l.setBearing(1); },
      [](LastLocation& l) { l.setLocationType(1); },
      [](LastLocation& l) { l.setLocationSourceType(1); },
      [](LastLocation& l) { l.setIndoorFlag(1); },
      [](LastLocation& l) { l.setGeoId("b"); },
      [](LastLocation& l) { l.setFloorId(1); },
      [](LastLocation& l) { l.setFloorAcc(1); },
      [](LastLocation& l) { l.setEnu(true); },
  };
  LastLocation const base(0, 0, 0, 0, 0);
  for (size_t i = 0; i < std::size(tweaks); ++i) {
    LastLocation raised = base;
    tweaks[i](raised);
    EXPECT_TRUE(base < raised) << i;
    EXPECT_FALSE(raised < base) << i;
    EXPECT_FALSE(base == raised) << i;
    for (size_t j = i + 1; j < std::size(tweaks); ++j) {
      LastLocation raisedLater = base;
      tweaks[j](raisedLater);
      EXPECT_TRUE(raisedLater < raised) << i << " vs " << j;
    }
  }

  LastLocation otherFloor = base;
  otherFloor.setFloorInfo("F2");
  EXPECT_TRUE(base == otherFloor);
  EXPECT_FALSE(base < otherFloor || otherFloor < base);
  // A NaN field passes the decision on, and its location is unequal to itself.
  double const nan = std::numeric_limits<double>::quiet_NaN();
  LastLocation a(1.0, nan, 0, 0, 0);
  LastLocation b(2.0, nan, 0, 0, 0);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a == a);
}

}  // namespace
}  // namespace Vantis::Location
