#include "model/shared_text.h"

#include <algorithm>
#include <cstring>
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

namespace {

struct SortedText {
  std::size_t index;   // into the texts being sorted
  std::size_t shared;  // length of the prefix shared with the text before it in its run
};

// End of the prefix that a and b share, given that it reaches `from`.
std::size_t sharedPrefixEnd(std::string_view a, std::string_view b, std::size_t from) {
  constexpr std::size_t kBlock = 64;
  std::size_t const end = std::min(a.size(), b.size());
  std::size_t at = from;
  while (end - at >= kBlock && std::memcmp(a.data() + at, b.data() + at, kBlock) == 0) {
    at += kBlock;
  }
  while (at < end && a[at] == b[at]) {
    ++at;
  }
  return at;
}

// Bytewise a <= b, for texts whose shared prefix is `shared` bytes long.
bool notAfter(std::string_view a, std::string_view b, std::size_t shared) {
  return shared == a.size() || (shared < b.size() && static_cast<unsigned char>(a[shared]) <
                                                         static_cast<unsigned char>(b[shared]));
}

// Merges the sorted runs [a, aEnd) and [b, bEnd), whose heads follow the same text (or none),
// into `out`; among equal texts the left run's go first. This is the LCP merge of Ng and Kakehi
// ("Merging string sequences by longest common prefixes", 2008): a head's shared prefix with
// the last text written decides most comparisons unread, and the others start reading there.
void mergeRuns(std::vector<std::string_view> const& texts, SortedText const* a,
               SortedText const* aEnd, SortedText const* b, SortedText const* bEnd,
               SortedText* out) {
  std::size_t aShared = a->shared;  // with the last text written
  std::size_t bShared = b->shared;
  while (a != aEnd && b != bEnd) {
    bool takeA = aShared > bShared;
    if (aShared == bShared) {
      std::size_t const shared = sharedPrefixEnd(texts[a->index], texts[b->index], aShared);
      takeA = notAfter(texts[a->index], texts[b->index], shared);
      // The text not taken shares `shared` bytes with the one taken, now the last written.
      (takeA ? bShared : aShared) = shared;
    }
    if (takeA) {
      *out++ = {a->index, aShared};
      if (++a != aEnd) {
        aShared = a->shared;
      }
    } else {
      *out++ = {b->index, bShared};
      if (++b != bEnd) {
        bShared = b->shared;
      }
    }
  }
  if (a != aEnd) {
    *out++ = {a->index, aShared};
    std::copy(a + 1, aEnd, out);
  } else if (b != bEnd) {
    *out++ = {b->index, bShared};
    std::copy(b + 1, bEnd, out);
  }
}

// The texts in bytewise order (equal ones by index), each with its prefix shared with the
// one before. Bottom-up merge sort: texts with long common prefixes, such as long building
// texts that differ near their end, are read about once per level, not once per comparison.
std::vector<SortedText> sortedTexts(std::vector<std::string_view> const& texts) {
  std::size_t const count = texts.size();
  std::vector<SortedText> from(count);
  std::vector<SortedText> to(count);
  for (std::size_t i = 0; i < count; ++i) {
    from[i] = {i, 0};
  }
  for (std::size_t width = 1; width < count; width *= 2) {
    for (std::size_t low = 0; low < count; low += 2 * width) {
      std::size_t const middle = std::min(low + width, count);
      std::size_t const high = std::min(low + 2 * width, count);
      if (middle == high) {
        std::copy(from.begin() + low, from.begin() + high, to.begin() + low);
      } else {
        mergeRuns(texts, &from[low], &from[middle], &from[middle], &from[high], &to[low]);
      }
    }
    std::swap(from, to);
  }
  return from;
}

}  // namespace

std::vector<SharedText> SharedText::ranked(std::vector<std::string_view> const& texts) {
  std::vector<SortedText> const order = sortedTexts(texts);
  auto const table = std::make_shared<char const>(0);
  std::vector<SharedText> result(texts.size());
  std::size_t rank = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    std::string_view const text = texts[order[i].index];
    bool const repeated = i > 0 && order[i].shared == text.size() &&
                          texts[order[i - 1].index].size() == text.size();
    if (i > 0 && !repeated) {
      ++rank;
    }
    if (repeated) {
      result[order[i].index] = result[order[i - 1].index];
    } else if (!text.empty()) {
      result[order[i].index] = SharedText(new Body{std::string(text), table, rank});
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
