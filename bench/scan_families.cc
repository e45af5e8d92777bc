#include "scan_families.h"

#include <cmath>
#include <limits>
#include <random>

namespace corvex_bench {
namespace {

using Scans = std::vector<AggregateScanInfo>;

constexpr long long kNow = 1700000000000;  // ms
constexpr double kLon = 8.5417;            // degrees
constexpr double kLat = 47.3769;           // degrees
constexpr double kMetre = 1.0 / 111320.0;  // degrees of latitude per metre
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr long long kHour = 3600000;  // ms

char const* const kBuildings[] = {"B-7", "B-12", "null", ""};
char const* const kFloors[] = {"F1", "F2", "", "basement"};

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  double unit() { return std::uniform_real_distribution<double>(0.0, 1.0)(engine_); }
  double between(double low, double high) { return low + (high - low) * unit(); }
  int integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  bool chance(double p) { return unit() < p; }

 private:
  std::mt19937_64 engine_;
};

// One phone's report within `radius` metres of the site, `span` ms before now.
AggregateScanInfo outdoor(Random& random, double radius, long long span, double minConfidence) {
  AggregateScanInfo info{};
  info.timeStamp = kNow - static_cast<long long>(random.unit() * static_cast<double>(span));
  info.rssi = random.integer(-100, -45);
  info.confidence = random.between(minConfidence, 1.0);
  info.lon = kLon + random.between(-radius, radius) * kMetre * 1.48;
  info.lat = kLat + random.between(-radius, radius) * kMetre;
  info.acc = static_cast<float>(random.between(3.0, 60.0));
  info.locationType = random.chance(0.6) ? 1 : 2;
  info.locationSourceType = random.integer(1, 3);
  return info;
}

void setIndoor(Random& random, AggregateScanInfo& info) {
  info.geoId = kBuildings[random.integer(0, 3)];
  info.floorInfo = kFloors[random.integer(0, 3)];
  info.indoorFlag = 1;
  info.floorId = random.integer(-1, 3);
  info.floorAcc = random.integer(5, 20);
  info.rssi = random.integer(-90, -50);
}

void fillWith(Scans& infos, std::uint64_t seed, double radius, long long span, double minConfidence,
              double indoorShare) {
  Random random(seed);
  for (AggregateScanInfo& info : infos) {
    info = outdoor(random, radius, span, minConfidence);
    if (random.chance(indoorShare)) {
      setIndoor(random, info);
      info.locationType = random.chance(0.2) ? 1 : 2;
    }
  }
}

void outdoorDay(Scans& infos, std::uint64_t seed) { fillWith(infos, seed, 150, 24 * kHour, 0, 0); }
void denseThreeHours(Scans& infos, std::uint64_t seed) {
  fillWith(infos, seed, 40, 3 * kHour, 0, 0);
}
void denseConfident(Scans& infos, std::uint64_t seed) {
  fillWith(infos, seed, 40, 3 * kHour, 0.6, 0);
}
void indoorOutdoorMix(Scans& infos, std::uint64_t seed) {
  fillWith(infos, seed, 60, 3 * kHour, 0, 0.5);
}

void onePointOneTime(Scans& infos, std::uint64_t seed) {
  Random random(seed);
  AggregateScanInfo const info = outdoor(random, 0, 0, 0.5);
  for (AggregateScanInfo& each : infos) {
    each = info;
  }
}

// Sites kilometres apart visited in turns, with some records far too old.
void hoppingSites(Scans& infos, std::uint64_t seed) {
  fillWith(infos, seed, 50, 12 * kHour, 0, 0.2);
  Random random(seed + 1);
  for (AggregateScanInfo& info : infos) {
    int const site = random.integer(0, 3);
    info.lon += site * 2000 * kMetre * 1.48;
    info.timeStamp -= site * 2 * kHour + (random.chance(0.05) ? 10 * kHour : 0);
  }
}

// Distinct scan times keep the record order consistent whatever the other fields hold.
void distinctTimes(Scans& infos, Random& random) {
  for (std::size_t i = 0; i < infos.size(); ++i) {
    infos[i].timeStamp = kNow - static_cast<long long>(i) * 7919 - random.integer(0, 7000);
  }
}

// Every field now and then replaced by NaN, an infinity or an extreme.
void extremes(Scans& infos, std::uint64_t seed) {
  fillWith(infos, seed, 80, 6 * kHour, 0, 0.3);
  Random random(seed + 1);
  double const wild[] = {kNaN, kInf, -kInf, 1e308, -1e308, 0.0, -0.0, 1e-310, 400.0};
  for (AggregateScanInfo& info : infos) {
    auto const maybe = [&random, &wild](double& field) {
      if (random.chance(0.08)) {
        field = wild[random.integer(0, 8)];
      }
    };
    maybe(info.lon);
    maybe(info.lat);
    maybe(info.confidence);
    if (random.chance(0.08)) {
      info.acc = static_cast<float>(wild[random.integer(0, 8)]);
    }
    if (random.chance(0.05)) {
      info.rssi = random.chance(0.5) ? 0 : random.integer(-200, 200);
    }
  }
  distinctTimes(infos, random);
}

// Observers at NaN or infinite positions among ordinary ones, at distinct times.
void nanAndInfinities(Scans& infos, std::uint64_t seed) {
  fillWith(infos, seed, 40, 3 * kHour, 0.5, 0);
  Random random(seed + 1);
  for (AggregateScanInfo& info : infos) {
    if (random.chance(0.3)) {
      info.lat = random.chance(0.5) ? kNaN : kInf;
      info.lon = random.chance(0.5) ? kNaN : -kInf;
    }
  }
  distinctTimes(infos, random);
}

// All records within a few centimetres: every record is every other's neighbour.
void withinEps(Scans& infos, std::uint64_t seed) { fillWith(infos, seed, 0.05, 3 * kHour, 0.6, 0); }

// The hostile shapes that only bound time and memory: one scan time with NaN fields makes the
// record order inconsistent.
void allNaN(Scans& infos, std::uint64_t seed) {
  onePointOneTime(infos, seed);
  for (AggregateScanInfo& info : infos) {
    info.lon = info.lat = info.confidence = kNaN;
    info.acc = std::numeric_limits<float>::quiet_NaN();
  }
}

void oneTimeNaNMix(Scans& infos, std::uint64_t seed) {
  denseConfident(infos, seed);
  Random random(seed + 1);
  for (AggregateScanInfo& info : infos) {
    info.timeStamp = kNow;
    info.rssi = -70;
    if (random.chance(0.3)) {
      (random.chance(0.5) ? info.lat : info.confidence) = random.chance(0.5) ? kNaN : kInf;
    }
  }
}

}  // namespace

// Built at first use: the benchmarks register one entry per family while the program's
// statics are still being initialised, possibly before this file's.
std::vector<ScanFamily> const& scanFamilies() {
  static std::vector<ScanFamily> const families = {
      {"outdoor-24h", true, outdoorDay},
      {"dense-3h", true, denseThreeHours},
      {"dense-3h-confident", true, denseConfident},
      {"indoor-outdoor-3h", true, indoorOutdoorMix},
      {"one-point-one-time", true, onePointOneTime},
      {"hopping-sites", true, hoppingSites},
      {"extremes", true, extremes},
      {"nan-and-infinities", true, nanAndInfinities},
      {"within-eps", true, withinEps},
      {"all-nan", false, allNaN},
      {"one-time-nan-mix", false, oneTimeNaNMix},
  };
  return families;
}

ScanFamily const* findScanFamily(std::string const& name) {
  for (ScanFamily const& family : scanFamilies()) {
    if (name == family.name) {
      return &family;
    }
  }
  return nullptr;
}

std::vector<AggregateScanInfo> makeScans(ScanFamily const& family, int count, std::uint64_t seed) {
  std::vector<AggregateScanInfo> infos(static_cast<std::size_t>(count));
  family.fill(infos, seed);
  return infos;
}

}  // namespace corvex_bench
