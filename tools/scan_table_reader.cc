#include "tools/scan_table_reader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "tools/csv_scan_source.h"
#include "tools/json_scan_source.h"
#include "tools/scan_record_parser.h"

namespace corvex_cli {
namespace {

bool looksLikeJson(std::string const& text) {
  size_t const first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && (text[first] == '[' || text[first] == '{');
}

bool readWholeFile(std::string const& path, std::string* text, std::string* error) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                       &std::fclose);
  if (file == nullptr) {
    *error = path + ": cannot open: " + std::strerror(errno);
    return false;
  }
  char buffer[1 << 16];
  size_t read = 0;
  while ((read = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
    text->append(buffer, read);
  }
  if (std::ferror(file.get()) != 0) {
    *error = path + ": cannot read: " + std::strerror(errno);
    return false;
  }
  return true;
}

std::vector<TagScans> groupByTag(std::vector<ScanRow> rows) {
  std::vector<TagScans> tags;
  std::unordered_map<std::string, size_t> indexOfTag;
  for (ScanRow& row : rows) {
    auto const [it, added] = indexOfTag.emplace(row.tag, tags.size());
    if (added) {
      tags.push_back({row.tag, {}});
    }
    tags[it->second].rows.push_back(std::move(row));
  }
  return tags;
}

}  // namespace

bool ScanTableReader::readFile(std::string const& path, std::vector<TagScans>* tags,
                               std::string* error) {
  std::string text;
  return readWholeFile(path, &text, error) && readText(path, text, tags, error);
}

bool ScanTableReader::readText(std::string const& name, std::string const& text,
                               std::vector<TagScans>* tags, std::string* error) {
  std::vector<RawScanRecord> records;
  bool const read = looksLikeJson(text) ? JsonScanSource::read(name, text, &records, error)
                                        : CsvScanSource::read(name, text, &records, error);
  if (!read) {
    return false;
  }
  ScanRecordParser const parser(name);
  std::vector<ScanRow> rows(records.size());
  for (size_t i = 0; i < records.size(); ++i) {
    if (!parser.parse(records[i], &rows[i], error)) {
      return false;
    }
  }
  *tags = groupByTag(std::move(rows));
  return true;
}

}  // namespace corvex_cli
