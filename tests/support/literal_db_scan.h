// The clustering exactly as the algorithm reads (copies everywhere, an ordered label map, a
// merge against an ordered set of the seeds): the slow reference for the fast DbScan.
#ifndef CORVEX_TESTS_SUPPORT_LITERAL_DB_SCAN_H_
#define CORVEX_TESTS_SUPPORT_LITERAL_DB_SCAN_H_

#include <climits>
#include <map>
#include <set>
#include <vector>

#include "geometry/normal_distance.h"

namespace corvex_test {

template <typename T>
class LiteralDbScan {
 public:
  LiteralDbScan(double eps, int minPts)
      : eps_(eps < 0.0 ? 0.0 : eps), minPts_(minPts < 0 ? INT_MAX : minPts) {}

  std::vector<std::vector<T>> cluster(std::vector<T> const& infos) const {
    std::vector<std::vector<T>> clusters;
    std::map<T, int> labels;
    for (T const& founder : infos) {
      if (labels.count(founder) != 0) continue;
      std::vector<T> seeds = neighbours(founder, infos);
      labels.insert({founder, 0});
      if (seeds.size() < static_cast<size_t>(minPts_)) continue;  // noise
      std::vector<T> members = {founder};
      for (size_t i = 0; i < seeds.size(); ++i) {
        T const seed = seeds[i];
        if (labels.count(seed) != 0) continue;
        std::vector<T> const more = neighbours(seed, infos);
        if (more.size() >= static_cast<size_t>(minPts_)) {
          std::set<T> const atEntry(seeds.begin(), seeds.end());
          for (T const& info : more) {
            if (atEntry.count(info) == 0) seeds.push_back(info);
          }
        }
        labels.insert({seed, 0});
        members.push_back(seed);
      }
      clusters.push_back(members);
    }
    return clusters;
  }

 private:
  std::vector<T> neighbours(T const& centre, std::vector<T> const& infos) const {
    std::vector<T> found;
    for (T const& info : infos) {
      if (!(info == centre) &&
          Vantis::Location::NormalDistance().compute(centre.getPoint(), info.getPoint()) <= eps_) {
        found.push_back(info);
      }
    }
    return found;
  }

  double eps_;
  int minPts_;
};

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_LITERAL_DB_SCAN_H_
