#include "tools/csv_scan_source.h"

#include <set>

#include "tools/csv_parser.h"
#include "tools/scan_record_parser.h"

namespace corvex_cli {
namespace {

std::string at(std::string const& name, int line) { return name + ":" + std::to_string(line); }

// Header names may be padded, as in "timeStamp, rssi".
std::vector<std::string> columnNames(CsvRow const& header) {
  std::vector<std::string> names;
  for (std::string const& field : header.fields) {
    size_t const first = field.find_first_not_of(" \t");
    names.push_back(first == std::string::npos
                        ? ""
                        : field.substr(first, field.find_last_not_of(" \t") - first + 1));
  }
  return names;
}

bool checkHeader(std::string const& name, int line, std::vector<std::string> const& columns,
                 std::string* error) {
  std::set<std::string> known(ScanRecordParser::requiredFields().begin(),
                              ScanRecordParser::requiredFields().end());
  known.insert(ScanRecordParser::tagField());
  std::set<std::string> seen;
  for (std::string const& column : columns) {
    // Other columns are not read, so only a field that is read must be unambiguous.
    if (!seen.insert(column).second && known.count(column) != 0) {
      *error = at(name, line) + ": column '" + column + "' appears twice";
      return false;
    }
  }
  for (std::string const& field : ScanRecordParser::requiredFields()) {
    if (seen.count(field) == 0) {
      *error = at(name, line) + ": missing column '" + field + "'";
      return false;
    }
  }
  return true;
}

}  // namespace

bool CsvScanSource::read(std::string const& name, std::string const& text,
                         std::vector<RawScanRecord>* records, std::string* error) {
  std::vector<CsvRow> rows;
  if (!CsvParser::parse(name, text, &rows, error)) {
    return false;
  }
  if (rows.empty()) {
    *error = name + ": no header row";
    return false;
  }
  int const headerLine = rows.front().line;
  std::vector<std::string> const columns = columnNames(rows.front());
  if (!checkHeader(name, headerLine, columns, error)) {
    return false;
  }
  for (size_t r = 1; r < rows.size(); ++r) {
    CsvRow const& row = rows[r];
    if (row.fields.size() != columns.size()) {
      *error = at(name, row.line) + ": expected " + std::to_string(columns.size()) +
               " fields as in the header, found " + std::to_string(row.fields.size());
      return false;
    }
    RawScanRecord record;
    record.line = row.line;
    for (size_t c = 0; c < row.fields.size(); ++c) {
      record.fields[columns[c]] = {RawField::Kind::kText, row.fields[c], row.line};
    }
    records->push_back(std::move(record));
  }
  return true;
}

}  // namespace corvex_cli
