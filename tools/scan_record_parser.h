#ifndef CORVEX_TOOLS_SCAN_RECORD_PARSER_H_
#define CORVEX_TOOLS_SCAN_RECORD_PARSER_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/raw_scan_record.h"
#include "tools/scan_row.h"

namespace corvex_cli {

// Checks one input record and converts its values. Every field named by requiredFields()
// needs a value, except that the indoor fields (indoorFlag, floorId, floorAcc, floorInfo)
// may be left out when geoId is empty or missing; they are then not read. Integers must be
// whole and fit their width; numbers may be written as nan or inf in CSV.
class ScanRecordParser {
 public:
  // name: the input's name, used in messages.
  explicit ScanRecordParser(std::string name) : name_(std::move(name)) {}

  // The fields of a record, in the order of the CSV example; tag is optional.
  static std::vector<std::string> const& requiredFields();
  static char const* tagField() { return "tag"; }

  // False with "name:line: field 'x': problem" in error.
  bool parse(RawScanRecord const& raw, ScanRow* row, std::string* error) const;

 private:
  // Each reader returns false after setting error. typeName: "a double", for messages.
  template <typename T>
  bool readNumber(RawScanRecord const& raw, char const* field, T* value, char const* typeName,
                  std::string* error) const;
  bool readInt32(RawScanRecord const& raw, char const* field, int32_t* value,
                 std::string* error) const;
  bool readString(RawScanRecord const& raw, char const* field, std::string* value,
                  std::string* error) const;
  bool readIndoor(RawScanRecord const& raw, ScanRow* row, std::string* error) const;
  // The number's text, or false when the field has no number-like value.
  bool numberText(RawScanRecord const& raw, char const* field, std::string* text,
                  std::string* error) const;
  std::string fail(RawScanRecord const& raw, char const* field, std::string const& problem) const;

  std::string name_;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_RECORD_PARSER_H_
