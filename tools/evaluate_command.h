#ifndef CORVEX_TOOLS_EVALUATE_COMMAND_H_
#define CORVEX_TOOLS_EVALUATE_COMMAND_H_

#include <CLI/CLI.hpp>

namespace corvex_cli {

// `corvex evaluate ...`: the evaluator lives in the Python package; this runs
// `/usr/bin/python3 -m corvex evaluate ...` in place of the tool, with the same arguments.
class EvaluateCommand {
 public:
  // Lists the subcommand in app's help; its arguments are never parsed here.
  static void addTo(CLI::App& app);

  // Whether the command line asks for evaluate.
  static bool chosen(int argc, char** argv);

  // Replaces the process with the Python one; returns an exit code only when that fails.
  static int run(int argc, char** argv);
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_EVALUATE_COMMAND_H_
