#include "tools/location_printer.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace corvex_cli {
namespace {

using nlohmann::ordered_json;

constexpr char const* kKeys[] = {"tag",   "code",       "message",   "lon",          "lat",
                                 "acc",   "confidence", "timeStamp", "runTimeStamp", "indoorFlag",
                                 "geoId", "floorId",    "floorAcc",  "floorInfo",    "infoCount"};

std::string textOrEmpty(char const* text) { return text != nullptr ? text : ""; }

// The double nearest to the float's shortest decimal form: it prints as that form (0.1f as
// 0.1, not 0.10000000149011612) and still reads back to the same float.
double shortestDouble(float value) {
  char text[32];
  std::to_chars_result const written = std::to_chars(text, text + sizeof text, value);
  double shortest = 0;
  std::from_chars(text, written.ptr, shortest);
  return shortest;
}

// Building and floor texts come from the input as bytes; keep the output valid UTF-8.
std::string dumped(ordered_json const& value) {
  return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json answer(std::string const& tag, int code, AggregateLocationResult const& result,
                    char const* traceLog, std::vector<std::string> const* log) {
  // The trace is JSON apart from its unescaped message, which never holds a quote.
  ordered_json const trace =
      ordered_json::parse(textOrEmpty(traceLog), nullptr, /*allow_exceptions=*/false);
  bool const traceRead = trace.is_object();
  ordered_json line;
  line["tag"] = tag;
  line["code"] = code;
  line["message"] = traceRead ? trace.value("errorMsg", "") : "";
  line["lon"] = result.lon;
  line["lat"] = result.lat;
  line["acc"] = shortestDouble(result.acc);
  line["confidence"] = result.confidence;
  line["timeStamp"] = result.timeStamp;
  line["runTimeStamp"] = result.runTimeStamp;
  line["indoorFlag"] = result.indoorFlag;
  line["geoId"] = textOrEmpty(result.geoId);
  line["floorId"] = result.floorId;
  line["floorAcc"] = result.floorAcc;
  line["floorInfo"] = textOrEmpty(result.floorInfo);
  line["infoCount"] =
      traceRead ? trace.value("infoCount", ordered_json::array()) : ordered_json::array();
  if (log != nullptr) {
    line["log"] = *log;
  }
  return line;
}

std::string csvCell(std::string const& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string quoted = "\"";
  for (char c : text) {
    quoted += c;
    if (c == '"') {
      quoted += '"';
    }
  }
  return quoted + "\"";
}

std::string csvRow(ordered_json const& line) {
  std::string row;
  for (auto const& [key, value] : line.items()) {
    row += row.empty() ? "" : ",";
    if (value.is_string()) {  // as the JSON forms show it, invalid UTF-8 replaced
      row += csvCell(ordered_json::parse(dumped(value)).get<std::string>());
    } else if (!value.is_null()) {
      row += csvCell(dumped(value));
    }
  }
  return row;
}

std::string feature(ordered_json const& line, AggregateLocationResult const& result, int code) {
  ordered_json geometry = nullptr;
  if (LocationPrinter::hasPosition(code) && std::isfinite(result.lon) &&
      std::isfinite(result.lat)) {
    geometry = {{"type", "Point"}, {"coordinates", {result.lon, result.lat}}};
  }
  ordered_json const feature = {{"type", "Feature"}, {"geometry", geometry}, {"properties", line}};
  return dumped(feature);
}

}  // namespace

std::string LocationPrinter::format(Format format, std::string const& tag, int code,
                                    AggregateLocationResult const& result, char const* traceLog,
                                    std::vector<std::string> const* log) {
  ordered_json const line = answer(tag, code, result, traceLog, log);
  switch (format) {
    case Format::kCsv:
      return csvRow(line);
    case Format::kGeoJson:
      return feature(line, result, code);
    case Format::kJsonLines:
      break;
  }
  return dumped(line);
}

std::string LocationPrinter::header(Format format, bool withLog) {
  if (format == Format::kGeoJson) {
    return "{\"type\":\"FeatureCollection\",\"features\":[\n";
  }
  if (format != Format::kCsv) {
    return "";
  }
  std::string row;
  for (char const* key : kKeys) {
    row += row.empty() ? key : std::string(",") + key;
  }
  return row + (withLog ? ",log\n" : "\n");
}

char const* LocationPrinter::separator(Format format) {
  return format == Format::kGeoJson ? ",\n" : "\n";
}

char const* LocationPrinter::footer(Format format) {
  return format == Format::kGeoJson ? "\n]}\n" : "\n";
}

}  // namespace corvex_cli
