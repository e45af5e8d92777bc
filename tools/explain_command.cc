#include "tools/explain_command.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <utility>

#include "platform/linux_log_sink.h"
#include "tools/exit_code.h"
#include "tools/explain_report.h"
#include "tools/scan_stream_reader.h"
#include "tools/tag_locator.h"

namespace corvex_cli {
namespace {

// Debian's libjs-leaflet; read only for --tiles.
constexpr char kLeafletDir[] = "/usr/share/javascript/leaflet/";

bool readText(std::string const& path, std::string* text) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  *text = content.str();
  return in.good() || in.eof();
}

// Leaflet's script without its source-map comment, which would make a browser's developer
// tools fetch a file that the page does not carry.
std::string withoutSourceMap(std::string script) {
  size_t const at = script.rfind("//# sourceMappingURL=");
  return at == std::string::npos ? script : script.erase(at);
}

bool readLeaflet(ExplainReport::Tiles* tiles, std::string* error) {
  std::string const dir = kLeafletDir;
  for (std::string const name : {"leaflet.min.js", "leaflet.css"}) {
    std::string* text = name == "leaflet.css" ? &tiles->style : &tiles->script;
    if (!readText(dir + name, text) || text->empty()) {
      *error = "--tiles needs Leaflet (Debian package libjs-leaflet): cannot read " + dir + name;
      return false;
    }
  }
  tiles->script = withoutSourceMap(tiles->script);
  return true;
}

bool writeOutput(std::string const& path, std::string const& page) {
  if (path == "-") {
    return std::fwrite(page.data(), 1, page.size(), stdout) == page.size() &&
           std::fflush(stdout) == 0;
  }
  std::ofstream out(path, std::ios::binary);
  out.write(page.data(), static_cast<std::streamsize>(page.size()));
  out.close();
  return !out.fail();
}

std::string tagList(ScanTable const& tags) {
  std::string list;
  for (size_t i = 0; i < tags.size(); ++i) {
    list += (list.empty() ? "'" : ", '") + tags.tag(i).tag + "'";
  }
  return list;
}

}  // namespace

CLI::App* ExplainCommand::addTo(CLI::App& app, Options* options) {
  CLI::App* command = app.add_subcommand(
      "explain",
      "Locate one tag and write an HTML report of what the call did: a map of its records "
      "coloured by the filter stage that removed them, the estimate, the stage counts, the "
      "trace and the call's log lines");
  command->add_option("FILE", options->path, "CSV with a header row, or a JSON array of objects")
      ->required();
  command->add_option("--tag", options->tag, "the tag to explain (needed when FILE holds several)")
      ->each([options](std::string const&) { options->tagGiven = true; });
  command->add_option("-o,--output", options->output, "report file; - writes to standard output")
      ->capture_default_str();
  command->add_flag("--tiles", options->tiles,
                    "draw the map over OpenStreetMap tiles (the page then loads them when opened)");
  return command;
}

bool ExplainCommand::chooseTag(ScanTable const& tags, Options const& options,
                               TagScans const** chosen, std::string* error) {
  for (size_t i = 0; i < tags.size(); ++i) {
    if (options.tagGiven ? tags.tag(i).tag == options.tag : tags.size() == 1) {
      *chosen = &tags.tag(i);
      return true;
    }
  }
  if (tags.size() == 0) {
    *error = options.path + ": no records";
  } else if (options.tagGiven) {
    *error = options.path + ": no tag '" + options.tag + "'; its tags: " + tagList(tags);
  } else {
    *error = options.path + " holds " + std::to_string(tags.size()) +
             " tags; choose one with --tag: " + tagList(tags);
  }
  return false;
}

ExplainModel ExplainCommand::explain(TagScans const& tag) {
  ExplainModel model;
  model.tag = tag.tag;
  model.records = tag.infos;
  TagLocator::Outcome outcome = TagLocator::call(model.records.data(), model.records.size(),
                                                 Vantis::Location::kPlatformLogDebug, &model.trace);
  model.code = outcome.code;
  model.result = outcome.result;
  model.result.geoId = nullptr;
  model.result.floorInfo = nullptr;
  model.geoId = outcome.geoId != nullptr ? outcome.geoId.get() : "";
  model.floorInfo = outcome.floorInfo != nullptr ? outcome.floorInfo.get() : "";
  model.traceLog = outcome.traceLog != nullptr ? outcome.traceLog.get() : "";
  model.log = std::move(outcome.log);
  return model;
}

int ExplainCommand::run(Options const& options) {
  ScanTable tags;
  std::string error;
  TagScans const* tag = nullptr;
  ExplainReport::Tiles tiles;
  if (!ScanStreamReader::readFile(options.path, /*strict=*/false, &tags, &error) ||
      !chooseTag(tags, options, &tag, &error) || (options.tiles && !readLeaflet(&tiles, &error))) {
    std::cerr << "corvex: " << error << "\n";
    return kExitBadCommand;
  }
  std::string const page = ExplainReport::render(explain(*tag), options.tiles ? &tiles : nullptr);
  if (!writeOutput(options.output, page)) {
    std::cerr << "corvex: cannot write " << options.output << "\n";
    return kExitFailure;
  }
  return 0;
}

}  // namespace corvex_cli
