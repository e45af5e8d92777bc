#ifndef CORVEX_TOOLS_CSV_SCAN_SOURCE_H_
#define CORVEX_TOOLS_CSV_SCAN_SOURCE_H_

#include <string>
#include <vector>

#include "tools/raw_scan_record.h"

namespace corvex_cli {

// Reads scan records from CSV: a header row naming the columns (every required field, an
// optional tag column, other columns ignored), then one record per row.
class CsvScanSource {
 public:
  // False with "name:line: problem" in error.
  static bool read(std::string const& name, std::string const& text,
                   std::vector<RawScanRecord>* records, std::string* error);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_CSV_SCAN_SOURCE_H_
