#include "components/checks/text_index.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace zrl::checks {

namespace {

constexpr std::size_t sequence_length = 4;
constexpr std::size_t least_buckets = 16;
constexpr std::size_t most_buckets = std::size_t{1} << 20;

}  // namespace

TextIndex::TextIndex(std::string text) : text_(std::move(text)) {
  if (text_.size() > UINT32_MAX) throw std::length_error("the text is too long");
  if (text_.size() < sequence_length) return;
  const std::size_t buckets = std::clamp(std::bit_ceil(text_.size()), least_buckets, most_buckets);
  shift_ = 32 - std::countr_zero(buckets);
  places_.resize(text_.size() - sequence_length + 1);
  starts_.resize(buckets + 1);

  // A start is first where its bucket ends; filling the bucket moves it back.
  for (std::size_t i = 0; i < places_.size(); ++i) ++starts_[bucket_of(text_.data() + i)];
  std::uint32_t end = 0;
  for (std::uint32_t& start : starts_) start = end += start;
  for (std::size_t i = places_.size(); i-- > 0;) {
    places_[--starts_[bucket_of(text_.data() + i)]] = static_cast<std::uint32_t>(i);
  }
}

bool TextIndex::contains(std::string_view word) const {
  if (word.size() > text_.size()) return false;
  if (word.size() < sequence_length) return text_.find(word) != text_.npos;

  std::size_t rarest = 0;
  std::size_t offset = 0;
  std::uint32_t fewest = UINT32_MAX;
  for (std::size_t i = 0; i + sequence_length <= word.size() && fewest > 0; ++i) {
    const std::size_t bucket = bucket_of(word.data() + i);
    const std::uint32_t count = starts_[bucket + 1] - starts_[bucket];
    if (count >= fewest) continue;
    fewest = count;
    rarest = bucket;
    offset = i;
  }
  return std::any_of(places_.begin() + starts_[rarest], places_.begin() + starts_[rarest + 1],
                     [&](std::uint32_t place) {
                       return place >= offset && text_.compare(place - offset, word.size(), word) == 0;
                     });
}

std::size_t TextIndex::bucket_of(const char* sequence) const {
  std::uint32_t bytes = 0;
  std::memcpy(&bytes, sequence, sequence_length);
  return (bytes * 2654435761u) >> shift_;
}

}  // namespace zrl::checks
