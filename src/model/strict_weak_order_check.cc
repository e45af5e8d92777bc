#include "model/strict_weak_order_check.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Vantis::Location {
namespace {

using Record = BleScanInfoWithConfidence;

// -1, 0 or 1 as a is less than, tied with or greater than b; a NaN on either side ties.
template <typename Value>
int order(Value const& a, Value const& b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}

LastLocation const& at(Record const& record) { return record.getLastLocationConst(); }

// One field of operator<, in its place.
struct Field {
  int (*compare)(Record const& a, Record const& b);
  bool (*isNaN)(Record const& record);  // null for a field that cannot be NaN
};

// A floating-point field of the record's location, read by `get`.
template <auto get>
constexpr Field locationNumber() {
  return {[](Record const& a, Record const& b) { return order((at(a).*get)(), (at(b).*get)()); },
          [](Record const& r) { return std::isnan((at(r).*get)()); }};
}

// The record's own scan has no NaN field, so it counts as one field.
Field const kFields[] = {
    {[](Record const& a, Record const& b) {
       return order(a.getBlueToothRecordConst(), b.getBlueToothRecordConst());
     },
     nullptr},
    {[](Record const& a, Record const& b) {
       return order(at(a).getTimeStamp(), at(b).getTimeStamp());
     },
     nullptr},
    locationNumber<&LastLocation::getLat>(),
    locationNumber<&LastLocation::getLon>(),
    locationNumber<&LastLocation::getAcc>(),
    locationNumber<&LastLocation::getSpeed>(),
    locationNumber<&LastLocation::getBearing>(),
    {[](Record const& a, Record const& b) {
       return order(at(a).getLocationType(), at(b).getLocationType());
     },
     nullptr},
    {[](Record const& a, Record const& b) {
       return order(at(a).getLocationSourceType(), at(b).getLocationSourceType());
     },
     nullptr},
    {[](Record const& a, Record const& b) {
       return order(at(a).getIndoorFlag(), at(b).getIndoorFlag());
     },
     nullptr},
    {[](Record const& a, Record const& b) {
       return order(at(a).getGeoIdText(), at(b).getGeoIdText());
     },
     nullptr},
    {[](Record const& a, Record const& b) { return order(at(a).getFloorId(), at(b).getFloorId()); },
     nullptr},
    {[](Record const& a, Record const& b) {
       return order(at(a).getFloorAcc(), at(b).getFloorAcc());
     },
     nullptr},
    {[](Record const& a, Record const& b) { return order(at(a).getEnu(), at(b).getEnu()); },
     nullptr},
    {[](Record const& a, Record const& b) { return order(a.getConfidence(), b.getConfidence()); },
     [](Record const& r) { return std::isnan(r.getConfidence()); }},
    {[](Record const& a, Record const& b) {
       return order(a.getNewConfidence(), b.getNewConfidence());
     },
     [](Record const& r) { return std::isnan(r.getNewConfidence()); }},
    {[](Record const& a, Record const& b) { return order(a.getKindTransId(), b.getKindTransId()); },
     nullptr},
    {[](Record const& a, Record const& b) { return order(a.getArStatus(), b.getArStatus()); },
     nullptr},
    {[](Record const& a, Record const& b) { return order(a.getStepCount(), b.getStepCount()); },
     nullptr},
};
constexpr std::size_t kFieldCount = std::size(kFields);

}  // namespace

bool StrictWeakOrderCheck::holds(Records records) {
  return holdsFrom(records.begin(), records.end(), 0);
}

bool StrictWeakOrderCheck::holdsFrom(Slot first, Slot last, std::size_t field) {
  for (; last - first >= 3 && field < kFieldCount; ++field) {
    Field const& f = kFields[field];
    Slot const numbers =
        f.isNaN == nullptr
            ? first
            : std::stable_partition(first, last, [&f](Record const* r) { return f.isNaN(*r); });
    auto const less = [&f](Record const* a, Record const* b) { return f.compare(*a, *b) < 0; };
    std::stable_sort(numbers, last, less);
    if (numbers != first) {
      if (last - numbers >= 2 && f.compare(**numbers, **(last - 1)) != 0) {
        return holdsPairwise(first, last);
      }
      continue;  // NaN beside at most one value: the field decides nothing here
    }
    for (Slot group = first; group != last;) {
      Slot const groupEnd = std::upper_bound(group, last, *group, less);
      if (!holdsFrom(group, groupEnd, field + 1)) {
        return false;
      }
      group = groupEnd;
    }
    return true;
  }
  return true;
}

// Sorted by operator<, the set holds only if every pair agrees with the sorted order and its
// classes. Records alike in the total order (NaN equivalent to NaN) compare alike with every
// record, so one of each is enough.
bool StrictWeakOrderCheck::holdsPairwise(Slot first, Slot last) {
  Records alike(first, last);
  auto const totalLess = [](Record const* a, Record const* b) {
    return a->precedesInTotalOrder(*b);
  };
  std::stable_sort(alike.begin(), alike.end(), totalLess);
  alike.erase(
      std::unique(alike.begin(), alike.end(),
                  [&totalLess](Record const* a, Record const* b) { return !totalLess(a, b); }),
      alike.end());
  std::stable_sort(alike.begin(), alike.end(),
                   [](Record const* a, Record const* b) { return *a < *b; });
  std::vector<std::size_t> classOf(alike.size(), 0);
  for (std::size_t i = 1; i < alike.size(); ++i) {
    bool const tied = !(*alike[i - 1] < *alike[i]) && !(*alike[i] < *alike[i - 1]);
    classOf[i] = tied ? classOf[i - 1] : classOf[i - 1] + 1;
  }
  for (std::size_t lower = 0; lower < alike.size(); ++lower) {
    for (std::size_t upper = lower + 1; upper < alike.size(); ++upper) {
      bool const tied = classOf[lower] == classOf[upper];
      if (*alike[upper] < *alike[lower] || (*alike[lower] < *alike[upper]) == tied) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace Vantis::Location
