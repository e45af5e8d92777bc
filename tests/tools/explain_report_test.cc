#include "tools/explain_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

namespace corvex_cli {
namespace {

using Fate = Vantis::Location::LocateTrace::Fate;

// How often the page could end a script or style element early.
int closers(std::string page) {
  std::transform(page.begin(), page.end(), page.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  int count = 0;
  for (std::string const closer : {"</script", "</style"}) {
    for (size_t at = page.find(closer); at != std::string::npos; at = page.find(closer, at + 1)) {
      ++count;
    }
  }
  return count;
}

nlohmann::json pageData(std::string const& page) {
  std::string const open = "<script type=\"application/json\" id=\"corvex-data\">";
  size_t const from = page.find(open) + open.size();
  return nlohmann::json::parse(page.substr(from, page.find("</script>", from) - from));
}

TEST(ExplainReport, DataStaysInsideItsElementAndReadsBackWhateverTheInputHolds) {
  ExplainModel model;
  model.tag = "</script><script>alert(1)</script>";
  AggregateScanInfo record{};
  record.lon = std::numeric_limits<double>::quiet_NaN();
  record.lat = std::numeric_limits<double>::infinity();
  record.geoId = "</SCRIPT \xff";
  record.floorInfo = "<!--";
  model.records = {record, record};
  model.trace.fates = {Fate::kKept};  // fewer fates than records
  model.traceLog = "not a trace";
  model.log = {{6, "</style>"}};
  ExplainReport::Tiles const tiles{"s='</script>';", "a{}</style>"};
  ExplainReport::Tiles const emptyTiles;

  std::string const page = ExplainReport::render(model, &tiles);
  EXPECT_EQ(closers(page), closers(ExplainReport::render(ExplainModel{}, &emptyTiles)));
  nlohmann::json const data = pageData(page);
  EXPECT_EQ(data["tag"], model.tag);
  EXPECT_TRUE(data["records"][0]["e"].is_null());
  EXPECT_EQ(data["records"][0]["stage"], "kept");
  EXPECT_EQ(data["records"][1]["stage"], "none");
  EXPECT_EQ(data["log"][0][1], "</style>");
}

}  // namespace
}  // namespace corvex_cli
