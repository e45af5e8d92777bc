#ifndef CORVEX_FILTER_SPREAD_TRIMMER_H_
#define CORVEX_FILTER_SPREAD_TRIMMER_H_

#include <cstddef>
#include <vector>

namespace Vantis::Location {

// Strips points until the spread of the rest is small enough, with the decisions of the plain
// loop: while more than minItems points remain and sqrt(sum of squared distances from the
// centroid / count) > maxStd, remove the first point farthest from the centroid; the sums run
// left to right over the remaining points in list order.
//
// The plain loop redoes those order-dependent sums for every removal. Here each pass is decided
// from rigorous bounds instead: interval bounds (outward rounding) on the exact sums, kept up
// to date per removal, the a-priori error bound of recursive summation (N. J. Higham, "Accuracy
// and Stability of Numerical Algorithms", 2nd ed., SIAM 2002, section 4.2) to cover every
// summation order, and a short list of the points farthest from a recent centre. Only when the
// bounds cannot decide a comparison is the pass done the plain way, so the result is that of
// the plain loop for every input.
class SpreadTrimmer {
 public:
  // Ascending positions into xs/ys (east, north in metres; equal lengths) of the points kept.
  // minItems is the least number of points kept (the filter passes at least 1); maxStd the
  // largest allowed spread (metres).
  static std::vector<size_t> keep(std::vector<double> const& xs, std::vector<double> const& ys,
                                  int minItems, double maxStd);

  // A closed interval [lo, hi].
  struct Bounds {
    double lo;
    double hi;
  };

 private:
  struct TopEntry {
    double radius;  // upper bound on the distance from the centre
    size_t position;
  };
  struct Candidate {
    size_t position;
    double low;   // bounds on the distance the plain loop computes
    double high;  // for this point
  };
  // What one pass decided: stop, remove `position`, or nothing yet (kRebuild: not before the
  // list of far points is rebuilt).
  struct Step {
    enum Kind { kStop, kRemove, kUndecided, kRebuild } kind;
    size_t position;
  };
  enum class Verdict { kNo, kYes, kUnknown };

  SpreadTrimmer(std::vector<double> const& xs, std::vector<double> const& ys, int minItems,
                double maxStd);

  std::vector<size_t> run();
  bool boundable() const;
  std::vector<size_t> plainRun();
  Step exactStep();
  int plainPass();
  Step boundedStep();
  Verdict spreadExceeds(Bounds meanX, Bounds meanY) const;
  Step farthestStep(Bounds meanX, Bounds meanY);
  Step pickCandidate() const;
  Candidate candidate(size_t position, Bounds meanX, Bounds meanY) const;
  Bounds meanBounds(Bounds sum, double orderSlack) const;
  void rebuild(size_t topSize);
  void recentreTop();
  void remove(size_t position);
  void compact();

  std::vector<double> const& xs_;
  std::vector<double> const& ys_;
  int minItems_;
  double maxStd_;
  size_t count_;               // points still kept
  std::vector<char> removed_;  // by position
  std::vector<size_t> live_;   // ascending positions, removed ones dropped by compact()
  std::vector<double> keptX_;  // the kept points of a plain pass, in list order
  std::vector<double> keptY_;
  std::vector<double> offsets_;  // squared distances of the last plain pass
  // Bounds on the exact sums over the points kept, and how far a sum in list order can stray
  // from the exact sum.
  Bounds sumX_{0.0, 0.0};
  Bounds sumY_{0.0, 0.0};
  double orderSlackX_ = 0.0;
  double orderSlackY_ = 0.0;
  // Bounds on the exact sum of squared distances from the centre.
  Bounds squares_{0.0, 0.0};
  double centreX_ = 0.0;
  double centreY_ = 0.0;
  // Points of largest radius about the top centre, radius descending; every other point kept
  // has a radius of at most floorRadius_.
  double topCentreX_ = 0.0;
  double topCentreY_ = 0.0;
  std::vector<TopEntry> top_;
  size_t head_ = 0;  // no point before it in top_ is kept
  double floorRadius_ = 0.0;
  std::vector<Candidate> candidates_;
};

}  // namespace Vantis::Location

#endif  // CORVEX_FILTER_SPREAD_TRIMMER_H_
