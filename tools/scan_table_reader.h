#ifndef CORVEX_TOOLS_SCAN_TABLE_READER_H_
#define CORVEX_TOOLS_SCAN_TABLE_READER_H_

#include <string>
#include <vector>

#include "tools/tag_scans.h"

namespace corvex_cli {

// Reads a whole file of scan records, CSV or JSON (JSON when the first character other than
// blanks is '[' or '{'), checks every record and groups the records by tag in the order in
// which the tags first appear. Records without a tag form the tag "".
class ScanTableReader {
 public:
  // False with "path:line: problem" in error; nothing is returned then.
  static bool readFile(std::string const& path, std::vector<TagScans>* tags, std::string* error);
  // name: how messages call the text.
  static bool readText(std::string const& name, std::string const& text,
                       std::vector<TagScans>* tags, std::string* error);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_TABLE_READER_H_
