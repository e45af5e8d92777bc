#ifndef CORVEX_TOOLS_TAG_LOCATOR_H_
#define CORVEX_TOOLS_TAG_LOCATOR_H_

#include <string>
#include <vector>

#include "tools/tag_scans.h"

namespace corvex_cli {

// Locates every tag with one library call each and formats the answers.
class TagLocator {
 public:
  // One output line per tag, in the order of tags; jobs (at least 1) calls run at once.
  static std::vector<std::string> locateAll(std::vector<TagScans> const& tags, int jobs);
  static std::string locate(TagScans const& tag);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_TAG_LOCATOR_H_
