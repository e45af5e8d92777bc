#ifndef CORVEX_MODEL_SHARED_TEXT_H_
#define CORVEX_MODEL_SHARED_TEXT_H_

#include <memory>
#include <string>

namespace Vantis::Location {

// An immutable text that copies share: scan records are copied from stage to stage, and their
// building and floor texts (which callers may make long) must not be copied with them.
// Compares bytewise like std::string; copies of one text compare equal without reading it.
class SharedText {
 public:
  SharedText() = default;
  explicit SharedText(std::string text);

  std::string const& get() const;

  bool operator<(SharedText const& other) const {
    return text_ != other.text_ && get() < other.get();
  }
  bool operator==(SharedText const& other) const {
    return text_ == other.text_ || get() == other.get();
  }

 private:
  std::shared_ptr<std::string const> text_;  // null for the empty text
};

}  // namespace Vantis::Location

#endif  // CORVEX_MODEL_SHARED_TEXT_H_
