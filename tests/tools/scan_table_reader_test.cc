#include "tools/scan_table_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace corvex_cli {
namespace {

std::string const kHeader =
    "tag,timeStamp,rssi,confidence,lon,lat,acc,locationType,locationSourceType,indoorFlag,"
    "floorId,floorAcc,floorInfo,geoId\n";

std::vector<TagScans> readOk(std::string const& name, std::string const& text) {
  std::vector<TagScans> tags;
  std::string error;
  EXPECT_TRUE(ScanTableReader::readText(name, text, &tags, &error)) << error;
  return tags;
}

std::string readError(std::string const& name, std::string const& text) {
  std::vector<TagScans> tags;
  std::string error;
  EXPECT_FALSE(ScanTableReader::readText(name, text, &tags, &error));
  EXPECT_TRUE(tags.empty());
  return error;
}

std::string const kCsv = kHeader +
                         "b,1700000000000,-70,0.9,8.54,47.37,10.5,1,2,,,,,\n"
                         "a,1700000001000,-61,0.25,-0.1,51.5,3,0,3,1,-2,1,\"F-2, garage\",B1\n"
                         "b,1700000002000,0,1,8.5401,47.3701,7,1,1,1,4,0,,B2\n";

std::string const kJson = R"([
  {"tag": "b", "timeStamp": 1700000000000, "rssi": -70, "confidence": 0.9, "lon": 8.54,
   "lat": 47.37, "acc": 10.5, "locationType": 1, "locationSourceType": 2, "geoId": null},
  {"tag": "a", "timeStamp": 1700000001000, "rssi": -61, "confidence": 0.25, "lon": -0.1,
   "lat": 51.5, "acc": 3, "locationType": 0, "locationSourceType": 3, "indoorFlag": 1,
   "floorId": -2, "floorAcc": 1, "floorInfo": "F-2, garage", "geoId": "B1"},
  {"tag": "b", "timeStamp": 1700000002000, "rssi": 0, "confidence": 1, "lon": 8.5401,
   "lat": 47.3701, "acc": 7, "locationType": 1, "locationSourceType": 1, "indoorFlag": 1,
   "floorId": 4, "floorAcc": 0, "floorInfo": "", "geoId": "B2"}
])";

// Every value the library reads, in field order.
auto valuesOf(ScanRow const& row) {
  AggregateScanInfo const& i = row.info;
  return std::make_tuple(i.timeStamp, i.rssi, i.confidence, i.lon, i.lat, i.acc, i.locationType,
                         i.locationSourceType, i.indoorFlag, i.floorId, i.floorAcc, row.floorInfo,
                         row.geoId);
}

TEST(ScanTableReader, GroupsCsvRecordsByTagInOrderOfFirstAppearance) {
  auto const tags = readOk("in.csv", kCsv);
  ASSERT_EQ(tags.size(), 2u);
  EXPECT_EQ(tags[0].tag, "b");
  EXPECT_EQ(tags[1].tag, "a");
  ASSERT_EQ(tags[0].rows.size(), 2u);
  ASSERT_EQ(tags[1].rows.size(), 1u);

  auto const b = tags[0].toScanInfos();
  EXPECT_EQ(b[0].timeStamp, 1700000000000);
  EXPECT_EQ(b[0].rssi, -70);
  EXPECT_EQ(b[0].confidence, 0.9);
  EXPECT_EQ(b[0].lon, 8.54);
  EXPECT_EQ(b[0].acc, 10.5f);
  EXPECT_EQ(b[0].locationSourceType, 2);
  EXPECT_EQ(b[0].geoId, nullptr);  // empty building: no indoor information
  EXPECT_STREQ(b[1].geoId, "B2");
  EXPECT_STREQ(b[1].floorInfo, "");
  EXPECT_EQ(b[1].floorId, 4);

  AggregateScanInfo const a = tags[1].toScanInfos()[0];
  EXPECT_EQ(a.lon, -0.1);
  EXPECT_STREQ(a.geoId, "B1");
  EXPECT_STREQ(a.floorInfo, "F-2, garage");
  EXPECT_EQ(a.indoorFlag, 1);
  EXPECT_EQ(a.floorId, -2);
  EXPECT_EQ(a.floorAcc, 1);
}

TEST(ScanTableReader, JsonInputEqualsCsvInput) {
  auto const fromCsv = readOk("in.csv", kCsv);
  auto const fromJson = readOk("in.json", kJson);
  ASSERT_EQ(fromJson.size(), fromCsv.size());
  for (size_t t = 0; t < fromCsv.size(); ++t) {
    EXPECT_EQ(fromJson[t].tag, fromCsv[t].tag);
    ASSERT_EQ(fromJson[t].rows.size(), fromCsv[t].rows.size());
    for (size_t r = 0; r < fromCsv[t].rows.size(); ++r) {
      EXPECT_EQ(valuesOf(fromJson[t].rows[r]), valuesOf(fromCsv[t].rows[r])) << t << "/" << r;
    }
  }
}

TEST(ScanTableReader, AcceptsLooseButUnambiguousCsv) {
  std::string const text =
      " timeStamp , rssi,confidence,lon,lat,acc,locationType,locationSourceType,indoorFlag,"
      "floorId,floorAcc,floorInfo,geoId,note\n"
      " 5 , -80 ,nan,inf,-inf,1e-3,1,1,x,y,z,,,any text\n";
  auto const tags = readOk("in.csv", text);
  ASSERT_EQ(tags.size(), 1u);
  EXPECT_EQ(tags[0].tag, "");  // no tag column: one tag
  AggregateScanInfo const info = tags[0].toScanInfos()[0];
  EXPECT_EQ(info.timeStamp, 5);
  EXPECT_EQ(info.rssi, -80);
  EXPECT_TRUE(std::isnan(info.confidence));
  EXPECT_EQ(info.lon, INFINITY);
  EXPECT_EQ(info.lat, -INFINITY);
  EXPECT_EQ(info.acc, 1e-3f);
  EXPECT_EQ(info.floorId, 0);  // not read without a building
}

TEST(ScanTableReader, ReportsCsvMistakesWithFileLineAndField) {
  std::string const good = "t,1,-70,0.9,8.5,47.3,10,1,1,,,,,\n";
  struct Case {
    std::string text;
    std::string error;
  };
  Case const cases[] = {
      {"", "in.csv: no header row"},
      {"tag,timeStamp,confidence\n", "in.csv:1: missing column 'rssi'"},
      {"rssi," + kHeader, "in.csv:1: column 'rssi' appears twice"},
      {kHeader + good + "t,2,loud,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:3: field 'rssi': expected an integer, found 'loud'"},
      {kHeader + good + "t,2,3000000000,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:3: field 'rssi': '3000000000' is out of range for a 32-bit integer"},
      {kHeader + "t,99999999999999999999,-70,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'timeStamp': '99999999999999999999' is out of range for a 64-bit "
       "integer"},
      {kHeader + "t,1.5,-70,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'timeStamp': expected an integer, found '1.5'"},
      {kHeader + "t,1,-70,0.9,east,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'lon': expected a number, found 'east'"},
      {kHeader + "t,1,-70,0.9,8.5,47.3,1e39,1,1,,,,,\n",
       "in.csv:2: field 'acc': '1e39' is out of range for a float"},
      {kHeader + "t,1,-70,,8.5,47.3,10,1,1,,,,,\n", "in.csv:2: field 'confidence': no value"},
      {kHeader + "t,1,-70,0.9,8.5,47.3,10,1,1,1,,0,F1,B1\n", "in.csv:2: field 'floorId': no value"},
      {kHeader + "\n" + good + "t,1,-70\n",
       "in.csv:4: expected 14 fields as in the header, found 3"},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(readError("in.csv", c.text), c.error) << c.text;
  }
}

TEST(ScanTableReader, ReportsJsonMistakesWithFileLineAndField) {
  std::string const fields =
      R"("timeStamp": 1, "confidence": 0.9, "lon": 8.5, "lat": 47.3, "acc": 10,
   "locationType": 1, "locationSourceType": 1)";
  struct Case {
    std::string text;
    std::string error;
  };
  Case const cases[] = {
      {"[\n  {\"rssi\": -70,\n",
       "in.json:3: invalid JSON: syntax error while parsing object key - "
       "unexpected end of input; expected string literal"},
      {"{\"rssi\": -70}", "in.json:1: expected an array of records"},
      {"[\n  {\"rssi\": -70, " + fields + "},\n  17\n]", "in.json:4: record 2 is not an object"},
      {"[\n  {" + fields + "}\n]", "in.json:2: field 'rssi': no value"},
      {"[\n  {" + fields + ",\n   \"rssi\": \"-70\"}\n]",
       "in.json:4: field 'rssi': expected a number, found the string '-70'"},
      {"[{\"rssi\": true, " + fields + "}]",
       "in.json:1: field 'rssi': expected a number, found true"},
      {"[{\"rssi\": -70.5, " + fields + "}]",
       "in.json:1: field 'rssi': expected an integer, found '-70.5'"},
      {"[{\"rssi\": -70, " + fields + ", \"geoId\": [1]}]",
       "in.json:2: field 'geoId': expected a string, found an array"},
      {"[\n\n{\"rssi\": 1e999}]", "in.json:3: invalid JSON: number overflow parsing '1e999'"},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(readError("in.json", c.text), c.error) << c.text;
  }
}

TEST(ScanTableReader, ReportsUnreadableFiles) {
  std::vector<TagScans> tags;
  std::string error;
  EXPECT_FALSE(ScanTableReader::readFile("/nonexistent/scans.csv", &tags, &error));
  EXPECT_EQ(error, "/nonexistent/scans.csv: cannot open: No such file or directory");
}

}  // namespace
}  // namespace corvex_cli
