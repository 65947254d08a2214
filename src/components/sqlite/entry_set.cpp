#include "components/sqlite/entry_set.h"

#include <bit>
#include <cstring>
#include <random>

#include <sodium.h>

namespace zrl::sqlite {

EntryHasher::EntryHasher() {
  std::random_device source;
  for (std::size_t at = 0; at < key_.size(); at += sizeof(unsigned)) {
    const unsigned word = source();
    std::memcpy(key_.data() + at, &word, sizeof word);
  }
}

EntryHasher::Hash EntryHasher::operator()(std::string_view entry) {
  folded_.resize(entry.size());
  // Without a branch, so that the compiler folds many characters at once.
  for (std::size_t i = 0; i < entry.size(); ++i) {
    const auto c = static_cast<unsigned char>(entry[i]);
    folded_[i] = static_cast<char>(c | (static_cast<unsigned char>(c - 'A') < 26 ? 0x20 : 0));
  }
  std::array<unsigned char, crypto_shorthash_siphashx24_BYTES> bytes;
  crypto_shorthash_siphashx24(bytes.data(), reinterpret_cast<const unsigned char*>(folded_.data()),
                              folded_.size(), key_.data());
  Hash hash;
  static_assert(sizeof hash == sizeof bytes);
  std::memcpy(&hash, bytes.data(), sizeof hash);
  if (hash.high == 0) hash.high = 1;
  return hash;
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

}  // namespace zrl::sqlite
