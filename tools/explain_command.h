#ifndef CORVEX_TOOLS_EXPLAIN_COMMAND_H_
#define CORVEX_TOOLS_EXPLAIN_COMMAND_H_

#include <CLI/CLI.hpp>
#include <string>

#include "tools/explain_model.h"
#include "tools/scan_table.h"
#include "tools/tag_scans.h"

namespace corvex_cli {

// `corvex explain FILE [--tag TAG] [-o report.html] [--tiles]`: locates one tag with the
// call observer switched on and writes what the call did as one HTML page.
class ExplainCommand {
 public:
  struct Options {
    std::string path;
    std::string tag;
    bool tagGiven = false;
    std::string output = "report.html";  // "-" writes to standard output
    bool tiles = false;
  };

  // Adds the subcommand to app; its values land in options when the command line is parsed.
  static CLI::App* addTo(CLI::App& app, Options* options);

  // Exit code: 0 written, 1 not written (output error), 2 bad input or unknown tag.
  static int run(Options const& options);

  // The tag to explain: the one named, or the only one. False with a message naming the
  // tags of the file when neither applies.
  static bool chooseTag(ScanTable const& tags, Options const& options, TagScans const** chosen,
                        std::string* error);

  // Runs one library call for the tag and collects everything the report shows; the model's
  // records point into the tag's strings.
  static ExplainModel explain(TagScans const& tag);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_EXPLAIN_COMMAND_H_
