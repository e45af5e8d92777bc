#ifndef CORVEX_TOOLS_STRING_POOL_H_
#define CORVEX_TOOLS_STRING_POOL_H_

#include <string>
#include <string_view>
#include <unordered_set>

namespace corvex_cli {

// Keeps one copy of each distinct text (building ids and floor texts repeat across records)
// and hands out NUL-terminated pointers that stay valid for the pool's lifetime, also while
// other texts are added: other threads may read through earlier pointers meanwhile.
class StringPool {
 public:
  char const* intern(std::string_view text);

 private:
  std::unordered_set<std::string> texts_;  // nodes never move
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_STRING_POOL_H_
