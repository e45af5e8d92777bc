#include "filter/db_scan_filter.h"

#include "filter/db_scan.h"
#include "interface/corvex_tag_logger.h"

namespace Vantis::Location {

std::vector<std::vector<BleScanInfoWithConfidence>> DBScanFilter::filter(
    std::vector<BleScanInfoWithConfidence> const& infos, int minPts, double eps) {
  if (!acceptsInput(infos.empty(), minPts)) {
    return {};
  }
  return DbScan<BleScanInfoWithConfidence>(eps, minPts).cluster(infos);
}

std::vector<std::vector<size_t>> DBScanFilter::filterIndices(RecordSubset const& infos, int minPts,
                                                             double eps) {
  if (!acceptsInput(infos.empty(), minPts)) {
    return {};
  }
  return DbScan<BleScanInfoWithConfidence>(eps, minPts).clusterIndices(infos);
}

bool DBScanFilter::acceptsInput(bool empty, int minPts) {
  if (empty) {
    CorvexTagLogger::getInstance().error("infos == null or is empty");
    return false;
  }
  if (minPts <= 0) {
    CorvexTagLogger::getInstance().error("minPts can't less than 1");
    return false;
  }
  return true;
}

}  // namespace Vantis::Location
