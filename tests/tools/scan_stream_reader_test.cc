#include "tools/scan_stream_reader.h"

#include <gtest/gtest.h>

#include <charconv>
#include <string>

#include "tools/input_file.h"

namespace corvex_cli {
namespace {

std::string const kHeader =
    "tag,timeStamp,rssi,confidence,lon,lat,acc,locationType,locationSourceType,indoorFlag,"
    "floorId,floorAcc,floorInfo,geoId\n";
std::string const kGood = "t,1,-70,0.9,8.5,47.3,10,1,1,,,,,\n";
std::string const kFields = R"("timeStamp": 1, "confidence": 0.9, "lon": 8.5, "lat": 47.3,
   "acc": 10, "locationType": 1, "locationSourceType": 1)";

template <typename Number>
std::string exact(Number value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr) + " ";
}

// Every value a record hands on, one line per record; or the error.
class Dump : public ScanConsumer {
 public:
  bool add(ScanRecord const& r, std::string*) override {
    AggregateScanInfo const& i = r.info;
    text += std::to_string(r.line) + " " + std::string(r.tag) + ": " + exact(i.timeStamp) +
            exact(i.rssi) + exact(i.confidence) + exact(i.lon) + exact(i.lat) + exact(i.acc) +
            exact(i.locationType) + exact(i.locationSourceType) + exact(i.indoorFlag) +
            exact(i.floorId) + exact(i.floorAcc) + exact(r.implausible) +
            (r.indoor ? std::string(r.geoId) + " '" + std::string(r.floorInfo) + "'\n" : "-\n");
    return true;
  }
  std::string text;
};

std::string read(std::string const& name, std::string const& text, size_t chunk,
                 bool strict = false) {
  InputBuffer input(text, chunk, name);
  Dump dump;
  std::string error;
  return ScanStreamReader::read(&input, strict, &dump, &error) ? dump.text : error;
}

TEST(ScanStreamReader, ReadsCsvAndJsonAlikeInChunksOfAnySize) {
  std::string const csv =
      kHeader +
      "b,1700000000000,-70,0.9,8.54,47.37,10.5,1,2,,,,,\r\n\n"
      "a,1700000001000,-61,0.25,-0.1,51.5,3,0,3,1,-2,1,\"F-2, \"\"garage\"\"\nlevel\",B1\n"
      "b,1700000002000,0,1,8.5401,47.3701,7,1,1,1,4,0,,\xC3\xA9\n"
      "b,1,0,1.5,-181,90.5,-1,1,1,x,,,,\r";
  std::string const json =
      "\xEF\xBB\xBF [\n"
      R"(
  {"tag": "b", "timeStamp": 1700000000000, "rssi": -70, "confidence": 0.9, "lon": 8.54,
   "lat": 47.37, "acc": 10.5, "locationType": 1, "locationSourceType": 2, "geoId": null},
  {"tag": "a", "timeStamp": 1700000001000, "rssi": -61, "confidence": 0.25, "lon": -0.1,
   "lat": 51.5, "acc": 3, "locationType": 0, "locationSourceType": 3, "indoorFlag": 1,
   "floorId": -2, "floorAcc": 1, "floorInfo": "F-2, \"garage\"\nlevel", "geoId": "B1"},
  {"tag": "b", "timeStamp": 1700000002000, "rssi": 0, "confidence": 1, "lon": 8.5401,
   "lat": 47.3701, "acc": 7, "locationType": 1, "locationSourceType": 1, "indoorFlag": 1,
   "floorId": 4, "floorAcc": 0, "floorInfo": "", "geoId": "\u00e9", "extra": [{"x": []}]},
  {"tag": "b", "timeStamp": 1, "rssi": 0, "confidence": 1.5, "lon": -181, "lat": 90.5,
   "acc": -1, "locationType": 1, "locationSourceType": 1, "indoorFlag": "x"}
] )";
  // Line, tag and values; "-": no building, so no indoor information. The last record has
  // four values no phone produces (bits of confidence, lon, lat and acc: 120).
  std::string const records[] = {
      " b: 1700000000000 -70 0.9 8.54 47.37 10.5 1 2 0 0 0 0 -\n",
      " a: 1700000001000 -61 0.25 -0.1 51.5 3 0 3 1 -2 1 0 B1 'F-2, \"garage\"\nlevel'\n",
      " b: 1700000002000 0 1 8.5401 47.3701 7 1 1 1 4 0 0 \xC3\xA9 ''\n",
      " b: 1 0 1.5 -181 90.5 -1 1 1 0 0 0 120 -\n"};
  std::string const fromCsv =
      "2" + records[0] + "4" + records[1] + "6" + records[2] + "7" + records[3];
  std::string const fromJson =
      "3" + records[0] + "5" + records[1] + "8" + records[2] + "11" + records[3];
  for (size_t chunk : {1, 2, 3, 5, 8, 13, 1 << 20}) {
    EXPECT_EQ(read("in.csv", csv, chunk), fromCsv) << chunk;
    EXPECT_EQ(read("in.json", json, chunk), fromJson) << chunk;
  }
}

TEST(ScanStreamReader, ReportsMistakesAtTheirLine) {
  struct Case {
    std::string name;
    std::string text;
    std::string error;
  };
  std::string const longLine = kHeader + "t," + std::string(1 << 20, '1') + ",\n";
  Case const cases[] = {
      {"in.csv", "", "in.csv: no records"},
      {"in.csv", "\n" + kHeader, "in.csv: no records"},
      {"in.json", " [ ] ", "in.json: no records"},
      {"in.csv", "tag,timeStamp,confidence\n", "in.csv:1: missing column 'rssi'"},
      {"in.csv", "rssi," + kHeader, "in.csv:1: column 'rssi' appears twice"},
      {"in.csv", kHeader + kGood + "t,2,loud,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:3: field 'rssi': expected an integer, found 'loud'"},
      {"in.csv", kHeader + "t,2,3000000000,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'rssi': '3000000000' is out of range for a 32-bit integer"},
      {"in.csv", kHeader + "t,1.5,-70,0.9,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'timeStamp': expected an integer, found '1.5'"},
      {"in.csv", kHeader + "t,1,-70,0.9,8.5,47.3,1e39,1,1,,,,,\n",
       "in.csv:2: field 'acc': '1e39' is out of range for a float"},
      {"in.csv", kHeader + "t,1,-70,,8.5,47.3,10,1,1,,,,,\n",
       "in.csv:2: field 'confidence': no value"},
      {"in.csv", kHeader + "t,1,-70,0.9,8.5,47.3,10,1,1,1,,0,F1,B1\n",
       "in.csv:2: field 'floorId': no value"},
      {"in.csv", kHeader + "\n" + kGood + "t,1,-70\n",
       "in.csv:4: expected 14 fields as in the header, found 3"},
      {"in.csv", kHeader + "t" + std::string(3 << 20, ','),
       "in.csv:2: expected 14 fields as in the header, found more"},
      {"in.csv", longLine, "in.csv:2: line longer than 1048576 bytes"},
      {"in.csv", kHeader + "t,\"open\n\n", "in.csv:2: unterminated quoted field"},
      {"in.csv", kHeader + "\"x\"y,2\n", "in.csv:2: unexpected text after a closing quote"},
      {"in.csv", kHeader + "t,4\"5\n", "in.csv:2: quote inside an unquoted field"},
      {"in.json", "{\"rssi\": -70}",
       "in.json:1: invalid JSON: expected an array of records, found '{'"},
      {"in.json", "[\n  {\"rssi\": -70, " + kFields + "},\n  17\n]",
       "in.json:4: invalid JSON: record 2 is not an object"},
      {"in.json", "[\n  {" + kFields + "}\n]", "in.json:2: field 'rssi': no value"},
      {"in.json", "[{" + kFields + ",\n\"rssi\": \"-70\"}]",
       "in.json:3: field 'rssi': expected a number, found the string '-70'"},
      {"in.json", "[{\"rssi\": true, " + kFields + "}]",
       "in.json:1: field 'rssi': expected a number, found true"},
      {"in.json", "[{\"rssi\": -70, " + kFields + ", \"geoId\": [1]}]",
       "in.json:2: field 'geoId': expected a string, found an array"},
      {"in.json", "[{\"rssi\": 1e999, " + kFields + "}]",
       "in.json:1: field 'rssi': expected an integer, found '1e999'"},
      {"in.json", "[{\"rssi\": -70, " + kFields + ", \"rssi\": 1}]",
       "in.json:2: invalid JSON: key 'rssi' appears twice in a record"},
      {"in.json", "[{\"x\": 1, \"x\": 1}]",
       "in.json:1: invalid JSON: key 'x' appears twice in a record"},
      {"in.json", "[{\"x\": " + std::string(65, '[') + "}]",
       "in.json:1: invalid JSON: values nested deeper than 64 levels"},
      {"in.json", "[{\"rssi\": -70, " + kFields + "}] x",
       "in.json:2: invalid JSON: text after the array"},
      {"in.json", "[\n{\"rssi\": 01}]",
       "in.json:2: invalid JSON: expected ',' or '}' after a value, found '1'"},
      {"in.json", "[{\"x\": \"\\ud800\"}]",
       "in.json:1: invalid JSON: unpaired surrogate in a string"},
      {"in.json", "[{\"x\": \"a\tb\"}]",
       "in.json:1: invalid JSON: control character 0x09 in a string"},
      {"in.json", "[{\"x\": 1}", "in.json:1: field 'timeStamp': no value"},
      {"in.json", "[\n\n{\"x\": tru", "in.json:3: invalid JSON: unexpected end of input"},
      {"in.json", "[{\"x\": \"" + std::string(1 << 20, 'x') + "\"}]",
       "in.json:1: record longer than 1048576 bytes"},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(read(c.name, c.text, 1 << 16).substr(0, 200), c.error.substr(0, 200))
        << c.text.substr(0, 200);
  }
  EXPECT_EQ(read("in.csv", kHeader + kGood + "t,2,-70,0.9,8.5,-91,10,1,1,,,,,\n", 7, true),
            "in.csv:3: field 'lat': '-91' is outside -90..90, which no phone reports");
}

TEST(ScanStreamReader, RefusesEndlessInputWithoutBuildingIt) {
  InputFile zeros;
  std::string error;
  ASSERT_TRUE(zeros.open("/dev/zero", &error));
  InputBuffer input(zeros.fd(), zeros.name());
  Dump dump;
  EXPECT_FALSE(ScanStreamReader::read(&input, false, &dump, &error));
  EXPECT_EQ(error, "/dev/zero:1: line longer than 1048576 bytes");
  EXPECT_LT(input.bytesRead(), 2u << 20);
}

}  // namespace
}  // namespace corvex_cli
