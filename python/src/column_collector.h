#ifndef CORVEX_PYTHON_COLUMN_COLLECTOR_H_
#define CORVEX_PYTHON_COLUMN_COLLECTOR_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "corvex/aggregate_location.h"
#include "tools/scan_consumer.h"

namespace corvex_python {

// Keeps the records a scan file reader hands on, in input order, as the columns of a frame:
// each record's numbers, and for each of its texts the index of that text among the distinct
// ones, so that equal texts become one Python object. Records without a building keep their
// indoor numbers at 0 and their floorInfo empty: the library does not read them.
class ColumnCollector : public corvex_cli::ScanConsumer {
 public:
  enum TextField { kTag, kGeoId, kFloorInfo, kTextFieldCount };

  bool add(corvex_cli::ScanRecord const& record, std::string* error) override;

  // One per record; their string pointers are null.
  std::vector<AggregateScanInfo> const& infos() const { return infos_; }
  // Per record, the index of its text in texts(field).
  std::vector<int64_t> const& codes(TextField field) const { return codes_[field]; }
  std::vector<std::string> const& texts(TextField field) const { return texts_[field]; }

 private:
  void addText(TextField field, std::string_view text);

  std::vector<AggregateScanInfo> infos_;
  std::array<std::vector<int64_t>, kTextFieldCount> codes_;
  std::array<std::vector<std::string>, kTextFieldCount> texts_;
  std::array<std::unordered_map<std::string, int64_t>, kTextFieldCount> codeOf_;
};

}  // namespace corvex_python

#endif  // CORVEX_PYTHON_COLUMN_COLLECTOR_H_
