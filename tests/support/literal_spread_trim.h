// The spread trim exactly as the algorithm reads: every pass sums the remaining coordinates
// in list order, measures the spread and removes the first record farthest from the
// centroid. The slow reference for SpreadTrimmer; `spreads`, when given, receives the spread
// of every pass.
#ifndef CORVEX_TESTS_SUPPORT_LITERAL_SPREAD_TRIM_H_
#define CORVEX_TESTS_SUPPORT_LITERAL_SPREAD_TRIM_H_

#include <cmath>
#include <cstddef>
#include <vector>

namespace corvex_test {

inline std::vector<size_t> literalSpreadTrim(std::vector<double> const& xs,
                                             std::vector<double> const& ys, int minItems,
                                             double maxStd,
                                             std::vector<double>* spreads = nullptr) {
  std::vector<size_t> rest;
  for (size_t i = 0; i < xs.size(); ++i) rest.push_back(i);
  while (static_cast<long long>(rest.size()) > minItems) {
    double sumX = 0.0;
    double sumY = 0.0;
    for (size_t i : rest) {
      sumX += xs[i];
      sumY += ys[i];
    }
    double const count = static_cast<double>(rest.size());
    double const meanX = sumX / count;
    double const meanY = sumY / count;
    double sum = 0.0;
    for (size_t i : rest) {
      double const dx = xs[i] - meanX;
      double const dy = ys[i] - meanY;
      sum += dx * dx + dy * dy;
    }
    if (spreads != nullptr) spreads->push_back(std::sqrt(sum / count));
    if (!(std::sqrt(sum / count) > maxStd)) break;
    double maxOffset = 0.0;
    int farthest = -1;
    for (size_t k = 0; k < rest.size(); ++k) {
      double const dx = xs[rest[k]] - meanX;
      double const dy = ys[rest[k]] - meanY;
      double const offset = std::sqrt(dx * dx + dy * dy);
      if (offset > maxOffset) {
        maxOffset = offset;
        farthest = static_cast<int>(k);
      }
    }
    if (farthest < 0) break;
    rest.erase(rest.begin() + farthest);
  }
  return rest;
}

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_LITERAL_SPREAD_TRIM_H_
