#ifndef CORVEX_TOOLS_JSON_SCAN_SOURCE_H_
#define CORVEX_TOOLS_JSON_SCAN_SOURCE_H_

#include <string>
#include <vector>

#include "tools/raw_scan_record.h"

namespace corvex_cli {

// Reads scan records from JSON: an array of objects keyed by field name. Remembers the line of
// every record and value so that messages can point at them.
class JsonScanSource {
 public:
  // False with "name:line: problem" in error.
  static bool read(std::string const& name, std::string const& text,
                   std::vector<RawScanRecord>* records, std::string* error);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_JSON_SCAN_SOURCE_H_
