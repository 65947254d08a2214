#include "components/sqlite/entry_set.h"

#include <bit>
#include <cstring>
#include <random>

namespace zrl {

namespace {

// SipHash-2-4 with a result of 128 bits.
struct SipState {
  std::uint64_t v0, v1, v2, v3;

  void round() {
    v0 += v1;
    v1 = std::rotl(v1, 13) ^ v0;
    v0 = std::rotl(v0, 32);
    v2 += v3;
    v3 = std::rotl(v3, 16) ^ v2;
    v0 += v3;
    v3 = std::rotl(v3, 21) ^ v0;
    v2 += v1;
    v1 = std::rotl(v1, 17) ^ v2;
    v2 = std::rotl(v2, 32);
  }

  void absorb(std::uint64_t word) {
    v3 ^= word;
    round();
    round();
    v0 ^= word;
  }

  std::uint64_t squeeze() {
    for (int i = 0; i < 4; ++i) round();
    return v0 ^ v1 ^ v2 ^ v3;
  }
};

std::uint64_t random_word() {
  std::random_device source;
  return (std::uint64_t{source()} << 32) | source();
}

}  // namespace

EntryHasher::EntryHasher() : key_{random_word(), random_word()} {}

EntryHasher::Hash EntryHasher::operator()(std::string_view entry) const {
  SipState state{0x736f6d6570736575U ^ key_[0], 0x646f72616e646f6dU ^ key_[1] ^ 0xee,
                 0x6c7967656e657261U ^ key_[0], 0x7465646279746573U ^ key_[1]};
  const char* at = entry.data();
  std::size_t left = entry.size();
  std::uint64_t word = 0;
  for (; left >= sizeof word; left -= sizeof word, at += sizeof word) {
    std::memcpy(&word, at, sizeof word);
    state.absorb(word);
  }
  word = 0;
  if (left != 0) std::memcpy(&word, at, left);
  state.absorb(word | (std::uint64_t{entry.size()} << 56));
  state.v2 ^= 0xee;
  const std::uint64_t high = state.squeeze();
  state.v1 ^= 0xdd;
  return {high == 0 ? 1 : high, state.squeeze()};
}

EntrySet::EntrySet(std::size_t entries)
    : slots_(std::bit_ceil(entries + entries / 2 + 1)), mask_(slots_.size() - 1) {}

bool EntrySet::insert(const EntryHasher::Hash& hash, std::uint32_t number) {
  Slot& slot = slots_[slot_of(hash)];
  if (slot.high != 0) return false;
  slot = {hash.high, static_cast<std::uint32_t>(hash.low), number};
  return true;
}

std::optional<std::uint32_t> EntrySet::find(const EntryHasher::Hash& hash) const {
  const Slot& slot = slots_[slot_of(hash)];
  if (slot.high == 0) return std::nullopt;
  return slot.number;
}

void EntrySet::clear() {
  slots_.assign(slots_.size(), Slot{});
}

// The entry's slot, or the free one where it would go.
std::size_t EntrySet::slot_of(const EntryHasher::Hash& hash) const {
  const auto low = static_cast<std::uint32_t>(hash.low);
  std::size_t index = static_cast<std::size_t>(hash.high) & mask_;
  while (slots_[index].high != 0 && (slots_[index].high != hash.high || slots_[index].low != low)) {
    index = (index + 1) & mask_;
  }
  return index;
}

}  // namespace zrl
