#ifndef CORVEX_TOOLS_CSV_PARSER_H_
#define CORVEX_TOOLS_CSV_PARSER_H_

#include <string>
#include <vector>

namespace corvex_cli {

// One record of a CSV text and the line it starts on (1-based).
struct CsvRow {
  int line = 0;
  std::vector<std::string> fields;
};

// Splits CSV text into rows: comma-separated fields, double quotes around fields that hold
// commas, quotes or line ends, "" for a quote inside them (RFC 4180). Accepts LF and CRLF line
// ends and a leading UTF-8 byte order mark; skips empty lines.
class CsvParser {
 public:
  // False with "name:line: problem" in error on a quoting mistake.
  static bool parse(std::string const& name, std::string const& text, std::vector<CsvRow>* rows,
                    std::string* error);

 private:
  CsvParser(std::string const& name, std::string const& text);

  bool parseRow(CsvRow* row, std::string* error);
  bool parseQuoted(std::string* field, std::string* error);
  bool parseUnquoted(std::string* field, std::string* error);
  bool atEnd() const { return pos_ >= text_.size(); }
  bool atLineEnd() const;
  void skipLineEnd();
  std::string fail(int line, std::string const& problem) const;

  std::string const& name_;
  std::string const& text_;
  size_t pos_ = 0;
  int line_ = 1;  // line of text_[pos_]
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_CSV_PARSER_H_
