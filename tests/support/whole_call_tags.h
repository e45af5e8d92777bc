// The generated tags of tests/interface/whole_calls.csv (scripts/make_whole_calls.py), read
// as the entry point takes them.
#ifndef CORVEX_TESTS_SUPPORT_WHOLE_CALL_TAGS_H_
#define CORVEX_TESTS_SUPPORT_WHOLE_CALL_TAGS_H_

#include <string>
#include <vector>

#include "corvex/aggregate_location.h"

namespace corvex_test {

struct Tag {
  std::string name;
  std::vector<AggregateScanInfo> infos;  // texts stay valid for the whole test program
};

std::vector<Tag> wholeCallTags();

}  // namespace corvex_test

#endif  // CORVEX_TESTS_SUPPORT_WHOLE_CALL_TAGS_H_
