#include "support/whole_call_tags.h"

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

namespace corvex_test {
namespace {

char const* stored(std::string const& text) {
  static std::set<std::string> texts;  // a fixed address per text
  return texts.insert(text).first->c_str();
}

}  // namespace

// The rows of a tag follow each other; an empty building means no indoor information.
std::vector<Tag> wholeCallTags() {
  std::ifstream in(CORVEX_SOURCE_DIR "/tests/interface/whole_calls.csv");
  std::vector<Tag> tags;
  std::string line;
  std::getline(in, line);  // the header
  while (std::getline(in, line)) {
    std::vector<std::string> f;
    std::istringstream cells(line);
    for (std::string cell; std::getline(cells, cell, ',');) f.push_back(cell);
    f.resize(14);
    if (tags.empty() || tags.back().name != f[0]) tags.push_back({f[0], {}});
    AggregateScanInfo info{};
    info.timeStamp = std::stoll(f[1]);
    info.rssi = std::stoi(f[2]);
    info.confidence = std::strtod(f[3].c_str(), nullptr);
    info.lon = std::strtod(f[4].c_str(), nullptr);
    info.lat = std::strtod(f[5].c_str(), nullptr);
    info.acc = std::strtof(f[6].c_str(), nullptr);
    info.locationType = std::stoi(f[7]);
    info.locationSourceType = std::stoi(f[8]);
    if (!f[13].empty()) {
      info.indoorFlag = std::stoi(f[9]);
      info.floorId = std::stoi(f[10]);
      info.floorAcc = std::stoi(f[11]);
      info.floorInfo = stored(f[12]);
      info.geoId = stored(f[13]);
    }
    tags.back().infos.push_back(info);
  }
  return tags;
}

}  // namespace corvex_test
