#include "model/shared_text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Vantis::Location {

SharedText::SharedText(std::string text)
    : body_(text.empty() ? nullptr : new Body{std::move(text), {}, 0}) {}

void SharedText::release() const {
  // The last holder deletes; acquire-release orders every use before the deletion.
  if (body_ != nullptr && body_->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    delete body_;
  }
}

std::vector<SharedText> SharedText::ranked(std::vector<std::string_view> const& texts) {
  std::vector<std::size_t> order(texts.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(),
            [&texts](std::size_t a, std::size_t b) { return texts[a] < texts[b]; });
  auto const table = std::make_shared<char const>(0);
  std::vector<SharedText> result(texts.size());
  std::size_t rank = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    std::string_view const text = texts[order[i]];
    if (i > 0 && texts[order[i - 1]] != text) {
      ++rank;
    }
    if (i > 0 && texts[order[i - 1]] == text) {
      result[order[i]] = result[order[i - 1]];
    } else if (!text.empty()) {
      result[order[i]] = SharedText(new Body{std::string(text), table, rank});
    }
  }
  return result;
}

std::string const& SharedText::get() const {
  static std::string const kEmpty;
  return body_ != nullptr ? body_->text : kEmpty;
}

bool SharedText::differentTextsLess(SharedText const& other) const {
  return rankedWith(other) ? body_->rank < other.body_->rank : get() < other.get();
}

bool SharedText::differentTextsEqual(SharedText const& other) const {
  return rankedWith(other) ? body_->rank == other.body_->rank : get() == other.get();
}

}  // namespace Vantis::Location
