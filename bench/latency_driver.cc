// Latency table of GetAggregateLocation: for each input family and size, min and p50 of many
// calls, with the heap allocations and the peak heap of a call. Given two builds of
// libcorvex.so it runs them alternately in one process, so that their ratio does not depend on
// what else the machine was doing. Log level off.
//
//   corvex_latency LIBRARY [OTHER_LIBRARY] [--calls N] [--sizes 100,1000,5000]
//                  [--families name,name]
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "counting_allocator.h"
#include "loaded_entry_point.h"
#include "scan_families.h"

namespace {

struct Build {
  std::string path;
  corvex_bench::Locate locate = nullptr;
  std::vector<double> millis;
  std::vector<std::size_t> allocations;
  std::size_t peakBytes = 0;
};

struct Options {
  std::vector<std::string> libraries;
  int calls = 200;
  std::vector<int> sizes = {100, 1000, 5000};
  std::vector<std::string> families = {"outdoor-24h", "dense-3h", "dense-3h-confident",
                                       "indoor-outdoor-3h", "one-point-one-time"};
};

std::vector<std::string> split(std::string const& list) {
  std::vector<std::string> items;
  std::stringstream stream(list);
  for (std::string item; std::getline(stream, item, ',');) {
    items.push_back(item);
  }
  return items;
}

Options parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string const argument = argv[i];
    bool const hasValue = i + 1 < argc;
    if (argument == "--calls" && hasValue) {
      options.calls = std::atoi(argv[++i]);
    } else if (argument == "--sizes" && hasValue) {
      options.sizes.clear();
      for (std::string const& size : split(argv[++i])) {
        options.sizes.push_back(std::atoi(size.c_str()));
      }
    } else if (argument == "--families" && hasValue) {
      options.families = split(argv[++i]);
    } else {
      options.libraries.push_back(argument);
    }
  }
  return options;
}

corvex_bench::Locate load(std::string const& path) {
  corvex_bench::Locate const locate = corvex_bench::loadEntryPoint(path.c_str());
  if (locate == nullptr) {
    std::fprintf(stderr, "cannot load %s: %s\n", path.c_str(), dlerror());
    std::exit(2);
  }
  return locate;
}

void timeCall(Build& build, std::vector<AggregateScanInfo> const& infos) {
  AggregateLocationResult result{};
  char* trace = nullptr;
  corvex_bench::resetAllocationStats();
  auto const start = std::chrono::steady_clock::now();
  build.locate(infos.data(), static_cast<int>(infos.size()), &result, &trace);
  auto const end = std::chrono::steady_clock::now();
  corvex_bench::AllocationStats const stats = corvex_bench::allocationStats();
  corvex_bench::releaseStrings(result, trace);
  build.millis.push_back(std::chrono::duration<double, std::milli>(end - start).count());
  build.allocations.push_back(stats.allocations);
  build.peakBytes = std::max(build.peakBytes, stats.peakBytes);
}

template <typename T>
T median(std::vector<T> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void report(std::string const& family, int size, std::vector<Build>& builds) {
  std::printf("%-20s %5d", family.c_str(), size);
  for (Build& build : builds) {
    std::printf(" | %8.4f %8.4f %7zu %8.1f",
                *std::min_element(build.millis.begin(), build.millis.end()), median(build.millis),
                median(build.allocations), static_cast<double>(build.peakBytes) / 1024.0);
  }
  if (builds.size() == 2) {
    std::printf(" | %5.2f", median(builds[1].millis) / median(builds[0].millis));
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  Options const options = parse(argc, argv);
  if (options.libraries.empty() || options.libraries.size() > 2) {
    std::fprintf(stderr,
                 "usage: %s LIBRARY [OTHER_LIBRARY] [--calls N] [--sizes a,b]"
                 " [--families a,b]\n",
                 argv[0]);
    return 2;
  }
  setenv("CORVEX_LOG_LEVEL", "off", 1);
  std::vector<Build> builds;
  for (std::string const& path : options.libraries) {
    builds.push_back({path, load(path), {}, {}, 0});
  }
  std::printf("%-20s %5s", "family", "size");
  for (std::size_t i = 0; i < builds.size(); ++i) {
    std::printf(" | %8s %8s %7s %8s", "min ms", "p50 ms", "allocs", "peak KiB");
  }
  std::printf("%s\n", builds.size() == 2 ? " | p50 B/A" : "");
  for (std::string const& name : options.families) {
    corvex_bench::ScanFamily const* family = corvex_bench::findScanFamily(name);
    if (family == nullptr) {
      std::fprintf(stderr, "unknown family %s\n", name.c_str());
      return 2;
    }
    for (int size : options.sizes) {
      // A few different inputs of the family, each run by every build in turn.
      std::vector<std::vector<AggregateScanInfo>> inputs;
      for (std::uint64_t seed = 0; seed < 5; ++seed) {
        inputs.push_back(corvex_bench::makeScans(*family, size, seed));
      }
      for (Build& build : builds) {
        build.millis.clear();
        build.allocations.clear();
        build.peakBytes = 0;
      }
      for (int call = 0; call < options.calls; ++call) {
        for (Build& build : builds) {
          timeCall(build, inputs[static_cast<std::size_t>(call) % inputs.size()]);
        }
      }
      report(name, size, builds);
    }
  }
  return 0;
}
