#include "model/shared_text.h"

#include <utility>

namespace Vantis::Location {

SharedText::SharedText(std::string text)
    : text_(text.empty() ? nullptr : std::make_shared<std::string const>(std::move(text))) {}

std::string const& SharedText::get() const {
  static std::string const kEmpty;
  return text_ != nullptr ? *text_ : kEmpty;
}

}  // namespace Vantis::Location
