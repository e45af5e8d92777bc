#ifndef CORVEX_TOOLS_TAG_LOCATOR_H_
#define CORVEX_TOOLS_TAG_LOCATOR_H_

#include <cstddef>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "tools/location_printer.h"
#include "tools/tag_scans.h"

namespace corvex_cli {

// Locates one tag with one library call and formats the answer.
class TagLocator {
 public:
  struct Options {
    LocationPrinter::Format format = LocationPrinter::Format::kJsonLines;
    int logLevel = 7;  // lowest level of the call's log lines to print (3 debug to 6 error); 7 none
    size_t newest = 0;  // when above 0, only the newest this many records of a tag are used
  };

  // Safe to call from several threads at once. The call's log lines go nowhere but into the
  // answer.
  static std::string locate(TagScans const& tag, Options const& options);
  // The newest count records (greatest timeStamp; among equal ones the later in input order),
  // in input order.
  static std::vector<AggregateScanInfo> newest(std::vector<AggregateScanInfo> const& infos,
                                               size_t count);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_TAG_LOCATOR_H_
