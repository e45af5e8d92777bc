#include "calculator/kmeans_old.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using Lines = std::vector<std::string>;

TEST(KmeansOld, ReturnsTheOriginWhenItCannotRun) {
  std::vector<Point> none;
  std::vector<Point> points = {Point(1, 10, 7), Point(2, 20, 8), Point(3, 30, 9)};
  corvex_test::LogCapture capture;
  EXPECT_TRUE(KmeansOld::getCorePoint(none, 1, 10) == Point(0, 0));
  EXPECT_EQ(capture.messages(corvex_test::kError), Lines{"points list is empty!"});
  for (int k : {4, 0, -2}) EXPECT_TRUE(KmeansOld::getCorePoint(points, k, 10) == Point(0, 0)) << k;
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
  EXPECT_EQ(KmeansOld::kmeans(few, centers, 3, 5)[1].getLat(), 1.0);
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
