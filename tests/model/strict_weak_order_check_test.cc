#include "model/strict_weak_order_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "support/filter_records.h"

namespace Vantis::Location {
namespace {

using corvex_test::ordersStrictWeakly;
using corvex_test::Records;

double const kNaN = std::numeric_limits<double>::quiet_NaN();

// Few values per field, so that ties reach later fields; NaN now and then in any float field.
TEST(StrictWeakOrderCheck, AgreesWithEveryTriple) {
  std::mt19937 random(7);
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  auto maybeNaN = [&](double value, int odds) { return uniform(0, odds) == 0 ? kNaN : value; };
  int broken = 0;
  for (int round = 0; round < 4000; ++round) {
    int const odds = uniform(1, 8);
    Records infos;
    for (int i = 0, size = uniform(1, 14); i < size; ++i) {
      infos.push_back(corvex_test::makeRecord(maybeNaN(uniform(0, 3), odds),
                                              maybeNaN(uniform(0, 2), odds), uniform(0, 1), 0,
                                              maybeNaN(uniform(5, 6) / 10.0, odds)));
      infos.back().getLastLocation().setAcc(static_cast<float>(maybeNaN(uniform(1, 2), odds)));
      infos.back().setNewConfidence(maybeNaN(uniform(0, 1), odds));
      infos.back().setStepCount(uniform(0, 1));
    }
    std::vector<BleScanInfoWithConfidence const*> records;
    for (auto const& info : infos) records.push_back(&info);
    bool const holds = ordersStrictWeakly(infos);
    broken += holds ? 0 : 1;
    ASSERT_EQ(StrictWeakOrderCheck::holds(records), holds) << "round " << round;
  }
  EXPECT_GT(broken, 500);
}

}  // namespace
}  // namespace Vantis::Location
