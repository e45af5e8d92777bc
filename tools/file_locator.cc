#include "tools/file_locator.h"

#include <cstdio>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <new>

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

std::string joined(Format format, bool withLog, std::deque<std::string> const& answers) {
  std::string text = LocationPrinter::header(format, withLog);
  for (size_t i = 0; i < answers.size(); ++i) {
    text += answers[i];
    text += i + 1 < answers.size() ? LocationPrinter::separator(format)
                                   : LocationPrinter::footer(format);
  }
  return text;
}

bool writeFile(std::string const& path, std::string const& text) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"),
                                                       &std::fclose);
  if (file == nullptr) {
    return false;
  }
  bool const written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  return std::fclose(file.release()) == 0 && written;
}

// Reads and locates; the answers go to outcome->text.
void locate(FileLocator::Request const& request, FileLocator::Outcome* outcome) {
  std::string error;
  InputFile file;
  if (!file.open(request.path, &error)) {
    outcome->messages.push_back(error);
    outcome->exitCode = kExitBadCommand;
    return;
  }
  bool const withLog = !request.log.empty();
  auto const format = kFormats.find(request.format);
  auto const level = kLogLevels.find(request.log);
  if (format == kFormats.end() || (withLog && level == kLogLevels.end())) {
    outcome->messages.push_back("unknown format '" + request.format + "' or log level '" +
                                request.log + "'");
    outcome->exitCode = kExitBadCommand;
    return;
  }
  TagLocator::Options const options{
      format->second, withLog ? level->second : Vantis::Location::kPlatformLogOff, request.newest};
  InputBuffer input(file.fd(), file.name());
  ProgressMeter progress(request.progress, file.size());
  TagBatchLocator locator(options, request.jobs, &input, &progress);
  bool const read = ScanStreamReader::read(&input, request.strict, &locator, &error);
  progress.clear();
  if (!read) {
    outcome->messages.push_back(error);
    outcome->exitCode = kExitBadCommand;
    return;
  }
  locator.finish();
  for (std::string const& note : locator.notes()) {
    outcome->messages.push_back(note);
  }
  outcome->text = joined(options.format, withLog, locator.answers());
}

void fail(FileLocator::Outcome* outcome, std::string const& message) {
  outcome->exitCode = kExitFailure;
  outcome->text.clear();
  outcome->messages.push_back(message);
}

}  // namespace

FileLocator::Outcome FileLocator::run(Request const& request) {
  Outcome outcome;
  outcome.messages = LinuxLogSink::environmentProblems();
  try {
    locate(request, &outcome);
  } catch (std::bad_alloc const&) {
    // Every record is kept until its tag is located for the last time.
    fail(&outcome, "out of memory: the input holds more records than fit; split it by tag");
  } catch (std::exception const& e) {
    fail(&outcome, e.what());
  }
  if (outcome.exitCode == kExitSuccess && !request.output.empty()) {
    if (!writeFile(request.output, outcome.text)) {
      outcome.messages.push_back("cannot write " + request.output);
      outcome.exitCode = kExitFailure;
    }
    outcome.text.clear();
  }
  return outcome;
}

}  // namespace corvex_cli
