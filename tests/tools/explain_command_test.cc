#include "tools/explain_command.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvex_cli {
namespace {

TEST(ExplainCommand, ChoosesTheNamedOrTheOnlyTagAndOtherwiseListsTheTags) {
  std::vector<TagScans> const one{{"a", {}}};
  std::vector<TagScans> const two{{"a", {}}, {"", {}}};
  struct Case {
    std::vector<TagScans> const& tags;
    bool tagGiven;
    std::string tag;
    std::string expected;  // the chosen tag, or the error
  };
  Case const cases[] = {
      {one, false, "", "a"},
      {two, true, "", ""},
      {two, false, "", "f.csv holds 2 tags; choose one with --tag: 'a', ''"},
      {one, true, "b", "f.csv: no tag 'b'; its tags: 'a'"},
      {{}, false, "", "f.csv: no records"},
  };
  for (Case const& c : cases) {
    ExplainCommand::Options options;
    options.path = "f.csv";
    options.tagGiven = c.tagGiven;
    options.tag = c.tag;
    TagScans const* chosen = nullptr;
    std::string error;
    bool const found = ExplainCommand::chooseTag(c.tags, options, &chosen, &error);
    EXPECT_EQ(found ? chosen->tag : error, c.expected) << c.tag;
  }
}

}  // namespace
}  // namespace corvex_cli
