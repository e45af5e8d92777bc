// corvex: the command-line face of the library. `corvex locate FILE` locates every tag of a
// file; `corvex explain FILE` writes an HTML report of one tag's call; `corvex evaluate` runs
// the Python package's evaluator. Each subcommand lives in a class of its own that adds itself
// to the command line and runs when chosen.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "corvex/aggregate_location.h"
#include "tools/evaluate_command.h"
#include "tools/exit_code.h"
#include "tools/explain_command.h"
#include "tools/locate_command.h"

namespace {

// CLI11 would call an unknown subcommand an unexpected argument; name it instead.
bool knownSubcommand(CLI::App const& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') {
    return true;
  }
  for (CLI::App const* command : app.get_subcommands({})) {
    if (command->get_name() == argv[1]) {
      return true;
    }
  }
  std::cerr << "corvex: unknown subcommand '" << argv[1] << "'; run corvex --help for the list\n";
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"corvex: estimates where Bluetooth Low Energy tags are from phone scan records"};
  app.set_version_flag("--version", "corvex " CORVEX_VERSION_STRING);
  app.require_subcommand(1);
  corvex_cli::LocateCommand locate(&app);
  corvex_cli::ExplainCommand::Options explainOptions;
  CLI::App* explain = corvex_cli::ExplainCommand::addTo(app, &explainOptions);
  corvex_cli::EvaluateCommand::addTo(app);
  if (!knownSubcommand(app, argc, argv)) {
    return corvex_cli::kExitBadCommand;
  }
  if (corvex_cli::EvaluateCommand::chosen(argc, argv)) {
    return corvex_cli::EvaluateCommand::run(argc, argv);  // its arguments are Python's to parse
  }
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& e) {
    return app.exit(e) == 0 ? corvex_cli::kExitSuccess : corvex_cli::kExitBadCommand;
  }
  try {
    if (locate.selected()) {
      return locate.run();
    }
    if (*explain) {
      return corvex_cli::ExplainCommand::run(explainOptions);
    }
  } catch (std::bad_alloc const&) {
    // Every record is kept until its tag is located for the last time.
    std::cerr << "corvex: out of memory: the input holds more records than fit; split it by tag\n";
    return corvex_cli::kExitFailure;
  } catch (std::exception const& e) {
    std::cerr << "corvex: " << e.what() << "\n";
    return corvex_cli::kExitFailure;
  }
  return corvex_cli::kExitBadCommand;  // CLI11 requires one subcommand; not reached
}
