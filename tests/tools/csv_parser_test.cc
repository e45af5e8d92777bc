#include "tools/csv_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvex_cli {
namespace {

// The rows as "line:field|field" joined by blanks, or the error.
std::string parsed(std::string const& text) {
  std::vector<CsvRow> rows;
  std::string error;
  if (!CsvParser::parse("in.csv", text, &rows, &error)) {
    return error;
  }
  std::string out;
  for (CsvRow const& row : rows) {
    out += (out.empty() ? "" : " ") + std::to_string(row.line) + ":";
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
      out += (i == 0 ? "" : "|") + row.fields[i];
    }
  }
  return out;
}

TEST(CsvParser, SplitsFieldsAndCountsLines) {
  struct Case {
    std::string text;
    std::string rows;
  };
  Case const cases[] = {
      {"a,b,c\n\"x, y\",\"say \"\"hi\"\"\",\n", "1:a|b|c 2:x, y|say \"hi\"|"},
      // Byte order mark, CRLF, blank lines, a quoted line end (counted), a last CR.
      {"\xEF\xBB\xBFh1,h2\r\n\r\n1,\"two\nlines\"\n\n3,4\r", "1:h1|h2 3:1|two\nlines 6:3|4"},
      {"a,b\n1,2", "1:a|b 2:1|2"},
      {"", ""},
      {"a,b\n1,\"open\n\n", "in.csv:2: unterminated quoted field"},
      {"a,b\n\"x\"y,2\n", "in.csv:2: unexpected text after a closing quote"},
      {"a,b\n1,2\n3,4\"5\n", "in.csv:3: quote inside an unquoted field"},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(parsed(c.text), c.rows) << c.text;
  }
}

}  // namespace
}  // namespace corvex_cli
