// libFuzzer target for the tool's CSV and JSON readers. The first byte picks strict checking
// and the size of the pieces in which the rest arrives; reading it in those pieces must give
// exactly what reading it in one piece gives: the same records, or the same error.
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tools/input_buffer.h"
#include "tools/scan_stream_reader.h"

namespace {

using corvex_cli::InputBuffer;
using corvex_cli::ScanRecord;

template <typename Number>
void append(Number value, std::string* out) {
  char text[32];
  out->append(text, std::to_chars(text, text + sizeof text, value).ptr);
  out->push_back(' ');
}

// Every value of every record, in order.
class Transcript : public corvex_cli::ScanConsumer {
 public:
  bool add(ScanRecord const& r, std::string*) override {
    if (r.line < 1 || r.indoor != !r.geoId.empty()) {
      std::abort();
    }
    text.append(r.tag).append("|").append(r.geoId).append("|").append(r.floorInfo);
    for (int64_t value : {int64_t{r.line}, int64_t{r.info.timeStamp}, int64_t{r.info.rssi},
                          int64_t{r.info.locationType}, int64_t{r.info.locationSourceType},
                          int64_t{r.info.indoorFlag}, int64_t{r.info.floorId},
                          int64_t{r.info.floorAcc}, int64_t{r.implausible}}) {
      append(value, &text);
    }
    for (double value : {r.info.confidence, r.info.lon, r.info.lat, double{r.info.acc}}) {
      append(value, &text);
    }
    text.push_back('\n');
    return true;
  }
  std::string text;
};

std::string read(std::string_view text, size_t chunk, bool strict) {
  InputBuffer input(text, chunk, "fuzz");
  Transcript transcript;
  std::string error;
  bool const read = corvex_cli::ScanStreamReader::read(&input, strict, &transcript, &error);
  return transcript.text + (read ? "" : "error: " + error);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  if (size == 0) {
    return 0;
  }
  bool const strict = (data[0] & 0x80) != 0;
  size_t const chunk = 1 + (data[0] & 0x1F);
  std::string_view const text(reinterpret_cast<char const*>(data) + 1, size - 1);
  if (read(text, chunk, strict) != read(text, text.size() + 1, strict)) {
    std::abort();
  }
  return 0;
}
