#ifndef CORVEX_MODEL_DB_SCAN_CLASS_H_
#define CORVEX_MODEL_DB_SCAN_CLASS_H_

#include <vector>

namespace Vantis::Location {

// Anything the generic density clustering can group: it only needs the coordinates.
class DbScanClass {
 public:
  virtual std::vector<double> getPoint() const = 0;
  virtual ~DbScanClass() = default;

 protected:
  DbScanClass() = default;
  DbScanClass(DbScanClass const&) = default;
  DbScanClass(DbScanClass&&) = default;
  DbScanClass& operator=(DbScanClass const&) = default;
  DbScanClass& operator=(DbScanClass&&) = default;
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_DB_SCAN_CLASS_H_
