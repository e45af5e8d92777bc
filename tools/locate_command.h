#ifndef CORVEX_TOOLS_LOCATE_COMMAND_H_
#define CORVEX_TOOLS_LOCATE_COMMAND_H_

#include <CLI/CLI.hpp>

#include "tools/file_locator.h"

namespace corvex_cli {

// `corvex locate FILE`: locates every tag of a file of scan records and prints one answer per
// tag, in order of first appearance.
class LocateCommand {
 public:
  // Adds the subcommand and its options to app.
  explicit LocateCommand(CLI::App* app);

  bool selected() const { return command_->parsed(); }
  // The exit code.
  int run();

 private:
  CLI::App* command_;
  FileLocator::Request request_;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_LOCATE_COMMAND_H_
