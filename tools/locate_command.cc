#include "tools/locate_command.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <vector>

#include "platform/linux_log_sink.h"
#include "tools/exit_code.h"
#include "tools/input_buffer.h"
#include "tools/input_file.h"
#include "tools/progress_meter.h"
#include "tools/scan_stream_reader.h"
#include "tools/tag_batch_locator.h"

namespace corvex_cli {
namespace {

using Format = LocationPrinter::Format;
using Vantis::Location::LinuxLogSink;

std::map<std::string, Format> const kFormats = {
    {"jsonl", Format::kJsonLines}, {"csv", Format::kCsv}, {"geojson", Format::kGeoJson}};
std::map<std::string, int> const kLogLevels = {
    {"debug", 3}, {"info", 4}, {"warn", 5}, {"error", 6}};

void tell(std::string const& message) { std::cerr << "corvex: " << message << "\n"; }

std::string joined(LocationPrinter::Format format, bool withLog,
                   std::deque<std::string> const& answers) {
  std::string text = LocationPrinter::header(format, withLog);
  for (size_t i = 0; i < answers.size(); ++i) {
    text += answers[i];
    text += i + 1 < answers.size() ? LocationPrinter::separator(format)
                                   : LocationPrinter::footer(format);
  }
  return text;
}

}  // namespace

LocateCommand::LocateCommand(CLI::App* app)
    : command_(app->add_subcommand(
          "locate",
          "Locate every tag of a CSV or JSON file of scan records; prints one answer per tag, "
          "tags in order of first appearance")) {
  command_
      ->add_option("FILE", path_,
                   "CSV with a header row, or a JSON array of objects; - reads "
                   "standard input")
      ->required();
  command_->add_option("-j,--jobs", jobs_, "number of tags located at once")
      ->check(CLI::Range(1, 1024));
  command_->add_option("-f,--format", format_, "jsonl (one JSON object per line), csv or geojson")
      ->check(CLI::IsMember({"jsonl", "csv", "geojson"}));
  command_->add_option("-o,--output", output_, "write the answers to this file, not stdout");
  command_
      ->add_option("--log", log_,
                   "add each call's library log lines of this level and above to its answer")
      ->check(CLI::IsMember({"debug", "info", "warn", "error"}));
  command_->add_option("--newest", newest_, "use only the newest N records of each tag")
      ->check(CLI::PositiveNumber);
  command_->add_flag("--strict", strict_,
                     "refuse values no phone produces (lon, lat, acc or confidence out of range)");
}

int LocateCommand::run() {
  for (std::string const& problem : LinuxLogSink::environmentProblems()) {
    tell(problem);
  }
  std::string error;
  InputFile file;
  if (!file.open(path_, &error)) {
    tell(error);
    return kExitBadCommand;
  }
  bool const withLog = !log_.empty();
  TagLocator::Options const options{
      kFormats.at(format_), withLog ? kLogLevels.at(log_) : Vantis::Location::kPlatformLogOff,
      newest_};
  InputBuffer input(file.fd(), file.name());
  ProgressMeter progress(::isatty(STDERR_FILENO) != 0, file.size());
  std::string text;
  {
    TagBatchLocator locator(options, jobs_, &input, &progress);
    bool const read = ScanStreamReader::read(&input, strict_, &locator, &error);
    progress.clear();
    if (!read) {
      tell(error);
      return kExitBadCommand;
    }
    locator.finish();
    for (std::string const& note : locator.notes()) {
      tell(note);
    }
    text = joined(options.format, withLog, locator.answers());
  }
  if (!write(text)) {
    tell("cannot write " + (output_.empty() ? std::string("the output") : output_));
    return kExitFailure;
  }
  return kExitSuccess;
}

bool LocateCommand::write(std::string const& text) const {
  std::FILE* out = stdout;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(nullptr, &std::fclose);
  if (!output_.empty()) {
    file.reset(std::fopen(output_.c_str(), "wb"));
    if (file == nullptr) {
      return false;
    }
    out = file.get();
  }
  bool const written =
      std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
  return written && (file == nullptr || std::fclose(file.release()) == 0);
}

}  // namespace corvex_cli
