#include "location_line_writer.h"

#include <charconv>
#include <nlohmann/json.hpp>

namespace corvex_python {

namespace {

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

std::string LocationLineWriter::write(LocationLine const& fields) {
  using nlohmann::ordered_json;
  ordered_json line;
  line["tag"] = fields.tag;
  line["code"] = fields.code;
  line["message"] = fields.message;
  line["lon"] = fields.lon;
  line["lat"] = fields.lat;
  line["acc"] = shortestDouble(fields.acc);
  line["confidence"] = fields.confidence;
  line["timeStamp"] = fields.timeStamp;
  line["runTimeStamp"] = fields.runTimeStamp;
  line["indoorFlag"] = fields.indoorFlag;
  line["geoId"] = fields.geoId;
  line["floorId"] = fields.floorId;
  line["floorAcc"] = fields.floorAcc;
  line["floorInfo"] = fields.floorInfo;
  line["infoCount"] = fields.infoCount;
  return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

}  // namespace corvex_python
