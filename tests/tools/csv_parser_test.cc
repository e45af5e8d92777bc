#include "tools/csv_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvex_cli {
namespace {

using Fields = std::vector<std::string>;

std::vector<CsvRow> parseOk(std::string const& text) {
  std::vector<CsvRow> rows;
  std::string error;
  EXPECT_TRUE(CsvParser::parse("in.csv", text, &rows, &error)) << error;
  return rows;
}

std::string parseError(std::string const& text) {
  std::vector<CsvRow> rows;
  std::string error;
  EXPECT_FALSE(CsvParser::parse("in.csv", text, &rows, &error));
  return error;
}

TEST(CsvParser, SplitsQuotedAndPlainFields) {
  auto const rows = parseOk("a,b,c\n\"x, y\",\"say \"\"hi\"\"\",\n");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0].fields, (Fields{"a", "b", "c"}));
  EXPECT_EQ(rows[1].fields, (Fields{"x, y", "say \"hi\"", ""}));
  EXPECT_EQ(rows[1].line, 2);
}

TEST(CsvParser, HandlesLineEndsByteOrderMarkAndBlankLines) {
  auto const rows = parseOk("\xEF\xBB\xBFh1,h2\r\n\r\n1,\"two\nlines\"\n\n3,4\r");
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0].fields, (Fields{"h1", "h2"}));
  EXPECT_EQ(rows[1].fields, (Fields{"1", "two\nlines"}));
  EXPECT_EQ(rows[1].line, 3);
  EXPECT_EQ(rows[2].fields, (Fields{"3", "4"}));
  EXPECT_EQ(rows[2].line, 6);  // counts the line inside the quoted field
}

TEST(CsvParser, LastLineNeedsNoLineEnd) {
  auto const rows = parseOk("a,b\n1,2");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1].fields, (Fields{"1", "2"}));
  EXPECT_TRUE(parseOk("").empty());
}

TEST(CsvParser, ReportsQuotingMistakesWithTheirLine) {
  EXPECT_EQ(parseError("a,b\n1,\"open\n\n"), "in.csv:2: unterminated quoted field");
  EXPECT_EQ(parseError("a,b\n\"x\"y,2\n"), "in.csv:2: unexpected text after a closing quote");
  EXPECT_EQ(parseError("a,b\n1,2\n3,4\"5\n"), "in.csv:3: quote inside an unquoted field");
}

}  // namespace
}  // namespace corvex_cli
