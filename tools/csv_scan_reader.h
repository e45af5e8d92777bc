#ifndef CORVEX_TOOLS_CSV_SCAN_READER_H_
#define CORVEX_TOOLS_CSV_SCAN_READER_H_

#include <cstddef>
#include <string>
#include <vector>

#include "tools/input_buffer.h"
#include "tools/scan_record_builder.h"

namespace corvex_cli {

// Reads scan records from CSV in one pass: a header row naming the columns (every field but
// tag required, in any order, other columns ignored), then one record per row. Fields are
// separated by commas; double quotes around a field allow commas, quotes ("") and line ends
// in it (RFC 4180). LF and CRLF line ends; empty lines are skipped. A row longer than
// kMaxRowBytes, or with more fields than the header, is refused as soon as that is seen.
class CsvScanReader {
 public:
  static constexpr size_t kMaxRowBytes = 1 << 20;

  // in: positioned after any byte order mark.
  CsvScanReader(InputBuffer* in, ScanRecordBuilder* builder);

  // Reads to the end, each record into the builder. False with "name:line: problem" in error.
  bool read(std::string* error);

 private:
  enum class Status { kRow, kNeedMore, kEnd, kFailed };
  struct Field {
    char const* begin;
    char const* end;
    bool escaped;  // quoted, with "" inside
  };

  // Splits the next row of the buffer; onField(column, field) may stop it by returning false.
  template <typename OnField>
  Status splitRow(bool atEnd, OnField const& onField, std::string* error);
  // Consumes empty lines; says whether a row starts in the buffer.
  bool skipEmptyLines(bool atEnd);
  // Each splits the field at *at and moves *at past it (kRow), or needs more text or fails.
  Status splitQuoted(char const** at, bool atEnd, int* line, Field* field, std::string* error);
  Status splitUnquoted(char const** at, Field* field, int line, std::string* error);
  // Checks and consumes the row that ends at p (before its line end) with this many fields.
  Status endRow(char const* p, size_t fields, int line, std::string* error);
  // Calls splitRow, reading more of the input until a whole row is there.
  template <typename OnField>
  Status nextRow(OnField const& onField, std::string* error);
  bool readHeader(std::string* error);
  bool setValue(size_t column, Field const& field, std::string* error);
  std::string at(int line) const;

  InputBuffer* in_;
  ScanRecordBuilder* builder_;
  std::vector<int> fieldOfColumn_;  // -1 for a column that is not read
  int line_ = 1;                    // line where the next row starts
  int rowLine_ = 1;                 // line where the current row starts
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_CSV_SCAN_READER_H_
