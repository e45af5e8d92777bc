#include "calculator/kmeans_old.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/tagged_lines.h"

namespace Vantis::Location {
namespace {

using corvex_test::tagged;
using Lines = std::vector<std::string>;

Point pointWithAcc(double lon, double lat, int id, float acc) {
  Point point(lon, lat, id);
  point.setAcc(acc);
  return point;
}

// The most accurate point is the second; its position also replaces points[0].
std::vector<Point> threePoints() {
  return {pointWithAcc(1, 10, 7, 5), pointWithAcc(2, 20, 8, 1), pointWithAcc(3, 30, 9, 9)};
}

TEST(KmeansOld, SingleCentreAveragesItsStartWithAllPointsOverCountPlusOne) {
  struct Case {
    int maxIter;
    double lon, lat;
  } const cases[] = {
      {0, 2, 20},         // the most accurate point
      {1, 2.25, 22.5},    // (2 + 2 + 2 + 3) / 4, (20 + 20 + 20 + 30) / 4
      {2, 2.375, 23.75},  // (2.25 + 2.25 + 2 + 3) / 4
      {-1, 2, 20},
  };
  for (Case const& c : cases) {
    std::vector<Point> points = threePoints();
    Point const core = KmeansOld::getCorePoint(points, 1, c.maxIter);
    EXPECT_TRUE(core == Point(c.lon, c.lat, 7)) << c.maxIter;  // id and the rest from points[0]
    // The caller's first point now holds the centre.
    EXPECT_TRUE(points[0] == Point(c.lon, c.lat, 7)) << c.maxIter;
    EXPECT_EQ(points[1].getLon(), 2);
  }
  // Of equally accurate points the first is the start.
  std::vector<Point> points = {pointWithAcc(1, 1, 0, 4), pointWithAcc(2, 2, 1, 3),
                               pointWithAcc(5, 5, 2, 3)};
  Point const core = KmeansOld::getCorePoint(points, 1, 0);
  EXPECT_EQ(core.getLon(), 2);
  EXPECT_EQ(core.getAcc(), 4);
}

TEST(KmeansOld, LogsItsStepsAndReturnsTheOriginWhenItCannotRun) {
  std::vector<Point> none;
  std::vector<Point> points = threePoints();
  corvex_test::LogCapture capture;
  EXPECT_TRUE(KmeansOld::getCorePoint(none, 1, 10) == Point(0, 0));
  for (int k : {4, 0, -2}) EXPECT_TRUE(KmeansOld::getCorePoint(points, k, 10) == Point(0, 0)) << k;
  KmeansOld::getCorePoint(points, 1, 10);
  EXPECT_EQ(tagged(capture), (Lines{"I:getCorePoint", "E:points list is empty!", "I:getCorePoint",
                                    "I:applyKmeansInner", "I:getCorePoint", "I:applyKmeansInner",
                                    "I:getCorePoint", "I:applyKmeansInner", "I:getCorePoint",
                                    "I:applyKmeansInner", "I:kmeans", "I:points size 3"}));
}

TEST(KmeansOld, CentresWithoutPointsStayAndOthersKeepTheirOldPositionAsASample) {
  std::vector<Point> points = {Point(0, 0, 0), Point(0, 0.001, 1), Point(0, 1, 2)};
  std::vector<Point> centers = {Point(0, 0), Point(0, 1), Point(50, 50)};
  std::vector<Point> const result = KmeansOld::kmeans(points, centers, 3, 1);
  ASSERT_EQ(result.size(), 3u);
  EXPECT_EQ(result[0].getLat(), 0.001 / 3);
  EXPECT_EQ(result[1].getLat(), 1.0);  // (1 + 1) / 2
  EXPECT_EQ(result[2].getLat(), 50.0);
  EXPECT_EQ(points[0].getLat(), 0.001 / 3);
  // Fewer points than centres: no round.
  std::vector<Point> few = {Point(1, 1)};
  corvex_test::LogCapture capture;
  EXPECT_EQ(KmeansOld::kmeans(few, centers, 3, 5)[1].getLat(), 1.0);
  EXPECT_EQ(tagged(capture), Lines{"I:kmeans"});
}

TEST(KmeansOld, FindCenterPicksTheNearestAndTheEarliestOfEquals) {
  std::vector<Point> const points = {Point(0, 0), Point(0, 0.9)};
  std::vector<Point> const centers = {Point(0, 1), Point(0, 0.0001), Point(0, -0.0001)};
  std::vector<int> assign(2, -1);
  KmeansOld::findCenter(points, centers, assign, 0);  // 11 m to both centres 1 and 2
  KmeansOld::findCenter(points, centers, assign, 1);
  EXPECT_EQ(assign, (std::vector<int>{1, 0}));
}

}  // namespace
}  // namespace Vantis::Location
