#include "tools/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace corvex_cli {

InputFile::~InputFile() {
  if (owned_) {
    ::close(fd_);
  }
}

bool InputFile::open(std::string const& path, std::string* error) {
  if (path == "-") {
    fd_ = STDIN_FILENO;
    name_ = "stdin";
  } else {
    fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    name_ = path;
    if (fd_ < 0) {
      *error = path + ": cannot open: " + std::strerror(errno);
      return false;
    }
    owned_ = true;
  }
  struct stat status {};
  if (::fstat(fd_, &status) == 0 && S_ISREG(status.st_mode)) {
    size_ = static_cast<size_t>(status.st_size);
  }
  return true;
}

}  // namespace corvex_cli
