#include "geometry/point.h"

#include <gtest/gtest.h>

namespace Vantis::Location {
namespace {

TEST(Point, HaversineUsesTruncatedPiAndRoundsToWholeMetres) {
  EXPECT_EQ(Point::rad(180.0), 3.1415926);
  struct Case {
    Point a;
    Point b;
    double metres;
  } const cases[] = {
      {{0, 0}, {0, 0}, 0},
      {{0, 0}, {0, 1}, 111202},  // 111201.78 before rounding
      {{0, 1}, {0, 0}, 111202},
      {{0, 0}, {0, 0.00001}, 1},  // 1.11 m
  };
  for (Case const& c : cases) {
    EXPECT_EQ(c.a.getDistanceGNSS(c.b), c.metres) << c.b.getLat();
  }
}

TEST(Point, EqualityIgnoresMarksClusterAndAcc) {
  Point a(1, 2, 3);
  Point b(1, 2, 3);
  b.setVisit(true);
  b.setCluster(4);
  b.setAcc(9);
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a == Point(1, 2, 4));
  EXPECT_FALSE(a == Point(1, 2.5, 3));
  EXPECT_EQ(Point(3, 4).getDistance(Point()), 5.0);
}

}  // namespace
}  // namespace Vantis::Location
