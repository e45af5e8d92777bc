#include "tools/scan_table_reader.h"

#include <gtest/gtest.h>

#include <charconv>
#include <string>
#include <vector>

namespace corvex_cli {
namespace {

std::string const kHeader =
    "tag,timeStamp,rssi,confidence,lon,lat,acc,locationType,locationSourceType,indoorFlag,"
    "floorId,floorAcc,floorInfo,geoId\n";

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

// The shortest text that reads back as the same number.
template <typename Number>
std::string exact(Number value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// Every value the library reads, one line per record, tag by tag; or the error.
std::string read(std::string const& name, std::string const& text) {
  std::vector<TagScans> tags;
  std::string error;
  if (!ScanTableReader::readText(name, text, &tags, &error)) {
    return tags.empty() ? error : "records despite " + error;
  }
  std::string out;
  for (TagScans const& tag : tags) {
    for (AggregateScanInfo const& i : tag.toScanInfos()) {
      for (std::string const& value :
           {tag.tag + ":", exact(i.timeStamp), exact(i.rssi), exact(i.confidence), exact(i.lon),
            exact(i.lat), exact(i.acc), exact(i.locationType), exact(i.locationSourceType),
            exact(i.indoorFlag), exact(i.floorId), exact(i.floorAcc)}) {
        out += value + " ";
      }
      out += i.geoId ? std::string(i.geoId) + " '" + i.floorInfo + "'\n" : "-\n";
    }
  }
  return out;
}

TEST(ScanTableReader, GroupsRecordsByTagInOrderOfFirstAppearance) {
  // A record without a building ("-") carries no indoor information.
  std::string const expected =
      "b: 1700000000000 -70 0.9 8.54 47.37 10.5 1 2 0 0 0 -\n"
      "b: 1700000002000 0 1 8.5401 47.3701 7 1 1 1 4 0 B2 ''\n"
      "a: 1700000001000 -61 0.25 -0.1 51.5 3 0 3 1 -2 1 B1 'F-2, garage'\n";
  EXPECT_EQ(read("in.csv", kCsv), expected);
  EXPECT_EQ(read("in.json", kJson), expected);
}

TEST(ScanTableReader, AcceptsLooseButUnambiguousCsv) {
  // Padded header names and numbers, an unread column, no tag column (one tag), special
  // numbers, and indoor fields that are not read without a building.
  EXPECT_EQ(read("in.csv",
                 " timeStamp , rssi,confidence,lon,lat,acc,locationType,locationSourceType,"
                 "indoorFlag,floorId,floorAcc,floorInfo,geoId,note\n"
                 " 5 , -80 ,nan,inf,-inf,1e-3,1,1,x,y,z,,,any text\n"),
            ": 5 -80 nan inf -inf 0.001 1 1 0 0 0 -\n");
}

TEST(ScanTableReader, ReportsMistakesWithFileLineAndField) {
  std::string const good = "t,1,-70,0.9,8.5,47.3,10,1,1,,,,,\n";
  std::string const fields =
      R"("timeStamp": 1, "confidence": 0.9, "lon": 8.5, "lat": 47.3, "acc": 10,
   "locationType": 1, "locationSourceType": 1)";
  struct Case {
    std::string name;
    std::string text;
    std::string error;
  };
  Case const cases[] = {
      {"in.csv", "", "in.csv: no header row"},
      {"in.csv", "tag,timeStamp,confidence\n", "in.csv:1: missing column 'rssi'"},
      {"in.csv", "rssi," + kHeader, "in.csv:1: column 'rssi' appears twice"},
      {"in.csv", kHeader + good + "t,2,loud,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:3: field 'rssi': expected an integer, found 'loud'"},
      {"in.csv", kHeader + good + "t,2,3000000000,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:3: field 'rssi': '3000000000' is out of range for a 32-bit integer"},
      {"in.csv", kHeader + "t,99999999999999999999,-70,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'timeStamp': '99999999999999999999' is out of range for a 64-bit "
       "integer"},
      {"in.csv", kHeader + "t,1.5,-70,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'timeStamp': expected an integer, found '1.5'"},
      {"in.csv", kHeader + "t,1,-70,0.9,east,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'lon': expected a number, found 'east'"},
      {"in.csv", kHeader + "t,1,-70,0.9,8.5,47.3,1e39,1,1,,,,,\n",
       "in.csv:2: field 'acc': '1e39' is out of range for a float"},
      {"in.csv", kHeader + "t,1,-70,,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'confidence': no value"},
      {"in.csv", kHeader + "t,1,-70,0.9,8.5,47.3,10,1,1,1,,0,F1,B1\n",
       "in.csv:2: field 'floorId': no value"},
      {"in.csv", kHeader + "\n" + good + "t,1,-70\n",
       "in.csv:4: expected 14 fields as in the header, found 3"},
      {"in.json", "[\n  {\"rssi\": -70,\n",
       "in.json:3: invalid JSON: syntax error while parsing object key - unexpected end of "
       "input; expected string literal"},
      {"in.json", "{\"rssi\": -70}", "in.json:1: expected an array of records"},
      {"in.json", "[\n  {\"rssi\": -70, " + fields + "},\n  17\n]",
       "in.json:4: record 2 is not an object"},
      {"in.json", "[\n  {" + fields + "}\n]", "in.json:2: field 'rssi': no value"},
      {"in.json", "[\n  {" + fields + ",\n   \"rssi\": \"-70\"}\n]",
       "in.json:4: field 'rssi': expected a number, found the string '-70'"},
      {"in.json", "[{\"rssi\": true, " + fields + "}]",
       "in.json:1: field 'rssi': expected a number, found true"},
      {"in.json", "[{\"rssi\": -70.5, " + fields + "}]",
       "in.json:1: field 'rssi': expected an integer, found '-70.5'"},
      {"in.json", "[{\"rssi\": -70, " + fields + ", \"geoId\": [1]}]",
       "in.json:2: field 'geoId': expected a string, found an array"},
      {"in.json", "[\n\n{\"rssi\": 1e999}]",
       "in.json:3: invalid JSON: number overflow parsing '1e999'"},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(read(c.name, c.text), c.error) << c.text;
  }
  std::vector<TagScans> tags;
  std::string error;
  EXPECT_FALSE(ScanTableReader::readFile("/nonexistent/scans.csv", &tags, &error));
  EXPECT_EQ(error, "/nonexistent/scans.csv: cannot open: No such file or directory");
}

}  // namespace
}  // namespace corvex_cli
