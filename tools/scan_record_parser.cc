#include "tools/scan_record_parser.h"

#include <charconv>
#include <limits>
#include <system_error>
#include <type_traits>

namespace corvex_cli {
namespace {

RawField const* findField(RawScanRecord const& raw, char const* field) {
  auto const it = raw.fields.find(field);
  return it != raw.fields.end() ? &it->second : nullptr;
}

std::string trimmed(std::string const& text) {
  size_t const first = text.find_first_not_of(" \t");
  if (first == std::string::npos) {
    return "";
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The whole text must be the number.
template <typename T>
std::errc parseWhole(std::string const& text, T* value) {
  char const* const end = text.data() + text.size();
  std::from_chars_result const result = std::from_chars(text.data(), end, *value);
  if (result.ec == std::errc() && result.ptr != end) {
    return std::errc::invalid_argument;
  }
  return result.ec;
}

std::string quoted(std::string const& text) { return "'" + text + "'"; }

}  // namespace

std::vector<std::string> const& ScanRecordParser::requiredFields() {
  static std::vector<std::string> const kFields = {
      "timeStamp",  "rssi",    "confidence",   "lon",
      "lat",        "acc",     "locationType", "locationSourceType",
      "indoorFlag", "floorId", "floorAcc",     "floorInfo",
      "geoId"};
  return kFields;
}

bool ScanRecordParser::parse(RawScanRecord const& raw, ScanRow* row, std::string* error) const {
  AggregateScanInfo& info = row->info;
  long long timeStamp = 0;
  if (!(readNumber(raw, "timeStamp", &timeStamp, "a 64-bit integer", error) &&
        readInt32(raw, "rssi", &info.rssi, error) &&
        readNumber(raw, "confidence", &info.confidence, "a double", error) &&
        readNumber(raw, "lon", &info.lon, "a double", error) &&
        readNumber(raw, "lat", &info.lat, "a double", error) &&
        readNumber(raw, "acc", &info.acc, "a float", error) &&
        readInt32(raw, "locationType", &info.locationType, error) &&
        readInt32(raw, "locationSourceType", &info.locationSourceType, error) &&
        readIndoor(raw, row, error))) {
    return false;
  }
  info.timeStamp = timeStamp;
  return findField(raw, tagField()) == nullptr || readString(raw, tagField(), &row->tag, error);
}

bool ScanRecordParser::readIndoor(RawScanRecord const& raw, ScanRow* row,
                                  std::string* error) const {
  if (findField(raw, "geoId") != nullptr && !readString(raw, "geoId", &row->geoId, error)) {
    return false;
  }
  if (row->geoId.empty()) {
    return true;  // without a building the indoor fields are not read
  }
  AggregateScanInfo& info = row->info;
  return readInt32(raw, "indoorFlag", &info.indoorFlag, error) &&
         readInt32(raw, "floorId", &info.floorId, error) &&
         readInt32(raw, "floorAcc", &info.floorAcc, error) &&
         (findField(raw, "floorInfo") == nullptr ||
          readString(raw, "floorInfo", &row->floorInfo, error));
}

template <typename T>
bool ScanRecordParser::readNumber(RawScanRecord const& raw, char const* field, T* value,
                                  char const* typeName, std::string* error) const {
  std::string text;
  if (!numberText(raw, field, &text, error)) {
    return false;
  }
  std::errc const ec = parseWhole(text, value);
  if (ec == std::errc::result_out_of_range) {
    *error = fail(raw, field, quoted(text) + " is out of range for " + typeName);
    return false;
  }
  if (ec != std::errc()) {
    char const* const expected = std::is_integral_v<T> ? "an integer" : "a number";
    *error = fail(raw, field, std::string("expected ") + expected + ", found " + quoted(text));
    return false;
  }
  return true;
}

bool ScanRecordParser::readInt32(RawScanRecord const& raw, char const* field, int32_t* value,
                                 std::string* error) const {
  long long wide = 0;
  if (!readNumber(raw, field, &wide, "a 32-bit integer", error)) {
    return false;
  }
  if (wide < std::numeric_limits<int32_t>::min() || wide > std::numeric_limits<int32_t>::max()) {
    *error =
        fail(raw, field, quoted(std::to_string(wide)) + " is out of range for a 32-bit integer");
    return false;
  }
  *value = static_cast<int32_t>(wide);
  return true;
}

bool ScanRecordParser::readString(RawScanRecord const& raw, char const* field, std::string* value,
                                  std::string* error) const {
  RawField const* const found = findField(raw, field);
  if (found->kind == RawField::Kind::kOther) {
    *error = fail(raw, field, "expected a string, found " + found->text);
    return false;
  }
  *value = found->text;
  return true;
}

bool ScanRecordParser::numberText(RawScanRecord const& raw, char const* field, std::string* text,
                                  std::string* error) const {
  RawField const* const found = findField(raw, field);
  if (found == nullptr || (found->kind == RawField::Kind::kText && trimmed(found->text).empty())) {
    *error = fail(raw, field, "no value");
    return false;
  }
  if (found->kind == RawField::Kind::kString) {
    *error = fail(raw, field, "expected a number, found the string " + quoted(found->text));
    return false;
  }
  if (found->kind == RawField::Kind::kOther) {
    *error = fail(raw, field, "expected a number, found " + found->text);
    return false;
  }
  *text = trimmed(found->text);
  return true;
}

std::string ScanRecordParser::fail(RawScanRecord const& raw, char const* field,
                                   std::string const& problem) const {
  RawField const* const found = findField(raw, field);
  int const line = found != nullptr ? found->line : raw.line;
  return name_ + ":" + std::to_string(line) + ": field '" + field + "': " + problem;
}

}  // namespace corvex_cli
