#include "tools/location_printer.h"

#include <charconv>
#include <nlohmann/json.hpp>

namespace corvex_cli {
namespace {

using nlohmann::ordered_json;

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

}  // namespace

std::string LocationPrinter::format(std::string const& tag, int code,
                                    AggregateLocationResult const& result, char const* traceLog) {
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
  // Building and floor texts come from the input as bytes; keep the line valid UTF-8.
  return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

}  // namespace corvex_cli
