#include "tools/string_pool.h"

namespace corvex_cli {

char const* StringPool::intern(std::string_view text) {
  // insert() looks the text up before it allocates a node.
  return texts_.insert(std::string(text)).first->c_str();
}

}  // namespace corvex_cli
