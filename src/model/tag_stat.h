#ifndef CORVEX_MODEL_TAG_STAT_H_
#define CORVEX_MODEL_TAG_STAT_H_

#include <string>
#include <vector>

namespace Vantis::Location {

// Statistics carried by a result into the trace log: the trace format version and how many
// records survived each filter stage.
class TagStat {
 public:
  std::string const& getVersion() const { return version_; }
  std::vector<int> const& getInfoCount() const { return infoCount_; }
  void setInfoCount(std::vector<int> const& infoCount) { infoCount_ = infoCount; }

 private:
  std::string version_ = "V2.0";
  std::vector<int> infoCount_;  // one count per filter stage, in pipeline order
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_TAG_STAT_H_
