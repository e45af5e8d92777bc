#ifndef CORVEX_MODEL_SHARED_TEXT_H_
#define CORVEX_MODEL_SHARED_TEXT_H_

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
  struct Body {
    std::string text;
    std::shared_ptr<void const> table;  // shared by texts ranked together, else null
    std::size_t rank = 0;               // bytewise order within the table
  };

  explicit SharedText(std::shared_ptr<Body const> body) : body_(std::move(body)) {}
  bool differentTextsLess(SharedText const& other) const;
  bool differentTextsEqual(SharedText const& other) const;
  bool rankedWith(SharedText const& other) const {
    return body_ != nullptr && other.body_ != nullptr && body_->table != nullptr &&
           body_->table == other.body_->table;
  }

  std::shared_ptr<Body const> body_;  // null for the empty text
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_SHARED_TEXT_H_
