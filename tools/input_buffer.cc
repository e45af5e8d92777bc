#include "tools/input_buffer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace corvex_cli {
namespace {
constexpr size_t kReadBytes = 1 << 18;
}  // namespace

InputBuffer::InputBuffer(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}

InputBuffer::InputBuffer(std::string_view text, size_t chunkBytes, std::string name)
    : text_(text), chunkBytes_(std::max<size_t>(chunkBytes, 1)), name_(std::move(name)) {}

bool InputBuffer::fill(std::string* error) {
  if (failed_) {
    return false;
  }
  // Keep the unconsumed bytes at the front, and room for one more read behind them.
  if (start_ > 0) {
    std::memmove(data_.data(), data_.data() + start_, end_ - start_);
    end_ -= start_;
    start_ = 0;
  }
  if (data_.size() - end_ < kReadBytes) {
    data_.resize(end_ + kReadBytes);
  }
  size_t const read = readMore(data_.data() + end_, data_.size() - end_, error);
  end_ += read;
  bytesRead_ += read;
  return read > 0;
}

size_t InputBuffer::readMore(char* into, size_t room, std::string* error) {
  if (fd_ < 0) {
    size_t const bytes = std::min({room, chunkBytes_, text_.size()});
    std::memcpy(into, text_.data(), bytes);
    text_.remove_prefix(bytes);
    return bytes;
  }
  while (true) {
    ssize_t const read = ::read(fd_, into, room);
    if (read >= 0) {
      return static_cast<size_t>(read);
    }
    if (errno != EINTR) {
      failed_ = true;
      *error = name_ + ": cannot read: " + std::strerror(errno);
      return 0;
    }
  }
}

}  // namespace corvex_cli
