#include "tools/tag_locator.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "tools/scan_table_reader.h"

namespace corvex_cli {
namespace {

TEST(TagLocator, AnswersEveryTagInInputOrderWhateverTheJobCount) {
  corvex_test::LogCapture capture;
  std::vector<TagScans> tags;
  std::string error;
  ASSERT_TRUE(ScanTableReader::readFile(CORVEX_SOURCE_DIR "/examples/scans.csv", &tags, &error))
      << error;
  std::vector<std::string> const sequential = TagLocator::locateAll(tags, 1);
  ASSERT_EQ(sequential.size(), tags.size());
  for (size_t i = 0; i < tags.size(); ++i) {
    auto const line = nlohmann::json::parse(sequential[i]);
    EXPECT_EQ(line["tag"], tags[i].tag);
    EXPECT_EQ(line["code"].get<int>() == 0, line["message"] == "Success") << sequential[i];
  }
  EXPECT_EQ(TagLocator::locateAll(tags, 4), sequential);
  EXPECT_EQ(TagLocator::locateAll(tags, 64), sequential);
}

}  // namespace
}  // namespace corvex_cli
