#include "tools/scan_stream_reader.h"

#include <cstring>

#include "tools/csv_scan_reader.h"
#include "tools/input_file.h"
#include "tools/json_scan_reader.h"
#include "tools/scan_record_builder.h"

namespace corvex_cli {
namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
constexpr size_t kByteOrderMarkBytes = 3;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Reads until the first character other than blanks is in the buffer (or the input ends), and
// says whether it opens JSON. Blanks are looked at, not consumed: in CSV they are text.
bool startsJson(InputBuffer* in, std::string* error) {
  size_t looked = 0;
  bool markChecked = false;
  while (true) {
    if (!markChecked && in->size() >= kByteOrderMarkBytes) {
      markChecked = true;
      if (std::memcmp(in->begin(), kByteOrderMark, kByteOrderMarkBytes) == 0) {
        in->consume(kByteOrderMarkBytes);
      }
    }
    while (looked < in->size() && isBlank(in->begin()[looked])) {
      ++looked;
    }
    bool const undecided = looked == in->size() || !markChecked;
    if (!undecided || looked > CsvScanReader::kMaxRowBytes || !in->fill(error)) {
      return looked < in->size() && (in->begin()[looked] == '[' || in->begin()[looked] == '{');
    }
  }
}

}  // namespace

bool ScanStreamReader::read(InputBuffer* in, bool strict, ScanConsumer* consumer,
                            std::string* error) {
  ScanRecordBuilder builder(in->name(), strict, consumer);
  bool const json = startsJson(in, error);
  if (in->failed()) {
    return false;
  }
  bool const read =
      json ? JsonScanReader(in, &builder).read(error) : CsvScanReader(in, &builder).read(error);
  if (!read) {
    return false;
  }
  if (builder.records() == 0) {
    *error = in->name() + ": no records";
    return false;
  }
  return true;
}

bool ScanStreamReader::readFile(std::string const& path, bool strict, ScanConsumer* consumer,
                                std::string* error) {
  InputFile file;
  if (!file.open(path, error)) {
    return false;
  }
  InputBuffer input(file.fd(), file.name());
  return read(&input, strict, consumer, error);
}

}  // namespace corvex_cli
