#include "filter/neighbour_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "geometry/normal_distance.h"

namespace Vantis::Location {
namespace {

double const kNaN = std::numeric_limits<double>::quiet_NaN();
double const kInf = std::numeric_limits<double>::infinity();

struct Layout {
  char const* name;
  double origin;  // added to every coordinate
  double step;    // lattice spacing
  double eps;
  double special;  // a coordinate given to one point, 0 for none
};

// Points on a small lattice (so that many pairs sit at exactly eps or a rounding away from
// it), with jitter of a few ulps.
NeighbourGrid makeGrid(Layout const& layout, std::mt19937& random, std::vector<double>& xs,
                       std::vector<double>& ys) {
  std::uniform_int_distribution<int> cell(0, 12);
  std::uniform_int_distribution<int> jitter(-2, 2);
  xs.clear();
  ys.clear();
  for (int i = 0; i < 150; ++i) {
    double x = layout.origin + cell(random) * layout.step;
    double y = layout.origin + cell(random) * layout.step;
    for (int ulps = jitter(random); ulps != 0; ulps += ulps > 0 ? -1 : 1) {
      x = std::nextafter(x, ulps > 0 ? kInf : -kInf);
    }
    xs.push_back(x);
    ys.push_back(y);
  }
  if (layout.special != 0) {
    xs[7] = layout.special;
  }
  return NeighbourGrid(xs, ys, layout.eps);
}

std::vector<Layout> const kLayouts = {
    {"decimal steps at eps", 0, 0.1, 0.3, 0},
    {"far from the origin", 1e6, 0.1, 0.2, 0},
    {"negative coordinates", -5e4, 20, 60, 0},
    {"radius zero", 0, 1e-163, 0, 0},  // squares underflow: all at computed distance 0
    {"tiny radius", 0, 1e-163, 1e-300, 0},
    {"subnormal squares", 0, 1e-158, 1e-157, 0},
    {"radius far below the coordinates", 1e12, 1, 5, 0},
    {"a NaN coordinate", 0, 1, 2, kNaN},
    {"an infinite coordinate", 0, 1, 2, kInf},
    {"infinite radius", 0, 1, kInf, kInf},
};

TEST(NeighbourGrid, NearSearchCoversEveryPointWithinEps) {
  std::mt19937 random(7);
  std::vector<double> xs;
  std::vector<double> ys;
  for (Layout const& layout : kLayouts) {
    NeighbourGrid const grid = makeGrid(layout, random, xs, ys);
    for (size_t centre = 0; centre < xs.size(); ++centre) {
      std::set<size_t> visited;
      grid.forEachNear(centre, [&](size_t j) { return visited.insert(j).second; });
      for (size_t j = 0; j < xs.size(); ++j) {
        bool const within =
            NormalDistance().compute({xs[centre], ys[centre]}, {xs[j], ys[j]}) <= layout.eps;
        ASSERT_EQ(grid.withinEps(centre, j), within) << layout.name;
        ASSERT_TRUE(!within || visited.count(j) == 1) << layout.name << " " << centre << " " << j;
      }
    }
  }
}

TEST(NeighbourGrid, ClaimedPointsLeaveTheUnclaimedSearch) {
  std::mt19937 random(11);
  std::vector<double> xs;
  std::vector<double> ys;
  NeighbourGrid grid = makeGrid(kLayouts[0], random, xs, ys);
  std::set<size_t> claimed;
  for (size_t i = 0; i < xs.size(); i += 3) {
    grid.claim(i);
    grid.claim(i);
    claimed.insert(i);
  }
  for (size_t centre = 0; centre < xs.size(); ++centre) {
    std::multiset<size_t> near;
    std::multiset<size_t> unclaimed;
    grid.forEachNear(centre, [&](size_t j) { return near.insert(j), true; });
    grid.forEachUnclaimedNear(centre, [&](size_t j) { return unclaimed.insert(j), true; });
    for (size_t j : claimed) {
      near.erase(j);
    }
    ASSERT_EQ(unclaimed, near);
  }
  size_t visits = 0;
  grid.forEachNear(0, [&](size_t) { return ++visits < 2; });
  EXPECT_EQ(visits, 2u);
}

}  // namespace
}  // namespace Vantis::Location
