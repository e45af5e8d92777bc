#ifndef CORVEX_TOOLS_RAW_SCAN_RECORD_H_
#define CORVEX_TOOLS_RAW_SCAN_RECORD_H_

#include <map>
#include <string>

namespace corvex_cli {

// One value of an input record as written, before it is checked.
struct RawField {
  enum class Kind {
    kText,    // a CSV cell: may hold a number or a string
    kNumber,  // a JSON number, in its shortest exact decimal form
    kString,  // a JSON string
    kOther,   // any other JSON value; text describes it
  };
  Kind kind = Kind::kText;
  std::string text;
  int line = 0;  // where the value is written (1-based)
};

// One input record keyed by field name; a JSON null or a missing key has no entry.
struct RawScanRecord {
  int line = 0;  // where the record starts (1-based)
  std::map<std::string, RawField> fields;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_RAW_SCAN_RECORD_H_
