#ifndef CORVEX_TOOLS_SCAN_TABLE_READER_H_
#define CORVEX_TOOLS_SCAN_TABLE_READER_H_

#include <string>

#include "tools/scan_table.h"

namespace corvex_cli {

// Reads a whole input of scan records (see ScanStreamReader) into a table grouped by tag,
// for commands that look at all records before they call the library.
class ScanTableReader {
 public:
  // path: a file, or "-" for standard input. False with "path:line: problem" in error.
  static bool readFile(std::string const& path, ScanTable* table, std::string* error);
  // name: how messages call the text.
  static bool readText(std::string const& name, std::string const& text, ScanTable* table,
                       std::string* error);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_TABLE_READER_H_
