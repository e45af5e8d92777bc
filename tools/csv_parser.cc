#include "tools/csv_parser.h"

namespace corvex_cli {

CsvParser::CsvParser(std::string const& name, std::string const& text) : name_(name), text_(text) {
  static const std::string kByteOrderMark = "\xEF\xBB\xBF";
  if (text_.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    pos_ = kByteOrderMark.size();
  }
}

bool CsvParser::parse(std::string const& name, std::string const& text, std::vector<CsvRow>* rows,
                      std::string* error) {
  CsvParser parser(name, text);
  while (!parser.atEnd()) {
    if (parser.atLineEnd()) {
      parser.skipLineEnd();
      continue;
    }
    CsvRow row;
    if (!parser.parseRow(&row, error)) {
      return false;
    }
    rows->push_back(std::move(row));
  }
  return true;
}

bool CsvParser::parseRow(CsvRow* row, std::string* error) {
  row->line = line_;
  while (true) {
    std::string field;
    bool const parsed =
        !atEnd() && text_[pos_] == '"' ? parseQuoted(&field, error) : parseUnquoted(&field, error);
    if (!parsed) {
      return false;
    }
    row->fields.push_back(std::move(field));
    if (atEnd() || atLineEnd()) {
      skipLineEnd();
      return true;
    }
    ++pos_;  // the comma
  }
}

bool CsvParser::parseQuoted(std::string* field, std::string* error) {
  int const startLine = line_;
  ++pos_;
  while (true) {
    if (atEnd()) {
      *error = fail(startLine, "unterminated quoted field");
      return false;
    }
    char const c = text_[pos_++];
    if (c == '"') {
      if (atEnd() || text_[pos_] != '"') {
        break;
      }
      ++pos_;  // "" stands for one quote
    } else if (c == '\n') {
      ++line_;
    }
    *field += c;
  }
  if (!atEnd() && !atLineEnd() && text_[pos_] != ',') {
    *error = fail(line_, "unexpected text after a closing quote");
    return false;
  }
  return true;
}

bool CsvParser::parseUnquoted(std::string* field, std::string* error) {
  while (!atEnd() && !atLineEnd() && text_[pos_] != ',') {
    if (text_[pos_] == '"') {
      *error = fail(line_, "quote inside an unquoted field");
      return false;
    }
    *field += text_[pos_++];
  }
  return true;
}

bool CsvParser::atLineEnd() const {
  return text_[pos_] == '\n' ||
         (text_[pos_] == '\r' && (pos_ + 1 == text_.size() || text_[pos_ + 1] == '\n'));
}

void CsvParser::skipLineEnd() {
  if (atEnd()) {
    return;
  }
  if (text_[pos_] == '\r') {
    ++pos_;
  }
  if (!atEnd()) {
    ++pos_;
  }
  ++line_;
}

std::string CsvParser::fail(int line, std::string const& problem) const {
  return name_ + ":" + std::to_string(line) + ": " + problem;
}

}  // namespace corvex_cli
