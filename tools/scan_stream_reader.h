#ifndef CORVEX_TOOLS_SCAN_STREAM_READER_H_
#define CORVEX_TOOLS_SCAN_STREAM_READER_H_

#include <string>

#include "tools/input_buffer.h"
#include "tools/scan_consumer.h"

namespace corvex_cli {

// Reads scan records, CSV or JSON (JSON when the first character other than blanks is '[' or
// '{'; a UTF-8 byte order mark is skipped), checks each one and hands it on in input order.
class ScanStreamReader {
 public:
  // strict: a value no phone produces is an error. False with "name:line: problem" (or
  // "name: no records") in error; records handed on before an error stay handed on.
  static bool read(InputBuffer* in, bool strict, ScanConsumer* consumer, std::string* error);
  // The same from a file; path "-" reads standard input. Not being able to open the file is
  // an error too ("path: cannot open: reason").
  static bool readFile(std::string const& path, bool strict, ScanConsumer* consumer,
                       std::string* error);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_STREAM_READER_H_
