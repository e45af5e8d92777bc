#include "tools/locate_command.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "tools/exit_code.h"

namespace corvex_cli {

LocateCommand::LocateCommand(CLI::App* app)
    : command_(app->add_subcommand(
          "locate",
          "Locate every tag of a CSV or JSON file of scan records; prints one answer per tag, "
          "tags in order of first appearance")) {
  command_
      ->add_option("FILE", request_.path,
                   "CSV with a header row, or a JSON array of objects; - reads "
                   "standard input")
      ->required();
  command_->add_option("-j,--jobs", request_.jobs, "number of tags located at once")
      ->check(CLI::Range(1, 1024));
  command_
      ->add_option("-f,--format", request_.format,
                   "jsonl (one JSON object per line), csv or geojson")
      ->check(CLI::IsMember({"jsonl", "csv", "geojson"}));
  command_->add_option("-o,--output", request_.output,
                       "write the answers to this file, not stdout");
  command_
      ->add_option("--log", request_.log,
                   "add each call's library log lines of this level and above to its answer")
      ->check(CLI::IsMember({"debug", "info", "warn", "error"}));
  command_->add_option("--newest", request_.newest, "use only the newest N records of each tag")
      ->check(CLI::PositiveNumber);
  command_->add_flag("--strict", request_.strict,
                     "refuse values no phone produces (lon, lat, acc or confidence out of range)");
}

int LocateCommand::run() {
  request_.progress = ::isatty(STDERR_FILENO) != 0;
  FileLocator::Outcome const outcome = FileLocator::run(request_);
  for (std::string const& message : outcome.messages) {
    std::cerr << "corvex: " << message << "\n";
  }
  std::string const& text = outcome.text;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    std::cerr << "corvex: cannot write the output\n";
    return kExitFailure;
  }
  return outcome.exitCode;
}

}  // namespace corvex_cli
