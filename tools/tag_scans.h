#ifndef CORVEX_TOOLS_TAG_SCANS_H_
#define CORVEX_TOOLS_TAG_SCANS_H_

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "tools/scan_record_builder.h"

namespace corvex_cli {

// The input records of one tag, in input order, ready for the library: their strings point
// into the StringPool of the table that read them.
struct TagScans {
  std::string tag;
  std::vector<AggregateScanInfo> infos;
  // Records that came after the tag was handed on (see ScanTable::seal); merged later.
  std::vector<AggregateScanInfo> late;
  // Per field: how many records hold a value no phone produces.
  std::array<size_t, ScanRecordBuilder::kFieldCount> implausible{};
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_TAG_SCANS_H_
