#ifndef CORVEX_TOOLS_SCAN_CONSUMER_H_
#define CORVEX_TOOLS_SCAN_CONSUMER_H_

#include <string>

#include "tools/scan_record.h"

namespace corvex_cli {

// Takes the records of an input one at a time, in input order.
class ScanConsumer {
 public:
  virtual ~ScanConsumer() = default;
  // False with a message in error stops the reading.
  virtual bool add(ScanRecord const& record, std::string* error) = 0;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_CONSUMER_H_
