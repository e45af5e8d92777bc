#ifndef CORVEX_TOOLS_JSON_SCAN_READER_H_
#define CORVEX_TOOLS_JSON_SCAN_READER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "tools/input_buffer.h"
#include "tools/scan_record_builder.h"

namespace corvex_cli {

// Reads scan records from a JSON array of objects keyed by field name (RFC 8259), one object
// at a time, so that memory does not grow with the size of the text. A key may appear once per
// object; unknown keys and their values are skipped. An object longer than kMaxRecordBytes or
// nested deeper than kMaxDepth is refused.
//
// Hand-written: the SAX interface of the JSON library the tool uses took 2.6 times as long to
// parse the records as this reader takes to parse and convert them, and it builds a string
// whole before anyone can refuse it, and knows no lines.
class JsonScanReader {
 public:
  static constexpr size_t kMaxRecordBytes = 1 << 20;
  static constexpr int kMaxDepth = 64;

  // in: positioned after any byte order mark.
  JsonScanReader(InputBuffer* in, ScanRecordBuilder* builder);

  // Reads to the end, each record into the builder. False with "name:line: problem" in error.
  bool read(std::string* error);

 private:
  enum class Step { kDone, kFailed };

  // Each parses one piece at p_ and returns false when it failed or ran out of text.
  void skipBlanks();
  // Consumes blanks, reading more of the input as needed; false on a read failure.
  bool consumeBlanks(std::string* error);
  bool expect(char c, char const* what);
  bool peek(char* c);
  bool parseElement();
  bool parseRecord();
  bool parseMember(uint32_t* seen);
  bool parseKey(std::string_view* key);
  bool parseString(std::string* decoded, std::string_view* text);
  bool parseEscape(std::string* decoded);
  bool parseHex4(uint32_t* value);
  bool parseNumber(std::string_view* text);
  bool parseLiteral(char const* literal);
  bool skipValue(int depth);
  bool fail(std::string const& problem);
  bool ranOut();

  // Runs parse on the unread text, reading more of the input until it no longer runs out.
  template <typename Parse>
  Step step(Parse const& parse, std::string* error);

  InputBuffer* in_;
  ScanRecordBuilder* builder_;
  char const* p_ = nullptr;
  char const* end_ = nullptr;
  bool atEnd_ = false;
  bool needMore_ = false;
  int line_ = 1;
  std::string problem_;
  std::string key_;
  std::string skipped_;  // text of strings that are not kept
  std::unordered_set<std::string> otherKeys_;
  size_t elements_ = 0;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_JSON_SCAN_READER_H_
