#ifndef CORVEX_TOOLS_LOCATE_COMMAND_H_
#define CORVEX_TOOLS_LOCATE_COMMAND_H_

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

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
  bool write(std::string const& text) const;

  CLI::App* command_;
  std::string path_;
  std::string format_ = "jsonl";
  std::string output_;
  std::string log_;
  int jobs_ = 1;
  size_t newest_ = 0;
  bool strict_ = false;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_LOCATE_COMMAND_H_
