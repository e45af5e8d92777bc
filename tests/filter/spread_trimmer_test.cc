#include "filter/spread_trimmer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "support/literal_spread_trim.h"

namespace Vantis::Location {
namespace {

using Vector = std::vector<double>;

// Point sets built to sit on the edges of the bounds: lattices (exact ties of distance, equal
// points), ulp-jittered lattices, noisy clusters with outliers, far from or near the origin,
// tiny or huge scales, the odd NaN or infinity; thresholds taken from the spreads the trim
// passes through, exactly or one ulp off.
TEST(SpreadTrimmer, KeepsWhatThePlainLoopKeeps) {
  std::mt19937_64 random(7);
  auto uniform = [&random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  auto integer = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  double const special[] = {std::nan(""), std::numeric_limits<double>::infinity(), -0.0, 1e300};
  for (int round = 0; round < 3000; ++round) {
    bool const big = round % 25 == 0;  // beyond the far-point list, trimmed far down
    // The bounds take over from the plain passes above 200 points.
    int const size = big              ? integer(513, 1100)
                     : round % 2 == 0 ? integer(201, 320)
                                      : integer(1, 120);
    double const scale = Vector{1.0, 0.1, 3e-162, 1e8, 1e-3}[integer(0, 4)];
    double const origin = Vector{0.0, 1e5, -3e3}[integer(0, 2)];
    int const shape = integer(0, 2);  // lattice, jittered lattice, clusters with outliers
    Vector xs, ys;
    for (int i = 0; i < size; ++i) {
      double x = integer(-4, 4), y = integer(-4, 4);
      if (shape == 2) {
        double const outlier = integer(0, 20) == 0 ? 30.0 : 1.0;
        x = integer(0, 2) * 7 + uniform(-1, 1) * outlier;
        y = integer(0, 2) * 3 + uniform(-1, 1) * outlier;
      }
      xs.push_back(origin + x * scale);
      ys.push_back(origin + y * scale);
      for (int ulps = shape == 1 ? integer(0, 3) : 0; ulps > 0; --ulps) {
        xs.back() = std::nextafter(xs.back(), 0.0);
      }
      if (integer(0, 200) == 0) ys.back() = special[integer(0, 3)];
    }
    int const minItems = big ? integer(1, size / 3) : integer(-1, size);
    double maxStd =
        big ? -1.0 : Vector{0.0, -1.0, 0.5 * scale, 2 * scale, 3 * scale}[integer(0, 4)];
    if (!big && integer(0, 1) == 0) {
      Vector spreads;  // every spread of a trim down to one point
      corvex_test::literalSpreadTrim(xs, ys, 1, -1.0, &spreads);
      spreads.push_back(maxStd);
      maxStd = spreads[static_cast<size_t>(integer(0, static_cast<int>(spreads.size()) - 1))];
      if (integer(0, 1) == 0) maxStd = std::nextafter(maxStd, integer(0, 1) * 2.0 - 1.0);
    }
    std::vector<size_t> const expected = corvex_test::literalSpreadTrim(xs, ys, minItems, maxStd);
    ASSERT_EQ(SpreadTrimmer::keep(xs, ys, minItems, maxStd), expected)
        << "round " << round << " size " << size << " minItems " << minItems << " maxStd "
        << maxStd;
  }
}

}  // namespace
}  // namespace Vantis::Location
