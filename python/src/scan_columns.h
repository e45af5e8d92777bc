#ifndef CORVEX_PYTHON_SCAN_COLUMNS_H_
#define CORVEX_PYTHON_SCAN_COLUMNS_H_

#include <cstddef>
#include <cstdint>

#include "corvex/aggregate_location.h"
#include "text_column.h"

namespace corvex_python {

// Read-only views of the field columns of a frame of scan records, one value per row, in the
// units of AggregateScanInfo. The arrays belong to the caller and must outlive this object.
struct ScanColumns {
  size_t rows;                  // of every column
  const int64_t* timeStamp;     // scan time (ms)
  const int32_t* rssi;          // dBm
  const double* confidence;     // reporter's trust in the hearing
  const double* lon;            // phone longitude (degrees)
  const double* lat;            // phone latitude (degrees)
  const float* acc;             // phone fix accuracy (metres)
  const int32_t* locationType;  // 1: satellite fix
  const int32_t* locationSourceType;
  const int32_t* indoorFlag;  // read only where geoId is set
  const int32_t* floorId;     // read only where geoId is set
  const int32_t* floorAcc;    // read only where geoId is set
  TextColumn const* floorInfo;
  TextColumn const* geoId;  // null text: no indoor information

  // The C record of one row; its strings point into the text columns.
  AggregateScanInfo record(size_t row) const {
    AggregateScanInfo info{};
    info.timeStamp = timeStamp[row];
    info.rssi = rssi[row];
    info.confidence = confidence[row];
    info.lon = lon[row];
    info.lat = lat[row];
    info.acc = acc[row];
    info.locationType = locationType[row];
    info.locationSourceType = locationSourceType[row];
    info.geoId = geoId->at(row);
    if (info.geoId != nullptr) {
      info.indoorFlag = indoorFlag[row];
      info.floorId = floorId[row];
      info.floorAcc = floorAcc[row];
      const char* const text = floorInfo->at(row);
      info.floorInfo = text != nullptr ? text : "";
    }
    return info;
  }
};

}  // namespace corvex_python

#endif  // CORVEX_PYTHON_SCAN_COLUMNS_H_
