#ifndef CORVEX_TOOLS_INPUT_BUFFER_H_
#define CORVEX_TOOLS_INPUT_BUFFER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvex_cli {

// A window onto a byte stream (a file descriptor, or text in memory for tests and fuzzing)
// that readers parse in place. Memory stays bounded by the longest record a reader asks to
// see whole, never by the size of the stream.
class InputBuffer {
 public:
  // fd: open for reading; not owned. name: how messages call the stream.
  InputBuffer(int fd, std::string name);
  // Hands out text chunkBytes (at least 1) at a time, so that readers meet every boundary.
  InputBuffer(std::string_view text, size_t chunkBytes, std::string name);

  // The bytes read but not yet consumed.
  char const* begin() const { return data_.data() + start_; }
  char const* end() const { return data_.data() + end_; }
  size_t size() const { return end_ - start_; }
  void consume(size_t bytes) { start_ += bytes; }

  // Appends the next bytes of the stream to the window. False at the end of the stream, or
  // with "name: cannot read: reason" in error on a read failure.
  bool fill(std::string* error);
  bool failed() const { return failed_; }
  // Bytes taken from the stream so far.
  size_t bytesRead() const { return bytesRead_; }
  std::string const& name() const { return name_; }

 private:
  size_t readMore(char* into, size_t room, std::string* error);

  int fd_ = -1;
  std::string_view text_;  // memory source: what is left to hand out
  size_t chunkBytes_ = 0;
  std::string name_;
  std::vector<char> data_;
  size_t start_ = 0;
  size_t end_ = 0;
  size_t bytesRead_ = 0;
  bool failed_ = false;
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_INPUT_BUFFER_H_
