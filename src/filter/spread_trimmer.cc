#include "filter/spread_trimmer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Vantis::Location {
namespace {

using Bounds = SpreadTrimmer::Bounds;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kUnitRoundoff = 0x1p-53;
// Up to these sizes no sum, square or bound below can overflow.
constexpr double kMaxMagnitude = 0x1p480;
constexpr size_t kMaxBoundedCount = size_t{1} << 32;
// A computed distance times this, plus kTinyDistance, bounds the exact one and the rounded
// square root of the rounded squared distance; the tiny term covers underflow.
constexpr double kRadiusFactor = 1.0 + 0x1p-50;
constexpr double kTinyDistance = 0x1p-530;
// Covers the underflow of the squares in one squared distance.
constexpr double kTinySquarePerPoint = 0x1p-1070;
// Far points listed per rebuild; more when the list runs short.
constexpr size_t kBaseTopSize = 512;
// More candidates than this in one pass recentre the list of far points.
constexpr size_t kMaxCandidates = 16;
// Up to this many points the plain passes take less time than keeping the bounds: their
// sums are dependent additions, but cheap ones.
constexpr size_t kMaxPlainCount = 200;

// The next double above (below) a finite value: outward rounding of one correctly rounded
// operation.
double up(double value) {
  if (value == 0.0) {
    return std::numeric_limits<double>::denorm_min();
  }
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  bits = value > 0.0 ? bits + 1 : bits - 1;
  std::memcpy(&value, &bits, sizeof bits);
  return value;
}

double down(double value) { return -up(-value); }

// Relative error bound of a sum of count terms that each carry a few roundings (at least
// gamma_(count+4) = (count+4)u / (1-(count+4)u), with room for its own rounding).
double summationFactor(double count) { return (count + 8.0) * (1.02 * kUnitRoundoff); }

// An upper bound on the distance of (x, y) from (cx, cy), and on the square root of the
// rounded squared distance the plain loop computes for it.
double radius(double x, double y, double cx, double cy) {
  double const dx = x - cx;
  double const dy = y - cy;
  return std::sqrt(dx * dx + dy * dy) * kRadiusFactor + kTinyDistance;
}

// An upper bound on the distance between two points.
double distanceAbove(double ax, double ay, double bx, double by) {
  double const dx = up(std::fabs(ax - bx));
  double const dy = up(std::fabs(ay - by));
  return up(std::sqrt(up(up(dx * dx) + up(dy * dy))));
}

// The range of |v| for v in [lo, hi].
Bounds magnitudes(double lo, double hi) {
  if (lo >= 0.0) {
    return {lo, hi};
  }
  if (hi <= 0.0) {
    return {-hi, -lo};
  }
  return {0.0, std::max(-lo, hi)};
}

// Bounds on the exact squared distance of (x, y) from (cx, cy).
Bounds squaredDistance(double x, double y, double cx, double cy) {
  double const dx = x - cx;
  double const dy = y - cy;
  Bounds const ax = magnitudes(down(dx), up(dx));
  Bounds const ay = magnitudes(down(dy), up(dy));
  return {down(down(ax.lo * ax.lo) + down(ay.lo * ay.lo)),
          up(up(ax.hi * ax.hi) + up(ay.hi * ay.hi))};
}

// The first index whose distance, the square root of values[i], equals the root of `largest`
// (the greatest value); -1 when that root is 0. Roots are taken only near the top: any value
// whose root rounds to the greatest root is within a few ulps of `largest`.
int firstWithRootOf(std::vector<double> const& values, double largest) {
  double const root = std::sqrt(largest);
  if (!(root > 0.0)) {
    return -1;
  }
  double const nearTop = largest * 0.999;
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] >= nearTop && std::sqrt(values[i]) == root) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

}  // namespace

std::vector<size_t> SpreadTrimmer::keep(std::vector<double> const& xs,
                                        std::vector<double> const& ys, int minItems,
                                        double maxStd) {
  if (xs.empty() || ys.empty()) {
    return {};
  }
  return SpreadTrimmer(xs, ys, minItems, maxStd).run();
}

SpreadTrimmer::SpreadTrimmer(std::vector<double> const& xs, std::vector<double> const& ys,
                             int minItems, double maxStd)
    : xs_(xs),
      ys_(ys),
      minItems_(minItems),
      maxStd_(maxStd),
      count_(std::min(xs.size(), ys.size())),
      live_(count_) {
  for (size_t i = 0; i < count_; ++i) {
    live_[i] = i;
  }
}

std::vector<size_t> SpreadTrimmer::run() {
  if (!boundable()) {
    return plainRun();
  }
  removed_.assign(count_, 0);
  candidates_.reserve(2 * kMaxCandidates);
  rebuild(kBaseTopSize);
  while (static_cast<long long>(count_) > minItems_) {
    Step step = boundedStep();
    if (step.kind == Step::kUndecided) {
      step = exactStep();
    }
    if (step.kind == Step::kStop) {
      break;
    }
    remove(step.position);
  }
  compact();
  return live_;
}

// Few points, or non-finite or huge coordinates, leave every pass to the plain arithmetic.
bool SpreadTrimmer::boundable() const {
  auto const moderate = [](double v) { return std::fabs(v) <= kMaxMagnitude; };
  return count_ > kMaxPlainCount && count_ <= kMaxBoundedCount &&
         std::all_of(xs_.begin(), xs_.begin() + count_, moderate) &&
         std::all_of(ys_.begin(), ys_.begin() + count_, moderate);
}

// Every pass the plain way. The kept points stay gathered in list order, so that a pass reads
// them directly and a removal just closes the gap; no bounds are kept.
std::vector<size_t> SpreadTrimmer::plainRun() {
  keptX_.assign(xs_.begin(), xs_.begin() + static_cast<std::ptrdiff_t>(count_));
  keptY_.assign(ys_.begin(), ys_.begin() + static_cast<std::ptrdiff_t>(count_));
  while (static_cast<long long>(live_.size()) > minItems_) {
    int const farthest = plainPass();
    if (farthest < 0) {
      break;
    }
    keptX_.erase(keptX_.begin() + farthest);
    keptY_.erase(keptY_.begin() + farthest);
    live_.erase(live_.begin() + farthest);
  }
  return live_;
}

// One pass of the plain loop, as exactStep of the bounded run.
SpreadTrimmer::Step SpreadTrimmer::exactStep() {
  compact();
  keptX_.clear();
  keptY_.clear();
  for (size_t position : live_) {
    keptX_.push_back(xs_[position]);
    keptY_.push_back(ys_[position]);
  }
  int const farthest = plainPass();
  return farthest < 0 ? Step{Step::kStop, 0}
                      : Step{Step::kRemove, live_[static_cast<size_t>(farthest)]};
}

// The plain loop's pass over keptX_/keptY_ (the kept points in list order): where among them
// the point to remove stands, or -1 to stop.
int SpreadTrimmer::plainPass() {
  double sumX = 0.0;
  double sumY = 0.0;
  for (size_t k = 0; k < keptX_.size(); ++k) {
    sumX += keptX_[k];
    sumY += keptY_[k];
  }
  double const count = static_cast<double>(keptX_.size());
  double const meanX = sumX / count;
  double const meanY = sumY / count;
  offsets_.resize(keptX_.size());
  double sum = 0.0;
  double largest = 0.0;
  for (size_t k = 0; k < keptX_.size(); ++k) {
    double const dx = keptX_[k] - meanX;
    double const dy = keptY_[k] - meanY;
    offsets_[k] = dx * dx + dy * dy;
    sum += offsets_[k];
    largest = offsets_[k] > largest ? offsets_[k] : largest;
  }
  if (!(std::sqrt(sum / count) > maxStd_)) {
    return -1;
  }
  // -1 too when every point sits on the centroid: nothing to strip.
  return firstWithRootOf(offsets_, largest);
}

SpreadTrimmer::Step SpreadTrimmer::boundedStep() {
  while (true) {
    Bounds const meanX = meanBounds(sumX_, orderSlackX_);
    Bounds const meanY = meanBounds(sumY_, orderSlackY_);
    Verdict const exceeds = spreadExceeds(meanX, meanY);
    if (exceeds != Verdict::kYes) {
      return {exceeds == Verdict::kNo ? Step::kStop : Step::kUndecided, 0};
    }
    Step const step = farthestStep(meanX, meanY);
    if (step.kind != Step::kRebuild) {
      return step;
    }
    rebuild(std::max(kBaseTopSize, 2 * candidates_.size()));
  }
}

// Bounds on the centroid coordinate of the plain loop, the list-order sum divided by the
// count: that sum lies within orderSlack of the exact sum, and division is monotonic.
SpreadTrimmer::Bounds SpreadTrimmer::meanBounds(Bounds sum, double orderSlack) const {
  double const count = static_cast<double>(count_);
  return {down(sum.lo - orderSlack) / count, up(sum.hi + orderSlack) / count};
}

// Whether the spread of the plain loop exceeds maxStd, decided on bounds of its sum of
// squared distances S. About the exact centroid mu, the squared distances sum to
// V = (sum about the centre) - n |mu - centre|^2; about the centroid m of the plain loop to
// V + n |mu - m|^2; the rounded terms and their list-order sum stay within a relative
// summationFactor (plus underflow) of that.
SpreadTrimmer::Verdict SpreadTrimmer::spreadExceeds(Bounds meanX, Bounds meanY) const {
  double const count = static_cast<double>(count_);
  Bounds const muX = {down(sumX_.lo / count), up(sumX_.hi / count)};
  Bounds const muY = {down(sumY_.lo / count), up(sumY_.hi / count)};
  Bounds const shiftX = magnitudes(down(muX.lo - centreX_), up(muX.hi - centreX_));
  Bounds const shiftY = magnitudes(down(muY.lo - centreY_), up(muY.hi - centreY_));
  double const shiftLow =
      down(count * down(down(shiftX.lo * shiftX.lo) + down(shiftY.lo * shiftY.lo)));
  double const shiftHigh = up(count * up(up(shiftX.hi * shiftX.hi) + up(shiftY.hi * shiftY.hi)));
  double const driftX = std::max(up(muX.hi - meanX.lo), up(meanX.hi - muX.lo));
  double const driftY = std::max(up(muY.hi - meanY.lo), up(meanY.hi - muY.lo));
  double const drift = up(count * up(up(driftX * driftX) + up(driftY * driftY)));
  double const spreadLow = std::max(0.0, down(squares_.lo - shiftHigh));
  double const spreadHigh = up(up(squares_.hi - shiftLow) + drift);

  double const relative = summationFactor(count);
  double const tiny = count * kTinySquarePerPoint;
  double const low = std::max(0.0, down(down(spreadLow * down(1.0 - relative)) - tiny));
  double const high = up(up(spreadHigh * up(1.0 + relative)) + tiny);
  if (std::sqrt(low / count) > maxStd_) {
    return Verdict::kYes;
  }
  if (!(std::sqrt(high / count) > maxStd_)) {
    return Verdict::kNo;
  }
  return Verdict::kUnknown;
}

// Picks the point the plain loop would remove from the far-point list: walks it by radius
// until no further point can reach the largest lower bound seen.
SpreadTrimmer::Step SpreadTrimmer::farthestStep(Bounds meanX, Bounds meanY) {
  // How far the centroid of the plain loop can be from the top centre.
  double const nearX =
      std::fabs(topCentreX_ - meanX.lo) > std::fabs(topCentreX_ - meanX.hi) ? meanX.lo : meanX.hi;
  double const nearY =
      std::fabs(topCentreY_ - meanY.lo) > std::fabs(topCentreY_ - meanY.hi) ? meanY.lo : meanY.hi;
  double const shift = distanceAbove(topCentreX_, topCentreY_, nearX, nearY);

  while (head_ < top_.size() && removed_[top_[head_].position]) {
    ++head_;
  }
  candidates_.clear();
  double best = 0.0;
  // A point of smaller radius is nearer to the centroid than the best candidate.
  double threshold = -kInfinity;
  for (size_t k = head_; k < top_.size() && !(top_[k].radius < threshold); ++k) {
    if (removed_[top_[k].position]) {
      continue;
    }
    candidates_.push_back(candidate(top_[k].position, meanX, meanY));
    if (candidates_.back().low > best) {
      best = candidates_.back().low;
      threshold = down(down(down(best - kTinyDistance) / kRadiusFactor) - shift);
    }
  }
  // The unlisted points are out of the race only below the threshold too (after recentring
  // their bound may exceed listed radii).
  if (floorRadius_ > -kInfinity && !(floorRadius_ < threshold)) {
    return {Step::kRebuild, 0};
  }
  Step const step = pickCandidate();
  if (candidates_.size() > kMaxCandidates) {
    recentreTop();
  }
  return step;
}

// The candidate whose distance is surely the largest, the first of equals; undecided when
// the bounds of another candidate overlap it.
SpreadTrimmer::Step SpreadTrimmer::pickCandidate() const {
  Candidate const* pick = nullptr;
  for (Candidate const& c : candidates_) {
    if (pick == nullptr || c.low > pick->low ||
        (c.low == pick->low && c.position < pick->position)) {
      pick = &c;
    }
  }
  if (pick == nullptr || !(pick->low > 0.0)) {
    return {Step::kUndecided, 0};
  }
  for (Candidate const& c : candidates_) {
    bool const samePoint =
        xs_[c.position] == xs_[pick->position] && ys_[c.position] == ys_[pick->position];
    if (samePoint) {
      continue;  // the same distance, and later in the list
    }
    bool const clear = c.position < pick->position ? c.high < pick->low : c.high <= pick->low;
    if (!clear) {
      return {Step::kUndecided, 0};
    }
  }
  return {Step::kRemove, pick->position};
}

// Bounds on the distance the plain loop computes for a point, for any centroid within the
// bounds: the rounded difference is monotonic in the centroid, the rest in the difference.
SpreadTrimmer::Candidate SpreadTrimmer::candidate(size_t position, Bounds meanX,
                                                  Bounds meanY) const {
  Bounds const ax = magnitudes(xs_[position] - meanX.hi, xs_[position] - meanX.lo);
  Bounds const ay = magnitudes(ys_[position] - meanY.hi, ys_[position] - meanY.lo);
  return {position, std::sqrt(ax.lo * ax.lo + ay.lo * ay.lo),
          std::sqrt(ax.hi * ax.hi + ay.hi * ay.hi)};
}

// Recentres on the current centroid: fresh sums with their error bounds, and the topSize
// points of largest radius.
void SpreadTrimmer::rebuild(size_t topSize) {
  compact();
  double const count = static_cast<double>(live_.size());
  double sumX = 0.0;
  double sumY = 0.0;
  double absX = 0.0;
  double absY = 0.0;
  for (size_t position : live_) {
    sumX += xs_[position];
    sumY += ys_[position];
    absX += std::fabs(xs_[position]);
    absY += std::fabs(ys_[position]);
  }
  centreX_ = sumX / count;
  centreY_ = sumY / count;
  topCentreX_ = centreX_;
  topCentreY_ = centreY_;
  double squares = 0.0;
  top_.clear();
  top_.reserve(live_.size());
  for (size_t position : live_) {
    double const dx = xs_[position] - centreX_;
    double const dy = ys_[position] - centreY_;
    squares += dx * dx + dy * dy;
    top_.push_back({radius(xs_[position], ys_[position], centreX_, centreY_), position});
  }
  size_t const size = std::min(topSize, top_.size());
  auto const farther = [](TopEntry const& a, TopEntry const& b) { return a.radius > b.radius; };
  std::nth_element(top_.begin(), top_.begin() + static_cast<std::ptrdiff_t>(size), top_.end(),
                   farther);
  floorRadius_ = size < top_.size() ? top_[size].radius : -kInfinity;
  top_.resize(size);
  std::sort(top_.begin(), top_.end(), farther);
  head_ = 0;

  // Any summation order of n terms is within gamma_(n-1) times the sum of magnitudes of the
  // exact sum, for these points and every subset of them.
  double const relative = summationFactor(count);
  orderSlackX_ = up(relative * absX);
  orderSlackY_ = up(relative * absY);
  sumX_ = {down(sumX - orderSlackX_), up(sumX + orderSlackX_)};
  sumY_ = {down(sumY - orderSlackY_), up(sumY + orderSlackY_)};
  double const tiny = count * kTinySquarePerPoint;
  squares_ = {down(down(squares * down(1.0 - relative)) - tiny),
              up(up(squares * up(1.0 + relative)) + tiny)};
}

// Moves the top centre to the current centroid, which narrows the band of candidates: the
// listed points get their radii anew, the bound on all others grows by the move.
void SpreadTrimmer::recentreTop() {
  double const count = static_cast<double>(count_);
  double const x = 0.5 * (sumX_.lo + sumX_.hi) / count;
  double const y = 0.5 * (sumY_.lo + sumY_.hi) / count;
  if (floorRadius_ > -kInfinity) {
    floorRadius_ = up(floorRadius_ + distanceAbove(x, y, topCentreX_, topCentreY_));
  }
  topCentreX_ = x;
  topCentreY_ = y;
  size_t kept = 0;
  for (size_t k = head_; k < top_.size(); ++k) {
    size_t const position = top_[k].position;
    if (removed_[position] != 0) {
      continue;
    }
    // Radii move by at most the shift, so insertion finds the place in few steps.
    TopEntry const entry = {radius(xs_[position], ys_[position], x, y), position};
    size_t place = kept;
    for (; place > 0 && top_[place - 1].radius < entry.radius; --place) {
      top_[place] = top_[place - 1];
    }
    top_[place] = entry;
    ++kept;
  }
  top_.resize(kept);
  head_ = 0;
}

void SpreadTrimmer::remove(size_t position) {
  removed_[position] = 1;
  --count_;
  double const x = xs_[position];
  double const y = ys_[position];
  sumX_ = {down(sumX_.lo - x), up(sumX_.hi - x)};
  sumY_ = {down(sumY_.lo - y), up(sumY_.hi - y)};
  Bounds const square = squaredDistance(x, y, centreX_, centreY_);
  squares_ = {down(squares_.lo - square.hi), up(squares_.hi - square.lo)};
}

void SpreadTrimmer::compact() {
  live_.erase(std::remove_if(live_.begin(), live_.end(),
                             [this](size_t position) { return removed_[position] != 0; }),
              live_.end());
}

}  // namespace Vantis::Location
