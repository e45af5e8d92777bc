#ifndef CORVEX_TOOLS_INPUT_FILE_H_
#define CORVEX_TOOLS_INPUT_FILE_H_

#include <cstddef>
#include <string>

namespace corvex_cli {

// An input opened for reading: a path, or "-" for standard input.
class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(InputFile const&) = delete;
  InputFile& operator=(InputFile const&) = delete;

  // False with "path: cannot open: reason" in error.
  bool open(std::string const& path, std::string* error);
  int fd() const { return fd_; }
  // How messages call the input: the path, or "stdin".
  std::string const& name() const { return name_; }
  // Size (bytes) of a regular file, else 0.
  size_t size() const { return size_; }

 private:
  int fd_ = -1;
  bool owned_ = false;
  std::string name_;
  size_t size_ = 0;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_INPUT_FILE_H_
