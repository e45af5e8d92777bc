#ifndef CORVEX_TOOLS_STRING_POOL_H_
#define CORVEX_TOOLS_STRING_POOL_H_

#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>

namespace corvex_cli {

// Keeps one copy of each distinct text (building ids and floor texts repeat across records)
// and hands out NUL-terminated pointers that stay valid for the pool's lifetime, also while
// other texts are added: other threads may read through earlier pointers meanwhile.
class StringPool {
 public:
  // Copies the text only the first time it is seen.
  char const* intern(std::string_view text);

 private:
  std::deque<std::string> texts_;               // deque: growing it never moves a text
  std::unordered_set<std::string_view> known_;  // views of texts_
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_STRING_POOL_H_
