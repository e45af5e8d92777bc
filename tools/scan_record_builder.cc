#include "tools/scan_record_builder.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <type_traits>
#include <utility>

namespace corvex_cli {
namespace {

constexpr std::string_view kFieldNames[] = {"tag",        "timeStamp",    "rssi",
                                            "confidence", "lon",          "lat",
                                            "acc",        "locationType", "locationSourceType",
                                            "indoorFlag", "floorId",      "floorAcc",
                                            "floorInfo",  "geoId"};
static_assert(std::size(kFieldNames) == ScanRecordBuilder::kFieldCount);

std::string_view trimmed(std::string_view text) {
  size_t const first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The whole text must be the number.
template <typename T>
std::errc parseWhole(std::string_view text, T* value) {
  char const* const end = text.data() + text.size();
  std::from_chars_result const result = std::from_chars(text.data(), end, *value);
  if (result.ec == std::errc() && result.ptr != end) {
    return std::errc::invalid_argument;
  }
  return result.ec;
}

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

ScanRecordBuilder::ScanRecordBuilder(std::string name, bool strict, ScanConsumer* consumer)
    : name_(std::move(name)), strict_(strict), consumer_(consumer) {}

char const* ScanRecordBuilder::fieldName(int field) { return kFieldNames[field].data(); }

int ScanRecordBuilder::findField(std::string_view name) {
  for (int field = 0; field < kFieldCount; ++field) {
    if (name == kFieldNames[field]) {
      return field;
    }
  }
  return -1;
}

char const* ScanRecordBuilder::implausibleRule(int field) {
  switch (field) {
    case kLon:
      return "outside -180..180";
    case kLat:
      return "outside -90..90";
    case kAcc:
      return "negative or not finite";
    case kConfidence:
      return "outside 0..1";
    default:
      return nullptr;
  }
}

void ScanRecordBuilder::start(int line) {
  line_ = line;
  for (Value& value : values_) {
    value.kind = Kind::kAbsent;
  }
}

void ScanRecordBuilder::set(int field, Kind kind, std::string_view text, int line) {
  Value& value = values_[field];
  value.kind = kind;
  value.text = text;
  value.line = line;
}

std::string* ScanRecordBuilder::scratch(int field) {
  values_[field].scratch.clear();
  return &values_[field].scratch;
}

bool ScanRecordBuilder::finish(std::string* error) {
  ScanRecord record;
  if (!build(&record, error) || !consumer_->add(record, error)) {
    return false;
  }
  ++records_;
  return true;
}

bool ScanRecordBuilder::build(ScanRecord* record, std::string* error) const {
  AggregateScanInfo& info = record->info;
  info = AggregateScanInfo{};
  long long timeStamp = 0;
  if (!(readNumber(kTimeStamp, &timeStamp, "a 64-bit integer", error) &&
        readInt32(kRssi, &info.rssi, error) &&
        readNumber(kConfidence, &info.confidence, "a double", error) &&
        readNumber(kLon, &info.lon, "a double", error) &&
        readNumber(kLat, &info.lat, "a double", error) &&
        readNumber(kAcc, &info.acc, "a float", error) &&
        readInt32(kLocationType, &info.locationType, error) &&
        readInt32(kLocationSourceType, &info.locationSourceType, error) &&
        readIndoor(record, error))) {
    return false;
  }
  info.timeStamp = timeStamp;
  record->tag = {};
  if (values_[kTag].kind != Kind::kAbsent && !readString(kTag, &record->tag, error)) {
    return false;
  }
  record->line = line_;
  record->implausible = implausibleFields(info);
  if (strict_ && record->implausible != 0) {
    for (int field = 0; field < kFieldCount; ++field) {
      if ((record->implausible >> field & 1U) != 0) {
        *error = fail(field, quoted(trimmed(values_[field].text)) + " is " +
                                 implausibleRule(field) + ", which no phone reports");
        return false;
      }
    }
  }
  return true;
}

unsigned ScanRecordBuilder::implausibleFields(AggregateScanInfo const& info) const {
  unsigned fields = 0;
  // Written so that NaN fails every range.
  if (!(info.confidence >= 0 && info.confidence <= 1)) {
    fields |= 1U << kConfidence;
  }
  if (!(info.lon >= -180 && info.lon <= 180)) {
    fields |= 1U << kLon;
  }
  if (!(info.lat >= -90 && info.lat <= 90)) {
    fields |= 1U << kLat;
  }
  if (!(info.acc >= 0 && std::isfinite(info.acc))) {
    fields |= 1U << kAcc;
  }
  return fields;
}

bool ScanRecordBuilder::readIndoor(ScanRecord* record, std::string* error) const {
  record->geoId = {};
  record->floorInfo = {};
  if (values_[kGeoId].kind != Kind::kAbsent && !readString(kGeoId, &record->geoId, error)) {
    return false;
  }
  record->indoor = !record->geoId.empty();
  if (!record->indoor) {
    return true;  // without a building the indoor fields are not read
  }
  AggregateScanInfo& info = record->info;
  return readInt32(kIndoorFlag, &info.indoorFlag, error) &&
         readInt32(kFloorId, &info.floorId, error) && readInt32(kFloorAcc, &info.floorAcc, error) &&
         (values_[kFloorInfo].kind == Kind::kAbsent ||
          readString(kFloorInfo, &record->floorInfo, error));
}

template <typename T>
bool ScanRecordBuilder::readNumber(int field, T* value, char const* typeName,
                                   std::string* error) const {
  std::string_view text;
  if (!numberText(field, &text, error)) {
    return false;
  }
  std::errc const ec = parseWhole(text, value);
  if (ec == std::errc::result_out_of_range) {
    *error = fail(field, quoted(text) + " is out of range for " + typeName);
    return false;
  }
  if (ec != std::errc()) {
    char const* const expected = std::is_integral_v<T> ? "an integer" : "a number";
    *error = fail(field, std::string("expected ") + expected + ", found " + quoted(text));
    return false;
  }
  return true;
}

bool ScanRecordBuilder::readInt32(int field, int32_t* value, std::string* error) const {
  long long wide = 0;
  if (!readNumber(field, &wide, "a 32-bit integer", error)) {
    return false;
  }
  if (wide < std::numeric_limits<int32_t>::min() || wide > std::numeric_limits<int32_t>::max()) {
    *error = fail(field, quoted(std::to_string(wide)) + " is out of range for a 32-bit integer");
    return false;
  }
  *value = static_cast<int32_t>(wide);
  return true;
}

bool ScanRecordBuilder::readString(int field, std::string_view* value, std::string* error) const {
  Value const& found = values_[field];
  if (found.kind == Kind::kOther) {  // a JSON number is taken as written
    *error = fail(field, "expected a string, found " + std::string(found.text));
    return false;
  }
  *value = found.text;
  return true;
}

bool ScanRecordBuilder::numberText(int field, std::string_view* text, std::string* error) const {
  Value const& found = values_[field];
  if (found.kind == Kind::kAbsent || (found.kind == Kind::kText && trimmed(found.text).empty())) {
    *error = fail(field, "no value");
    return false;
  }
  if (found.kind == Kind::kString) {
    *error = fail(field, "expected a number, found the string " + quoted(found.text));
    return false;
  }
  if (found.kind == Kind::kOther) {
    *error = fail(field, "expected a number, found " + std::string(found.text));
    return false;
  }
  *text = trimmed(found.text);
  return true;
}

std::string ScanRecordBuilder::fail(int field, std::string const& problem) const {
  Value const& found = values_[field];
  int const line = found.kind != Kind::kAbsent ? found.line : line_;
  return name_ + ":" + std::to_string(line) + ": field '" + fieldName(field) + "': " + problem;
}

}  // namespace corvex_cli
