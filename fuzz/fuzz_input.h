// Reads a fuzz input front to back as fixed-width little-endian fields; past the end every
// field reads as zero bytes. The layout is simple enough for scripts/make_fuzz_corpus.py to
// write seed inputs from scan tables.
#ifndef CORVEX_FUZZ_FUZZ_INPUT_H_
#define CORVEX_FUZZ_FUZZ_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace corvex_fuzz {

class FuzzInput {
 public:
  FuzzInput(std::uint8_t const* data, std::size_t size) : data_(data), size_(size) {}

  bool exhausted() const { return offset_ >= size_; }

  template <typename T>
  T read() {
    T value{};
    std::size_t const available = std::min(sizeof value, size_ - std::min(offset_, size_));
    if (available > 0) {
      std::memcpy(&value, data_ + offset_, available);
    }
    offset_ += sizeof value;
    return value;
  }

  // A 16-bit length, then that many bytes (fewer when the input ends).
  std::string readText() {
    std::size_t const length = read<std::uint16_t>();
    std::size_t const start = std::min(offset_, size_);
    std::size_t const taken = std::min(length, size_ - start);
    offset_ += length;
    return std::string(reinterpret_cast<char const*>(data_) + start, taken);
  }

 private:
  std::uint8_t const* data_;
  std::size_t size_;
  std::size_t offset_ = 0;
};

}  // namespace corvex_fuzz

#endif  // CORVEX_FUZZ_FUZZ_INPUT_H_
