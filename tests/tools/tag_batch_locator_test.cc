#include "tools/tag_batch_locator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tools/scan_stream_reader.h"

namespace corvex_cli {
namespace {

using Format = LocationPrinter::Format;
using nlohmann::json;

std::string examples() {
  std::ifstream file(CORVEX_SOURCE_DIR "/examples/scans.csv");
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> answers(std::string const& text, Format format, int jobs) {
  TagBatchLocator locator({format, 7, 0}, jobs, nullptr, nullptr);
  InputBuffer input(text, 4096, "in.csv");
  std::string error;
  EXPECT_TRUE(ScanStreamReader::read(&input, false, &locator, &error)) << error;
  locator.finish();
  return {locator.answers().begin(), locator.answers().end()};
}

// Splits one CSV row (quoted cells may hold commas and doubled quotes).
std::vector<std::string> cells(std::string const& row) {
  std::vector<std::string> out(1);
  bool quoted = false;
  for (size_t i = 0; i < row.size(); ++i) {
    char const c = row[i];
    if (c == '"' && quoted && i + 1 < row.size() && row[i + 1] == '"') {
      out.back() += c;
      ++i;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      out.emplace_back();
    } else {
      out.back() += c;
    }
  }
  return out;
}

TEST(TagBatchLocator, GeoJsonAndCsvCarryTheJsonLinesAnswers) {
  std::string const text = examples();
  std::vector<std::string> const lines = answers(text, Format::kJsonLines, 2);
  std::vector<std::string> const features = answers(text, Format::kGeoJson, 2);
  std::vector<std::string> const rows = answers(text, Format::kCsv, 2);
  std::string const headerRow = LocationPrinter::header(Format::kCsv, false);
  std::vector<std::string> const header = cells(headerRow.substr(0, headerRow.size() - 1));
  ASSERT_EQ(features.size(), lines.size());
  ASSERT_EQ(rows.size(), lines.size());
  // RFC 7946: a collection of Features, each a Point of [lon, lat] in range or no geometry.
  json const collection = json::parse(LocationPrinter::header(Format::kGeoJson, false) +
                                      features[0] + "," + features[1] + "]}");
  EXPECT_EQ(collection["type"], "FeatureCollection");
  EXPECT_EQ(collection["features"].size(), 2u);
  for (size_t i = 0; i < lines.size(); ++i) {
    json const line = json::parse(lines[i]);
    json const feature = json::parse(features[i]);
    EXPECT_EQ(feature.size(), 3u);
    EXPECT_EQ(feature["type"], "Feature");
    EXPECT_EQ(feature["properties"], line);
    json const& geometry = feature["geometry"];
    EXPECT_EQ(geometry.is_null(), line["code"] != 0) << lines[i];
    if (!geometry.is_null()) {
      EXPECT_EQ(geometry.size(), 2u);
      EXPECT_EQ(geometry["type"], "Point");
      EXPECT_EQ(geometry["coordinates"], json::array({line["lon"], line["lat"]}));
      EXPECT_LE(std::fabs(geometry["coordinates"][0].get<double>()), 180);
      EXPECT_LE(std::fabs(geometry["coordinates"][1].get<double>()), 90);
    }
    // Read back by the header's names, each cell as the JSON value it stands for.
    std::vector<std::string> const row = cells(rows[i]);
    ASSERT_EQ(row.size(), header.size());
    json readBack = json::object();
    for (size_t c = 0; c < row.size(); ++c) {
      bool const text = line[header[c]].is_string();
      readBack[header[c]] = text ? json(row[c]) : row[c].empty() ? json() : json::parse(row[c]);
    }
    EXPECT_EQ(readBack, line);
  }
}

}  // namespace
}  // namespace corvex_cli
