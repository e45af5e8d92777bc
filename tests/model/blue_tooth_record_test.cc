#include "model/blue_tooth_record.h"

#include <gtest/gtest.h>

namespace Vantis::Location {
namespace {

TEST(BlueToothRecord, OrdersByTimeThenMacThenRssiThenName) {
  struct Case {
    BlueToothRecord lower;
    BlueToothRecord higher;
  } const cases[] = {
      {{"z", "Z", 1, 0}, {"a", "A", 2, -90}},     // time decides first
      {{"z", "A", 5, 0}, {"a", "B", 5, -90}},     // then mac, whatever the rssi
      {{"z", "A", 5, -90}, {"a", "A", 5, -80}},   // then rssi
      {{"a", "A", 5, -80}, {"b", "A", 5, -80}},   // then name
      {{"", "A", 5, 0}, {"", "AA", 5, 0}},        // a prefix comes first
      {{"", "z", 5, 0}, {"", "\xC3\xA9", 5, 0}},  // bytes compare unsigned
  };
  for (Case const& c : cases) {
    EXPECT_TRUE(c.lower < c.higher) << c.lower.toString();
    EXPECT_FALSE(c.higher < c.lower) << c.lower.toString();
    EXPECT_FALSE(c.lower == c.higher) << c.lower.toString();
  }
}

}  // namespace
}  // namespace Vantis::Location
