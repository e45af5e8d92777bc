#ifndef CORVEX_TOOLS_FILE_LOCATOR_H_
#define CORVEX_TOOLS_FILE_LOCATOR_H_

#include <cstddef>
#include <string>
#include <vector>

namespace corvex_cli {

// What `corvex locate` does once its command line is read: reads an input, locates every tag
// and makes the text to print, with the messages for the user. The tool and the Python
// package's `python -m corvex locate` both run it, so that they answer alike.
class FileLocator {
 public:
  struct Request {
    std::string path;              // a file, or "-" for standard input
    std::string format = "jsonl";  // jsonl, csv or geojson
    std::string output;            // a file for the answers; empty: hand them back as text
    // debug, info, warn or error: each call's lines of that level and above go into its
    // answer; empty: none.
    std::string log;
    size_t newest = 0;      // when above 0, only the newest this many records of a tag are used
    int jobs = 1;           // tags located at once (1 to 1024)
    bool strict = false;    // a value no phone produces is an error
    bool progress = false;  // show progress on stderr (for a terminal)
  };
  struct Outcome {
    int exitCode = 0;  // an ExitCode
    std::string text;  // the answers, when not written to the output file
    // For stderr, in order; each without the "corvex: " in front and the line end.
    std::vector<std::string> messages;
  };

  static Outcome run(Request const& request);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_FILE_LOCATOR_H_
