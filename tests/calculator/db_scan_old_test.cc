#include "calculator/db_scan_old.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/log_capture.h"

namespace Vantis::Location {
namespace {

using Ids = std::vector<int>;
using Lines = std::vector<std::string>;

Ids idsOf(std::vector<Point> const& points) {
  Ids ids;
  for (Point const& point : points) ids.push_back(point.getId());
  return ids;
}

TEST(DBScanOld, NeighboursMustBeCloserThanEpsInWholeMetres) {
  struct Case {
    double latOffset, metres;
    Ids kept;
  } const cases[] = {
      {0.00089, 99, {0, 1}},  // 98.97 m
      {0.000895, 100, {0}},   // 99.53 m rounds up to the radius
      {0.0009, 100, {0}},     // 100.08 m
  };
  for (Case const& c : cases) {
    std::vector<Point> points = {Point(0, 0, 0), Point(0, c.latOffset, 1)};
    ASSERT_EQ(points[0].getDistanceGNSS(points[1]), c.metres);
    EXPECT_EQ(idsOf(DBScanOld::getFilteredPointList(points, 100.0, 3)), c.kept) << c.latOffset;
  }
  // A point with minPts neighbours, itself included, is a key point.
  std::vector<Point> three = {Point(0, 0, 0), Point(0, 0.0001, 1), Point(0.0001, 0, 2)};
  for (int minPts : {3, 4}) {
    Point centre = three[0];
    DBScanOld::getKeyPoint(three, centre, 100.0, minPts);
    EXPECT_EQ(centre.isKey(), minPts == 3);
  }
}

TEST(DBScanOld, GroupsSharingAPointMergeAndTheEarliestLargestWins) {
  // 0 and 2 are 133 m apart; 1 lies 67 m from each.
  std::vector<Point> points = {Point(0, 0, 0), Point(0, 0.0012, 2), Point(0, 0.0006, 1)};
  std::vector<std::vector<Point>> groups = DBScanOld::applyDbScanInner(points, 100.0, 3);
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_EQ(idsOf(groups[0]), (Ids{0, 1, 2}));  // with the shared point once
  EXPECT_TRUE(groups[1].empty());
  for (Point const& point : points) EXPECT_TRUE(point.isClassed());
  // Three separate spots: a single point, then two pairs.
  std::vector<Point> spots = {Point(1, 1, 0), Point(0, 0, 1), Point(0, 0.0001, 2), Point(2, 2, 3),
                              Point(2, 2.0001, 4)};
  EXPECT_EQ(idsOf(DBScanOld::getFilteredPointList(spots, 100.0, 3)), (Ids{1, 2}));
}

TEST(DBScanOld, MergeListNeedsASharedPoint) {
  std::vector<Point> a = {Point(0, 0, 0), Point(1, 1, 1)};
  EXPECT_FALSE(DBScanOld::mergeList(a, {}));
  EXPECT_FALSE(DBScanOld::mergeList(a, {Point(1, 1, 5)}));  // same place, other id
  EXPECT_EQ(a.size(), 2u);
  EXPECT_TRUE(DBScanOld::mergeList(a, {Point(3, 3, 3), Point(1, 1, 1), Point(2, 2, 2)}));
  EXPECT_EQ(idsOf(a), (Ids{0, 1, 3, 2}));
  DBScanOld::setListClassed(a);
  for (Point const& point : a) EXPECT_TRUE(point.isClassed());
}

TEST(DBScanOld, EmptyOrUnmeasurableInputGivesAnEmptyListWithAnError) {
  struct Case {
    std::vector<Point> points;
    Lines log;
  } cases[] = {
      {{}, {"I:getFilteredPointList", "E:points is empty!"}},
      {{Point(0, NAN, 0), Point(INFINITY, 1, 1)},
       {"I:getFilteredPointList", "I:applyDbScanInner: result size 0", "E:dbscanResult is empty."}},
  };
  for (Case& c : cases) {
    corvex_test::LogCapture capture;
    EXPECT_TRUE(DBScanOld::getFilteredPointList(c.points, 100.0, 3).empty());
    EXPECT_EQ(corvex_test::tagged(capture), c.log);
  }
}

}  // namespace
}  // namespace Vantis::Location
