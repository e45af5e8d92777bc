#ifndef CORVEX_MODEL_SHARED_TEXT_H_
#define CORVEX_MODEL_SHARED_TEXT_H_

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vantis::Location {

// An immutable text that copies share: scan records are copied from stage to stage, and their
// building and floor texts (which callers may make long) must not be copied with them.
// Compares bytewise like std::string. Copies of one text compare without reading it, and so do
// texts ranked together, by their rank: sorting records by long texts that differ only near
// their end must not read them again and again.
class SharedText {
 public:
  SharedText() = default;
  explicit SharedText(std::string text);
  SharedText(SharedText const& other) noexcept : body_(other.body_) { retain(); }
  SharedText(SharedText&& other) noexcept : body_(std::exchange(other.body_, nullptr)) {}
  SharedText& operator=(SharedText other) noexcept {
    std::swap(body_, other.body_);
    return *this;
  }
  ~SharedText() { release(); }

  // One text per entry of `texts`, ranked together: equal texts get equal ranks.
  static std::vector<SharedText> ranked(std::vector<std::string_view> const& texts);

  std::string const& get() const;

  // Inline for the common case of one shared text (often none) on both sides.
  bool operator<(SharedText const& other) const {
    return body_ != other.body_ && differentTextsLess(other);
  }
  bool operator==(SharedText const& other) const {
    return body_ == other.body_ || differentTextsEqual(other);
  }

 private:
  // Counted by the texts that hold it, so that a text is one pointer (records hold five).
  struct Body {
    std::string text;
    std::shared_ptr<void const> table;  // shared by texts ranked together, else null
    std::size_t rank = 0;               // bytewise order within the table
    mutable std::atomic<std::size_t> holders{1};
  };

  explicit SharedText(Body const* body) : body_(body) {}
  void retain() const {
    if (body_ != nullptr) {
      body_->holders.fetch_add(1, std::memory_order_relaxed);
    }
  }
  void release() const;
  bool differentTextsLess(SharedText const& other) const;
  bool differentTextsEqual(SharedText const& other) const;
  bool rankedWith(SharedText const& other) const {
    return body_ != nullptr && other.body_ != nullptr && body_->table != nullptr &&
           body_->table == other.body_->table;
  }

  Body const* body_ = nullptr;  // null for the empty text
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_SHARED_TEXT_H_
