// corvex: the command-line face of the library. `corvex locate FILE` reads scan records of
// any number of tags and prints one JSON line per tag; `corvex explain FILE` writes an HTML
// report of one tag's call.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "corvex/aggregate_location.h"
#include "tools/explain_command.h"
#include "tools/scan_table_reader.h"
#include "tools/tag_locator.h"

namespace {

constexpr int kExitFailure = 1;     // could not finish (out of memory, output not written)
constexpr int kExitBadCommand = 2;  // bad command line or bad input; nothing was printed

int runLocate(std::string const& path, int jobs) {
  std::vector<corvex_cli::TagScans> tags;
  std::string error;
  if (!corvex_cli::ScanTableReader::readFile(path, &tags, &error)) {
    std::cerr << "corvex: " << error << "\n";
    return kExitBadCommand;
  }
  std::string output;
  for (std::string const& line : corvex_cli::TagLocator::locateAll(tags, jobs)) {
    output += line;
    output += '\n';
  }
  if (std::fwrite(output.data(), 1, output.size(), stdout) != output.size() ||
      std::fflush(stdout) != 0) {
    std::cerr << "corvex: cannot write the output\n";
    return kExitFailure;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"corvex: estimates where Bluetooth Low Energy tags are from phone scan records"};
  app.set_version_flag("--version", CORVEX_VERSION_STRING);
  app.require_subcommand(1);
  CLI::App* locate = app.add_subcommand(
      "locate",
      "Locate every tag of a CSV or JSON file of scan records; prints one JSON object per tag "
      "and line, tags in order of first appearance");
  std::string path;
  int jobs = 1;
  locate->add_option("FILE", path, "CSV with a header row, or a JSON array of objects")->required();
  locate->add_option("-j,--jobs", jobs, "number of tags located at once")
      ->check(CLI::Range(1, 1024));
  corvex_cli::ExplainCommand::Options explainOptions;
  CLI::App* explain = corvex_cli::ExplainCommand::addTo(app, &explainOptions);
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& e) {
    return app.exit(e) == 0 ? 0 : kExitBadCommand;
  }
  try {
    return *explain ? corvex_cli::ExplainCommand::run(explainOptions) : runLocate(path, jobs);
  } catch (std::exception const& e) {
    std::cerr << "corvex: " << e.what() << "\n";
    return kExitFailure;
  }
}
