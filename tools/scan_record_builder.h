#ifndef CORVEX_TOOLS_SCAN_RECORD_BUILDER_H_
#define CORVEX_TOOLS_SCAN_RECORD_BUILDER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tools/scan_consumer.h"
#include "tools/scan_record.h"

namespace corvex_cli {

// Collects the values of one input record as written, then checks and converts them and hands
// the record on. Every field but tag needs a value, except that the indoor fields (indoorFlag,
// floorId, floorAcc, floorInfo) may be left out when geoId is empty or missing; they are then not
// read. Integers must be whole and fit their width; CSV numbers may be padded and written as nan or
// inf.
class ScanRecordBuilder {
 public:
  enum Field : int {
    kTag,
    kTimeStamp,
    kRssi,
    kConfidence,
    kLon,
    kLat,
    kAcc,
    kLocationType,
    kLocationSourceType,
    kIndoorFlag,
    kFloorId,
    kFloorAcc,
    kFloorInfo,
    kGeoId,
    kFieldCount
  };
  enum class Kind : uint8_t {
    kAbsent,  // not given (a JSON null, a missing key)
    kText,    // a CSV cell: a number or a string
    kNumber,  // a JSON number as written
    kString,  // a JSON string
    kOther,   // true, false, an object or an array; the text names it
  };

  // name: the input's name, for messages. strict: refuse values no phone produces.
  // consumer: takes each finished record.
  ScanRecordBuilder(std::string name, bool strict, ScanConsumer* consumer);

  static char const* fieldName(int field);
  // The field of a column or key name, or -1.
  static int findField(std::string_view name);
  // What makes a value of lon, lat, acc or confidence one that no phone produces, e.g.
  // "outside -180..180"; null for the other fields.
  static char const* implausibleRule(int field);

  // Forgets the values of the previous record.
  void start(int line);
  // text must stay valid until finish(); line: where the value is written.
  void set(int field, Kind kind, std::string_view text, int line);
  // A buffer for a value that had to be decoded; set() it afterwards.
  std::string* scratch(int field);
  // Checks and converts the record and hands it on. False with "name:line: field 'x':
  // problem" (or the consumer's message) in error.
  bool finish(std::string* error);
  // Records handed on so far.
  size_t records() const { return records_; }

 private:
  struct Value {
    Kind kind = Kind::kAbsent;
    std::string_view text;
    int line = 0;
    std::string scratch;
  };
  bool build(ScanRecord* record, std::string* error) const;
  template <typename T>
  bool readNumber(int field, T* value, char const* typeName, std::string* error) const;
  bool readInt32(int field, int32_t* value, std::string* error) const;
  bool readString(int field, std::string_view* value, std::string* error) const;
  bool readIndoor(ScanRecord* record, std::string* error) const;
  bool numberText(int field, std::string_view* text, std::string* error) const;
  unsigned implausibleFields(AggregateScanInfo const& info) const;
  std::string fail(int field, std::string const& problem) const;

  std::string name_;
  bool strict_;
  ScanConsumer* consumer_;
  size_t records_ = 0;
  int line_ = 0;
  std::array<Value, kFieldCount> values_;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_SCAN_RECORD_BUILDER_H_
