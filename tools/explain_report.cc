#include "tools/explain_report.h"

#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "geometry/coordinate_converter.h"

namespace corvex_cli {
namespace {

using nlohmann::ordered_json;
using Vantis::Location::CoordinateConverter;

// The page template (tools/explain_page.html), embedded at build time.
constexpr char kPage[] =
#include "tools/explain_page.inc"
    ;

using Fate = Vantis::Location::LocateTrace::Fate;

// The page's name of each fate; unknown values read as not reached.
char const* stageName(Fate fate) {
  switch (fate) {
    case Fate::kAgeCut:
      return "age";
    case Fate::kKindTransId:
      return "kind";
    case Fate::kConfidenceCut:
      return "confidence";
    case Fate::kDynamicCluster:
      return "cluster400";
    case Fate::kStaticCluster:
      return "cluster60";
    case Fate::kGnssOffset:
      return "gnss";
    case Fate::kSpreadTrim:
      return "spread";
    case Fate::kKept:
      return "kept";
    case Fate::kNotReached:
      break;
  }
  return "none";
}

char levelLetter(int level) {
  static constexpr char kLetters[] = "DIWE";
  return level >= 3 && level <= 6 ? kLetters[level - 3] : '?';
}

bool finitePosition(double lon, double lat) { return std::isfinite(lon) && std::isfinite(lat); }

// Whether an answer with this code holds a place: answers built from an error code alone
// (empty input, unknown error) hold zeros.
bool answerIsPlace(int code, double lon, double lat) {
  return code != CORVEX_INPUT_INFO_EMPTY && code != CORVEX_UNKNOWN_ERROR &&
         finitePosition(lon, lat);
}

// The same for the call's result, where 500030 also returns local metres, not degrees.
bool resultIsPlace(int code, double lon, double lat) {
  return code != CORVEX_RSSI_OVER_LIMIT && answerIsPlace(code, lon, lat);
}

// The map's origin: the estimate when it is a position, else the newest record with a fix.
std::vector<double> mapOrigin(ExplainModel const& model, bool estimateDrawn) {
  if (estimateDrawn) {
    return {model.result.lon, model.result.lat};
  }
  std::vector<double> origin{0.0, 0.0};
  long long newest = 0;
  bool found = false;
  for (AggregateScanInfo const& info : model.records) {
    if (finitePosition(info.lon, info.lat) && (!found || info.timeStamp > newest)) {
      origin = {info.lon, info.lat};
      newest = info.timeStamp;
      found = true;
    }
  }
  return origin;
}

// East and north (metres) of a position, with the library's own local-plane conversion.
ordered_json place(double lon, double lat, std::vector<double> const& origin) {
  std::vector<double> const enu = CoordinateConverter::gpsConvertENU(lon, lat, origin);
  return {{"e", enu[0]}, {"n", enu[1]}, {"lon", lon}, {"lat", lat}};
}

ordered_json recordJson(AggregateScanInfo const& info, Fate fate,
                        std::vector<double> const& origin) {
  ordered_json record = place(info.lon, info.lat, origin);
  record["stage"] = stageName(fate);
  record["t"] = info.timeStamp;
  record["rssi"] = info.rssi;
  record["conf"] = info.confidence;
  record["acc"] = info.acc;
  record["type"] = info.locationType;
  record["source"] = info.locationSourceType;
  // As the library reads them: the indoor fields only when geoId is set.
  if (info.geoId != nullptr) {
    record["geoId"] = info.geoId;
    record["indoor"] = info.indoorFlag;
    record["floor"] = info.floorId;
    record["floorAcc"] = info.floorAcc;
    record["floorInfo"] = info.floorInfo != nullptr ? info.floorInfo : "";
  }
  return record;
}

// One calculator's answer; "drawn" when it is a place, "solved" when the fit produced it.
ordered_json outcomeJson(Vantis::Location::LocateTrace::Outcome const& outcome,
                         std::vector<double> const& origin) {
  if (!outcome.ran) {
    return nullptr;
  }
  ordered_json json = place(outcome.lon, outcome.lat, origin);
  json["acc"] = outcome.acc;
  json["code"] = outcome.code;
  json["runTimeStamp"] = outcome.runTimeStamp;
  json["drawn"] = answerIsPlace(outcome.code, outcome.lon, outcome.lat);
  json["solved"] = outcome.code == CORVEX_SUCCESS || outcome.code == CORVEX_RSSI_OVER_LIMIT;
  return json;
}

template <typename Value>
ordered_json votesJson(std::vector<std::pair<Value, int>> const& counts) {
  ordered_json json = ordered_json::array();
  for (auto const& [value, count] : counts) {
    json.push_back({value, count});
  }
  return json;
}

std::string fixed(double value, int decimals) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(decimals) << value;
  return text.str();
}

ordered_json fitJson(Vantis::Location::LocateTrace const& trace) {
  using Solver = Vantis::Location::LocateTrace::Solver;
  ordered_json fit = ordered_json::array();
  if (trace.hasReference) {
    fit.push_back({"plane origin", fixed(trace.referenceLat, 7) + ", " +
                                       fixed(trace.referenceLon, 7) + " (oldest record)"});
  }
  switch (trace.solver) {
    case Solver::kNone:
      fit.push_back({"solver", "none: the call ended before solving"});
      break;
    case Solver::kWeightedMean:
      fit.push_back({"solver", "weighted mean of the used records"});
      break;
    case Solver::kLeastSquares:
      fit.push_back({"solver", "least-squares range fit"});
      fit.push_back({"iterations", std::to_string(trace.solverIterations)});
      fit.push_back({"evaluations", std::to_string(trace.solverEvaluations)});
      fit.push_back({"residual RMS", fixed(trace.solverRms, 2) + " m"});
      break;
  }
  return fit;
}

ordered_json resultJson(ExplainModel const& model, std::vector<double> const& origin) {
  AggregateLocationResult const& result = model.result;
  ordered_json json = place(result.lon, result.lat, origin);
  json["acc"] = result.acc;
  json["confidence"] = result.confidence;
  json["timeStamp"] = result.timeStamp;
  json["runTimeStamp"] = result.runTimeStamp;
  json["indoorFlag"] = result.indoorFlag;
  json["geoId"] = model.geoId;
  json["floorId"] = result.floorId;
  json["floorAcc"] = result.floorAcc;
  json["floorInfo"] = model.floorInfo;
  return json;
}

ordered_json pageData(ExplainModel const& model, bool tiles) {
  // The trace is JSON apart from its unescaped message, which never holds a quote.
  ordered_json const traceJson = ordered_json::parse(model.traceLog, nullptr, false);
  bool const traceRead = traceJson.is_object();
  bool const drawn = resultIsPlace(model.code, model.result.lon, model.result.lat);
  std::vector<double> const origin = mapOrigin(model, drawn);
  ordered_json data;
  data["tag"] = model.tag;
  data["code"] = model.code;
  data["message"] = traceRead ? traceJson.value("errorMsg", "") : "";
  data["infoCount"] =
      traceRead ? traceJson.value("infoCount", ordered_json::array()) : ordered_json::array();
  data["trace"] = model.traceLog;
  data["tiles"] = tiles;
  data["origin"] = {{"lon", origin[0]}, {"lat", origin[1]}};
  data["result"] = resultJson(model, origin);
  data["result"]["drawn"] = drawn;
  Vantis::Location::LocateTrace const& trace = model.trace;
  data["mainPath"] = outcomeJson(trace.main, origin);
  data["kmeans"] = outcomeJson(trace.kmeans, origin);
  data["winner"] = trace.winner;
  data["fit"] = fitJson(trace);
  data["buildings"] = votesJson(trace.indoorVote.buildingCounts);
  data["floors"] = votesJson(trace.indoorVote.floorCounts);
  data["vote"] = {{"building", trace.indoorVote.building},
                  {"floor", trace.indoorVote.floor},
                  {"applied", trace.indoorVote.applied}};
  ordered_json& records = data["records"] = ordered_json::array();
  for (size_t i = 0; i < model.records.size(); ++i) {
    Fate const fate = i < trace.fates.size() ? trace.fates[i] : Fate::kNotReached;
    records.push_back(recordJson(model.records[i], fate, origin));
  }
  ordered_json& log = data["log"] = ordered_json::array();
  for (Vantis::Location::LogCapture::Line const& line : model.log) {
    log.push_back({std::string(1, levelLetter(line.level)), line.message});
  }
  return data;
}

// JSON that can sit inside a script element: '<' only occurs within strings, where \u003c
// means the same and cannot close the element.
std::string scriptSafeJson(ordered_json const& data) {
  std::string const text = data.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size());
  for (char c : text) {
    if (c == '<') {
      safe += "\\u003c";
    } else {
      safe += c;
    }
  }
  return safe;
}

// Replaces each "@NAME@" of the template by its value; values are not scanned again.
std::string fillTemplate(std::string const& page,
                         std::vector<std::pair<std::string, std::string>> const& values) {
  std::string out;
  size_t from = 0;
  while (true) {
    size_t best = std::string::npos;
    std::pair<std::string, std::string> const* chosen = nullptr;
    for (auto const& value : values) {
      size_t const at = page.find(value.first, from);
      if (at < best) {
        best = at;
        chosen = &value;
      }
    }
    if (chosen == nullptr) {
      break;
    }
    out.append(page, from, best - from);
    out += chosen->second;
    from = best + chosen->first.size();
  }
  out.append(page, from, std::string::npos);
  return out;
}

// Leaflet arrives as trusted library text; only its end marker could end the element early.
std::string inlineable(std::string text, std::string const& closer) {
  for (size_t at = text.find(closer); at != std::string::npos; at = text.find(closer, at)) {
    text.replace(at, 2, "<\\/");
  }
  return text;
}

}  // namespace

std::string ExplainReport::render(ExplainModel const& model, Tiles const* tiles) {
  std::string style;
  std::string script;
  if (tiles != nullptr) {
    style = "<style>" + inlineable(tiles->style, "</style") + "</style>";
    script = "<script>" + inlineable(tiles->script, "</script") + "</script>";
  }
  return fillTemplate(kPage, {{"@CORVEX_DATA@", scriptSafeJson(pageData(model, tiles != nullptr))},
                              {"@LEAFLET_STYLE@", style},
                              {"@LEAFLET_SCRIPT@", script}});
}

}  // namespace corvex_cli
