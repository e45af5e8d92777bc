#include "model/shared_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace Vantis::Location {
namespace {

// Texts ranked together compare by rank, so the ranking must be exactly bytewise order. Drawn
// from few letters (bytes above 127 among them) over long common prefixes, with prefixes of
// one another and repeats, which is where a prefix-skipping sort can go wrong.
TEST(SharedText, RankedTextsCompareAsTheirBytes) {
  std::mt19937 random(5);
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  std::string const letters = "ab\xe9";
  for (int round = 0; round < 200; ++round) {
    std::string const stem(static_cast<std::size_t>(uniform(0, 3) * 70), 'x');
    std::vector<std::string> owned;
    for (int i = uniform(0, 40); i > 0; --i) {
      std::string text = uniform(0, 5) == 0 ? "" : stem;
      for (int length = uniform(0, 4); length > 0; --length) {
        text += letters[static_cast<std::size_t>(uniform(0, 2))];
      }
      owned.push_back(text);
    }
    std::vector<std::string_view> const views(owned.begin(), owned.end());
    std::vector<SharedText> const texts = SharedText::ranked(views);
    ASSERT_EQ(texts.size(), owned.size());
    for (std::size_t i = 0; i < owned.size(); ++i) {
      ASSERT_EQ(texts[i].get(), owned[i]);
      for (std::size_t j = 0; j < owned.size(); ++j) {
        ASSERT_EQ(texts[i] < texts[j], owned[i] < owned[j]) << owned[i] << " " << owned[j];
        ASSERT_EQ(texts[i] == texts[j], owned[i] == owned[j]) << owned[i] << " " << owned[j];
      }
    }
  }
}

}  // namespace
}  // namespace Vantis::Location
