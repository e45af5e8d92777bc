#include "tools/string_pool.h"

namespace corvex_cli {

char const* StringPool::intern(std::string_view text) {
  auto const found = known_.find(text);
  if (found != known_.end()) {
    return found->data();
  }
  std::string const& kept = texts_.emplace_back(text);
  known_.insert(kept);
  return kept.c_str();
}

}  // namespace corvex_cli
